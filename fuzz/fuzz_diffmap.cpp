// Difference maps: the input as the coded form of one, and as the cells of one.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <algorithm>
#include <span>
#include <vector>

using namespace pylon;

using Bytes = std::vector<unsigned char>;

namespace {

constexpr int steps[] = {2, 4, 8, 15, 3};

Bytes encoded(const Bytes& map, int width, int height, int step) {
    Bytes coded(MotionUtils::maxCodedSize(width, height, step));
    const auto size = MotionUtils::tryEncodeDiffMap(map, width, height, step, coded);
    FUZZ_CHECK(size.has_value());
    coded.resize(*size);
    return coded;
}

Bytes decoded(const Bytes& coded, std::size_t cells) {
    Bytes map(cells);
    FUZZ_CHECK(MotionUtils::tryDecodeDiffMap(coded, map).has_value());
    Bytes unchecked(cells);
    MotionUtils().decodeDiffMap(coded.data(), unchecked.data());
    FUZZ_CHECK(map == unchecked);
    return map;
}

void asCoded(std::span<const unsigned char> data) {
    Bytes map(127 * 255);
    const auto size = MotionUtils::tryDecodeDiffMap(data, map);
    if (!size)
        return;
    const int cells = size->width * size->height;
    map.resize(static_cast<std::size_t>(cells));
    FUZZ_CHECK(MotionUtils::tryDecodeDiffMap(data, map).has_value());
    const bool coded = (data[0] & 0x80) != 0;
    const int step = coded ? steps[data[1] >> 6] : 3;
    FUZZ_CHECK(decoded(encoded(map, size->width, size->height, step), map.size()) == map);
    if (map.empty())
        return;
    map.pop_back();
    FUZZ_CHECK(!MotionUtils::tryDecodeDiffMap(data, map));
}

void asCells(std::span<const unsigned char> data) {
    if (data.size() < 4)
        return;
    const int step = steps[data[0] % 5];
    const int width = data[1] % 128, height = data[2] % 64;
    const auto source = data.subspan(3);
    Bytes map(static_cast<std::size_t>(width * height));
    for (std::size_t i = 0; i < map.size(); ++i)
        map[i] = source[i % source.size()];
    const Bytes back = decoded(encoded(map, width, height, step), map.size());
    for (std::size_t i = 0; i < map.size(); ++i) {
        const int expected = step == 3 ? map[i] : map[i] / step * step;
        FUZZ_CHECK(back[i] == (step == 15 ? std::min(expected, 240) : expected));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    asCoded({data, size});
    asCells({data, size});
    return 0;
}
