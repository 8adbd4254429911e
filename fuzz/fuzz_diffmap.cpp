// Difference maps: the input as the coded form of one, and what it decodes to coded again.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <span>
#include <vector>

using namespace pylon;

using Bytes = std::vector<unsigned char>;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int steps[] = {2, 4, 8, 15};
    constexpr int uncoded = 3;
    const std::span<const unsigned char> input(data, size);
    Bytes map(127 * 255);
    const auto dimensions = MotionUtils::tryDecodeDiffMap(input, map);
    if (!dimensions)
        return 0;
    const auto [width, height] = *dimensions;
    map.resize(static_cast<std::size_t>(width * height));
    // Buffers have the very sizes, so that a sanitizer sees each byte too far.
    Bytes again(map.size());
    FUZZ_CHECK(MotionUtils::tryDecodeDiffMap(input, again) && again == map);

    const int step = (input[0] & 0x80) != 0 ? steps[input[1] >> 6] : uncoded;
    Bytes coded(MotionUtils::maxCodedSize(width, height, step));
    const auto codedSize = MotionUtils::tryEncodeDiffMap(map, width, height, step, coded);
    FUZZ_CHECK(codedSize.has_value());
    coded.resize(*codedSize);
    coded.shrink_to_fit();
    Bytes unchecked(map.size());
    MotionUtils().decodeDiffMap(coded.data(), unchecked.data());
    FUZZ_CHECK(unchecked == map);
    FUZZ_CHECK(MotionUtils::tryDecodeDiffMap(coded, again) && again == map);
    if (!again.empty())
        FUZZ_CHECK(!MotionUtils::tryDecodeDiffMap(input, std::span(again).first(again.size() - 1)));
    return 0;
}
