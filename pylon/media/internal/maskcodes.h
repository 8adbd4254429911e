#pragma once

#include <pylon/media/motionutils.h>

#include <QtCore/QtGlobal>

/// @file
/// What coding and decoding the text of masks have in common. Not part of the public interface.

namespace pylon::motionmask {

inline constexpr int gridWidth = MotionUtils::maskWidth;
inline constexpr int gridCells = gridWidth * MotionUtils::maskHeight;

/// The mask is handled in words of this many cells, which may reach beyond its end.
inline constexpr int wordSize = sizeof(quint64);
inline constexpr quint64 everyByte = 0x0101010101010101;

/// The value of cells that are like the ones above them.
inline constexpr int likeAbove = 2;

/// Cells that the first character of a class stands for.
inline constexpr int smallRun = 27;
inline constexpr int largeRun = 729;

/// The value behind a run that ends with a letter "A" to "Z".
constexpr int inverted(int value) {
    return value == 0 ? 1 : 0;
}

}  // namespace pylon::motionmask
