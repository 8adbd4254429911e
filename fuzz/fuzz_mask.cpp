// Masks: the input as the text of one, and as the cells of one.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <algorithm>
#include <cstring>
#include <vector>

using namespace pylon;

namespace {

constexpr std::size_t rowLength = MotionUtils::maskWidth;
constexpr std::size_t cellCount = rowLength * MotionUtils::maskHeight;

using Mask = std::vector<char>;

auto rowsOf(Mask& mask) {
    return reinterpret_cast<char(*)[MotionUtils::maskWidth]>(mask.data());
}

void roundTrip(Mask& mask, int width, int height) {
    const QByteArray text = MotionUtils::encodeMask(rowsOf(mask), width, height).toLatin1();
    Mask back(cellCount);
    const auto decoded = MotionUtils::tryDecodeMask(text, back);
    FUZZ_CHECK(decoded.has_value());
    // The text of a uniform mask is one digit.
    FUZZ_CHECK(decoded == width || text.size() == 1);
    for (int row = 0; row < height; ++row) {
        const char* const cells = rowsOf(mask)[row];
        FUZZ_CHECK(std::equal(cells, cells + width, rowsOf(back)[row]));
    }
}

void asText(const std::uint8_t* data, std::size_t size) {
    const QByteArray text = bytesOf(data, size);
    Mask checked(cellCount, 'x');
    const auto width = MotionUtils::tryDecodeMask(text, checked);
    if (!text.contains('\0')) {
        Mask unchecked(cellCount, 'x');
        const QByteArray terminated(text.constData(), text.size());
        FUZZ_CHECK(MotionUtils::decodeMask(terminated.constData(), rowsOf(unchecked)) ==
                   width.value_or(-1));
        FUZZ_CHECK(!width || checked == unchecked);
    }
    if (width && *width >= 16)
        roundTrip(checked, *width, MotionUtils::maskHeight);
}

void asCells(const std::uint8_t* data, std::size_t size) {
    if (size < 3)
        return;
    const int width = data[0] % 50 == 0 ? MotionUtils::maskWidth : 15 + data[0] % 50;
    const int height = 16 + data[1] % 75;
    Mask mask(cellCount);
    for (std::size_t cell = 0; cell < cellCount; ++cell)
        mask[cell] = static_cast<char>(data[2 + cell / 8 % (size - 2)] >> cell % 8 & 1);
    roundTrip(mask, width, height);
    // A width without a letter does not read back, but must not do harm either.
    MotionUtils::encodeMask(rowsOf(mask), 65 + width % 55, height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    asText(data, size);
    asCells(data, size);
    return 0;
}
