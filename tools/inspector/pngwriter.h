#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

namespace pylon::inspector {

/// A PNG file of 8 bits grey a pixel.
/// @param pixels row by row from the top, @p width times @p height of them, 0 being black.
/// @pre @p width and @p height are 1 or more: the format knows no empty pictures.
QByteArray greyPng(QByteArrayView pixels, int width, int height);

}  // namespace pylon::inspector
