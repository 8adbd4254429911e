#include <pylon/media/g711.h>

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <cstring>

namespace pylon {

namespace {

using ExpansionTable = std::array<qint16, 256>;
// Indexed by the bits of the sample. One look-up a sample is quicker than any arithmetic, and
// speech, mostly of low volume, needs little of the table at a time.
using CompressionTable = std::array<quint8, 65536>;

constexpr int muLawBias = 132;
constexpr int largestMagnitude = 0x7FFF;
constexpr unsigned evenBits = 0x55;

constexpr int expandMuLaw(unsigned code) {
    const unsigned bits = ~code;
    const int magnitude = static_cast<int>((bits & 0x0F) * 8 + muLawBias) << (bits >> 4 & 7);
    return (bits & 0x80) != 0 ? muLawBias - magnitude : magnitude - muLawBias;
}

constexpr int expandALaw(unsigned code) {
    const unsigned bits = code ^ evenBits;
    const unsigned segment = bits >> 4 & 7;
    const int step = static_cast<int>(bits & 0x0F) * 16;
    const int magnitude = segment == 0 ? step + 8 : (step + 264) << (segment - 1);
    return (bits & 0x80) != 0 ? magnitude : -magnitude;
}

// The least magnitude that a code without its sign stands for. Each of the eight segments but the
// first of the A-law starts at a power of two and has sixteen equal steps.
constexpr int muLawLevel(int code) {
    return (16 + (code & 0x0F)) << ((code >> 4) + 3);
}

constexpr int aLawLevel(int code) {
    return code < 16 ? code * 16 : (16 + (code & 0x0F)) << ((code >> 4) + 3);
}

constexpr void fill(CompressionTable& table, int first, int last, unsigned code) {
    for (int sample = first; sample <= last; ++sample)
        table[static_cast<quint16>(sample)] = static_cast<quint8>(code);
}

// Filled code by code, which takes compilers far fewer steps than sample by sample. Magnitudes
// count up from a bias for samples from 0 on, and from another one downwards for negative samples;
// what lies beyond the last segment takes its largest code.
template <typename Level>
constexpr CompressionTable compressionTable(Level level, int bias, int negativeBias, unsigned mask,
                                            unsigned negativeMask) {
    CompressionTable table{};
    for (int code = 0; code < 128; ++code) {
        const auto bits = static_cast<unsigned>(code);
        const int first = level(code);
        const int last = code < 127 ? level(code + 1) - 1 : largestMagnitude + bias + 1;
        fill(table, std::max(first - bias, 0), std::min(last - bias, 32767), bits ^ mask);
        fill(table, std::max(negativeBias - last, -32768), std::min(negativeBias - first, -1),
             bits ^ negativeMask);
    }
    return table;
}

constexpr CompressionTable muLawCompressionTable() {
    return compressionTable(muLawLevel, muLawBias, muLawBias, 0xFF, 0x7F);
}

constexpr CompressionTable aLawCompressionTable() {
    CompressionTable table = compressionTable(aLawLevel, 0, -8, evenBits | 0x80, evenBits);
    // The magnitudes of these are themselves negative, and their bits count as they are.
    fill(table, -7, -1, 0x0F ^ evenBits);
    return table;
}

template <typename Law>
constexpr ExpansionTable expansionTable(Law expand) {
    ExpansionTable table{};
    for (unsigned code = 0; code < table.size(); ++code)
        table[code] = static_cast<qint16>(expand(code));
    return table;
}

constexpr ExpansionTable muLawExpansion = expansionTable(expandMuLaw);
constexpr ExpansionTable aLawExpansion = expansionTable(expandALaw);
constexpr CompressionTable muLawCompression = muLawCompressionTable();
constexpr CompressionTable aLawCompression = aLawCompressionTable();

}  // namespace

std::size_t expandG711(G711Law law, std::span<const std::byte> codes,
                       std::span<std::byte> pcm) noexcept {
    const ExpansionTable& table = law == G711Law::MuLaw ? muLawExpansion : aLawExpansion;
    const std::size_t count = std::min(codes.size(), pcm.size() / sizeof(qint16));
    const std::byte* const from = codes.data();
    std::byte* const to = pcm.data();
    for (std::size_t i = 0; i < count; ++i) {
        const qint16 sample = table[std::to_integer<quint8>(from[i])];
        std::memcpy(to + i * sizeof sample, &sample, sizeof sample);
    }
    return count;
}

std::size_t compressG711(G711Law law, std::span<const std::byte> pcm,
                         std::span<std::byte> codes) noexcept {
    const CompressionTable& table = law == G711Law::MuLaw ? muLawCompression : aLawCompression;
    const std::size_t count = std::min(pcm.size() / sizeof(quint16), codes.size());
    const std::byte* const from = pcm.data();
    std::byte* const to = codes.data();
    for (std::size_t i = 0; i < count; ++i) {
        quint16 sample = 0;
        std::memcpy(&sample, from + i * sizeof sample, sizeof sample);
        to[i] = std::byte{table[sample]};
    }
    return count;
}

}  // namespace pylon
