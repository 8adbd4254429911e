#pragma once

#include <pylon/export.h>

#include <QtCore/QList>
#include <QtCore/QRectF>

namespace pylon {

/// Helpers that lay out video tiles: how far to reduce a picture, how many columns and rows a
/// number of tiles needs, and where the cells of a grid are.
///
///     unsigned int columns, rows;
///     pylon::GenTools::bestGridLayoutDim(tiles.size(), columns, rows);
///     const QList<QRectF> cells = pylon::GenTools::split(area, columns, rows);
///
/// The class has no data. Thread-safety: all functions are pure.
class PYLON_EXPORT GenTools {
public:
    /// How often a picture is to be halved for a smaller place, as a shift count: a factor of 2
    /// means a quarter of the width and height. Sizes are in pixels; halves are cut to integers.
    ///
    /// It is the smaller of what width and height need, so that afterwards one of them fits and the
    /// other may still be too large; 0 if one of them fits as it is.
    /// @return 0..@p maxFactor.
    static unsigned int bestFactor(unsigned int width, unsigned int height, unsigned int maxWidth,
                                   unsigned int maxHeight, unsigned int maxFactor);

    /// The first grid of 1 × 1, 2 × 1, 2 × 2, 3 × 2, 3 × 3 … (columns × rows) that has at least
    /// @p count cells; 1 × 1 for a @p count of 0.
    static void bestGridLayoutDim(unsigned int count, unsigned int& columns, unsigned int& rows);

    /// The equal cells of a grid as large as @p rect, row by row from the top left.
    ///
    /// The grid begins at (0, 0) wherever @p rect lies: translate the cells by its position where
    /// that is wanted.
    /// @return @p columns × @p rows cells; none if either number is 0 or these are more
    /// than 16,777,216, which take half a gigabyte.
    static QList<QRectF> split(const QRectF& rect, unsigned int columns, unsigned int rows);
};

}  // namespace pylon
