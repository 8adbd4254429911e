#include <pylon/media/g711.h>

#include <QtCore/QtGlobal>

#include <algorithm>
#include <bit>
#include <cstring>

namespace pylon {

namespace {

// Both laws are arithmetic, done in 16 bits where it can be, because that compiles to vectors while
// look-ups in tables do not. Each of the eight segments of a law starts at a power of two and has
// sixteen equal steps, just as an exponent of a floating-point number and the four bits behind it:
// a code without its sign, moved to these bits, is the number it stands for.
constexpr int stepShift = 19;
constexpr int exponentBits = 4;
constexpr qint32 exponentOf128 = 127 + 7;
constexpr qint32 segmentOf128 = exponentOf128 << exponentBits;
constexpr qint32 halfStep = qint32{1} << (stepShift - 1);

constexpr int muLawBias = 132;
constexpr int evenBits = 0x55;
constexpr int signBit = 0x80;

// The middle of a step, of at least 128.
qint16 magnitudeOf(qint16 segmentAndStep) {
    const qint32 bits = ((segmentAndStep + segmentOf128) << stepShift) + halfStep;
    return static_cast<qint16>(std::bit_cast<float>(bits));
}

// Segment and step of a magnitude of at least 128.
qint16 segmentAndStepOf(qint16 magnitude) {
    const auto bits = std::bit_cast<qint32>(static_cast<float>(magnitude));
    return static_cast<qint16>((bits >> stepShift) - segmentOf128);
}

// All bits set for a negative sample, else none.
qint16 signOf(qint16 sample) {
    return static_cast<qint16>(sample >> 15);
}

qint16 withSign(qint16 magnitude, int sign) {
    return static_cast<qint16>((magnitude ^ sign) - sign);
}

qint16 expandMuLaw(quint8 code) {
    const int bits = code ^ 0xFF;
    const qint16 magnitude = magnitudeOf(static_cast<qint16>(bits & 0x7F));
    return withSign(static_cast<qint16>(magnitude - muLawBias), -(bits >> 7));
}

qint16 expandALaw(quint8 code) {
    // The first segment has the steps of the second, and starts 256 lower.
    const int bits = code ^ evenBits;
    const auto segmentAndStep = static_cast<qint16>(bits & 0x7F);
    const int inFirst = signOf(static_cast<qint16>(segmentAndStep - 16));
    const qint16 magnitude = magnitudeOf(static_cast<qint16>(segmentAndStep + (inFirst & 16)));
    return withSign(static_cast<qint16>(magnitude - (inFirst & 256)), (bits >> 7) - 1);
}

quint8 compressMuLaw(qint16 sample) {
    constexpr qint16 largest = 0x7FFF - muLawBias - 1;
    const qint16 sign = signOf(sample);
    const qint16 size = std::min(static_cast<qint16>(sample ^ sign), largest);
    const auto magnitude = static_cast<qint16>(size + muLawBias - sign);
    return static_cast<quint8>(segmentAndStepOf(magnitude) ^ (0xFF ^ (sign & signBit)));
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
    const int code = segmentAndStepOf(std::max(magnitude, firstSegmentEnd)) + step;
    return static_cast<quint8>(code ^ (signBit ^ evenBits ^ (sign & signBit)));
}

template <typename Law>
void expand(Law law, const std::byte* codes, std::byte* pcm, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const qint16 sample = law(std::to_integer<quint8>(codes[i]));
        std::memcpy(pcm + i * sizeof sample, &sample, sizeof sample);
    }
}

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
    const std::size_t count = std::min(codes.size(), pcm.size() / sizeof(qint16));
    if (law == G711Law::MuLaw)
        expand([](quint8 code) { return expandMuLaw(code); }, codes.data(), pcm.data(), count);
    else
        expand([](quint8 code) { return expandALaw(code); }, codes.data(), pcm.data(), count);
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
