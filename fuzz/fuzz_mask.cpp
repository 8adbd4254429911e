// Masks: the input as the text of one, and what it decodes to as text again.

#include "fuzz.h"

#include <pylon/media/motionutils.h>

#include <algorithm>

using pylon::MotionUtils;

struct Mask {
    char rows[MotionUtils::maskHeight][MotionUtils::maskWidth] = {};

    auto decode(const QByteArray& text) {
        return MotionUtils::tryDecodeMask(text, std::span(rows[0], sizeof rows));
    }
    bool operator==(const Mask&) const = default;
};

void fuzz(const QByteArray& input) {
    Mask mask, unchecked, back;
    const auto width = mask.decode(input);
    if (!input.contains('\0')) {
        const QByteArray terminated(input.constData(), input.size());
        FUZZ_CHECK(MotionUtils::decodeMask(terminated, unchecked.rows) == width.value_or(-1));
        FUZZ_CHECK(!width || mask == unchecked);
    }
    if (width.value_or(0) < 16)
        return;
    const int height = 16 + static_cast<int>(input.size() % 75);
    const QByteArray text = MotionUtils::encodeMask(mask.rows, *width, height).toLatin1();
    // The text of a uniform mask is one digit.
    FUZZ_CHECK(back.decode(text) == (text.size() == 1 ? 1 : *width));
    for (int row = 0; row < height; ++row)
        FUZZ_CHECK(std::equal(mask.rows[row], mask.rows[row] + *width, back.rows[row]));
    // A width without a letter does not read back, but must not do harm either.
    MotionUtils::encodeMask(mask.rows, 65 + *width % 55, height);
}
