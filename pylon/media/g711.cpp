#include <pylon/media/g711.h>

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace pylon {

namespace {

using ExpansionTable = std::array<qint16, 256>;

constexpr int muLawBias = 132;
constexpr int evenBits = 0x55;
constexpr int signBit = 0x80;

constexpr int expandMuLaw(unsigned code) {
    const unsigned bits = ~code;
    const int magnitude = static_cast<int>((bits & 0x0F) * 8 + muLawBias) << (bits >> 4 & 7);
    return (bits & 0x80) != 0 ? muLawBias - magnitude : magnitude - muLawBias;
}

constexpr int expandALaw(unsigned code) {
    const unsigned bits = code ^ unsigned { evenBits };
    const unsigned segment = bits >> 4 & 7;
    const int step = static_cast<int>(bits & 0x0F) * 16;
    const int magnitude = segment == 0 ? step + 8 : (step + 264) << (segment - 1);
    return (bits & 0x80) != 0 ? magnitude : -magnitude;
}

// Segment and step of a magnitude of at least 128. Each segment starts at a power of two and has
// sixteen equal steps, as the exponent and the first bits behind it of a floating-point number do.
// Arithmetic, done in 16 bits where it can be, compiles to vectors; look-ups do not.
qint16 segmentAndStep(qint16 magnitude) {
    constexpr int exponentOf128 = 127 + 7;
    const auto bits = std::bit_cast<qint32>(static_cast<float>(magnitude));
    return static_cast<qint16>((bits >> 19) - exponentOf128 * 16);
}

// -1 for a negative sample, else 0.
qint16 signOf(qint16 sample) {
    return static_cast<qint16>(sample >> 15);
}

quint8 compressMuLaw(qint16 sample) {
    constexpr qint16 largest = 0x7FFF - muLawBias - 1;
    const qint16 sign = signOf(sample);
    const qint16 size = std::min(static_cast<qint16>(sample ^ sign), largest);
    const auto magnitude = static_cast<qint16>(size + muLawBias - sign);
    return static_cast<quint8>(segmentAndStep(magnitude) ^ (0xFF ^ (sign & signBit)));
}

quint8 compressALaw(qint16 sample) {
    // The first segment has the steps of the second.
    constexpr qint16 firstSegmentEnd = 255;
    constexpr qint16 lastStep = 15;
    const qint16 sign = signOf(sample);
    const auto magnitude = static_cast<qint16>((sample ^ sign) + (sign & -7));
    // Unsigned, so that the magnitudes that are negative themselves end in the last step.
    const auto quotient = static_cast<qint16>(static_cast<quint16>(magnitude) >> 4);
    const int step = std::min(quotient, lastStep) - lastStep;
    const int code = segmentAndStep(std::max(magnitude, firstSegmentEnd)) + step;
    return static_cast<quint8>(code ^ (signBit ^ evenBits ^ (sign & signBit)));
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

template <typename Law>
void compress(Law law, const std::byte* pcm, std::byte* codes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        qint16 sample = 0;
        std::memcpy(&sample, pcm + i * sizeof sample, sizeof sample);
        codes[i] = std::byte{law(sample)};
    }
}

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
    const std::size_t count = std::min(pcm.size() / sizeof(qint16), codes.size());
    if (law == G711Law::MuLaw)
        compress([](qint16 sample) { return compressMuLaw(sample); }, pcm.data(), codes.data(),
                 count);
    else
        compress([](qint16 sample) { return compressALaw(sample); }, pcm.data(), codes.data(),
                 count);
    return count;
}

}  // namespace pylon
