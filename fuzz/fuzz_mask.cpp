// Masks: the input as the text of one, and what it decodes to as text again.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <algorithm>
#include <vector>

using namespace pylon;

namespace {

constexpr int rowLength = MotionUtils::maskWidth;

using Mask = std::vector<char>;

Mask emptyMask() {
    return Mask(std::size_t{rowLength} * MotionUtils::maskHeight, 'x');
}

auto rowsOf(Mask& mask) {
    return reinterpret_cast<char(*)[rowLength]>(mask.data());
}

void roundTrip(Mask& mask, int width, int height) {
    const QByteArray text = MotionUtils::encodeMask(rowsOf(mask), width, height).toLatin1();
    Mask back = emptyMask();
    // The text of a uniform mask is one digit.
    FUZZ_CHECK(MotionUtils::tryDecodeMask(text, back) == (text.size() == 1 ? 1 : width));
    for (int row = 0; row < height; ++row) {
        const char* const cells = rowsOf(mask)[row];
        FUZZ_CHECK(std::equal(cells, cells + width, rowsOf(back)[row]));
    }
    // A width without a letter does not read back, but must not do harm either.
    MotionUtils::encodeMask(rowsOf(mask), 65 + width % 55, height);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray text = bytesOf(data, size);
    Mask checked = emptyMask();
    Mask unchecked = emptyMask();
    const auto width = MotionUtils::tryDecodeMask(text, checked);
    if (!text.contains('\0')) {
        const QByteArray terminated(text.constData(), text.size());
        FUZZ_CHECK(MotionUtils::decodeMask(terminated.constData(), rowsOf(unchecked)) ==
                   width.value_or(-1));
        FUZZ_CHECK(!width || checked == unchecked);
    }
    if (width && *width >= 16)
        roundTrip(checked, *width, 16 + static_cast<int>(size % 75));
    return 0;
}
