// Difference maps: the input as the coded form of one, and what it decodes to coded again.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <vector>

using namespace pylon;

using Bytes = std::vector<unsigned char>;

// Buffers have the very sizes, so that a sanitizer sees each byte too far.
static void expectMap(const Bytes& coded, const Bytes& map) {
    Bytes checked(map.size()), unchecked(map.size());
    MotionUtils().decodeDiffMap(coded.data(), unchecked.data());
    FUZZ_CHECK(MotionUtils::tryDecodeDiffMap(coded, checked) && checked == map && unchecked == map);
    checked.resize(map.size() - !map.empty());
    FUZZ_CHECK(map.empty() || !MotionUtils::tryDecodeDiffMap(coded, checked));
}

void fuzz(const QByteArray& input) {
    constexpr int steps[] = {2, 4, 8, 15}, uncoded = 3;
    const Bytes bytes(input.begin(), input.end());
    Bytes map(127 * 255);
    const auto dimensions = MotionUtils::tryDecodeDiffMap(bytes, map);
    if (!dimensions)
        return;
    const auto [width, height] = *dimensions;
    map.resize(static_cast<std::size_t>(width * height));
    expectMap(bytes, map);

    const int step = (bytes[0] & 0x80) != 0 ? steps[bytes[1] >> 6] : uncoded;
    Bytes coded(MotionUtils::maxCodedSize(width, height, step));
    coded.resize(MotionUtils::tryEncodeDiffMap(map, width, height, step, coded).value());
    coded.shrink_to_fit();
    expectMap(coded, map);
}
