#include <pylon/geometry/gentools.h>

#include <algorithm>

namespace pylon {

namespace {

// Far beyond any layout: a bound for numbers gone wrong.
constexpr quint64 maxCells = quint64{1} << 24;

unsigned int halvingsToFit(unsigned int size, unsigned int limit) {
    unsigned int count = 0;
    for (; size > limit; size >>= 1)
        ++count;
    return count;
}

}  // namespace

unsigned int GenTools::bestFactor(unsigned int width, unsigned int height, unsigned int maxWidth,
                                  unsigned int maxHeight, unsigned int maxFactor) {
    return std::min({halvingsToFit(width, maxWidth), halvingsToFit(height, maxHeight), maxFactor});
}

void GenTools::bestGridLayoutDim(unsigned int count, unsigned int& columns, unsigned int& rows) {
    // The grid for the largest counts has 65536 × 65536 cells.
    quint64 width = 1;
    quint64 height = 1;
    while (width * height < count) {
        ++width;
        if (width * height < count)
            ++height;
    }
    columns = static_cast<unsigned int>(width);
    rows = static_cast<unsigned int>(height);
}

QList<QRectF> GenTools::split(const QRectF& rect, unsigned int columns, unsigned int rows) {
    const quint64 count = quint64{columns} * rows;
    if (count == 0 || count > maxCells)
        return {};
    QList<QRectF> cells;
    cells.reserve(static_cast<qsizetype>(count));
    const qreal width = rect.width() / columns;
    const qreal height = rect.height() / rows;
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned int column = 0; column < columns; ++column)
            cells.emplaceBack(column * width, row * height, width, height);
    }
    return cells;
}

}  // namespace pylon
