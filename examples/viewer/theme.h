#pragma once

#include <QtGui/QColor>

/// @file
/// Colours of the viewer: dark, so that the pictures stand out.

namespace pylon::viewer::theme {

inline constexpr QColor window{32, 35, 40};
inline constexpr QColor tile{18, 20, 23};
inline constexpr QColor caption{44, 48, 55};
inline constexpr QColor text{228, 231, 235};
inline constexpr QColor dimText{146, 153, 163};
inline constexpr QColor accent{74, 144, 217};
inline constexpr QColor recording{226, 82, 72};
inline constexpr QColor warning{232, 180, 84};

/// Gives the application style and palette.
void apply();

}  // namespace pylon::viewer::theme
