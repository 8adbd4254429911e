#include <pylon/geometry/gentools.h>

#include <QtTest/QtTest>

#include <climits>

using pylon::GenTools;

class TestGenTools : public QObject {
    Q_OBJECT

private slots:
    void factor();
    void grids();
    void cells();
};

void TestGenTools::factor() {
    const struct {
        unsigned int width, height, maxWidth, maxHeight, cap, expected;
    } rows[] = {
        {1920, 1080, 960, 540, 3, 1}, {1920, 1080, 480, 1080, 3, 0},  // the height fits
        {480, 1080, 480, 100, 3, 0},                                  // the width fits
        {1920, 1080, 100, 540, 9, 1},                                 // the height needs fewer
        {1920, 1080, 960, 100, 9, 1},                                 // the width needs fewer
        {8000, 8000, 100, 100, 3, 3},                                 // the cap counts
        {201, 201, 100, 100, 9, 1},                                   // halves are cut
        {202, 202, 100, 100, 9, 2},   {UINT_MAX, UINT_MAX, 0, 0, 99, 32},
    };
    for (const auto& [width, height, maxWidth, maxHeight, cap, expected] : rows)
        QCOMPARE(GenTools::bestFactor(width, height, maxWidth, maxHeight, cap), expected);
}

// Columns and rows grow in turn, columns first, whenever there are more tiles than cells.
void TestGenTools::grids() {
    unsigned int columns, rows, expectedColumns = 1, expectedRows = 1;
    for (unsigned int count = 0; count < 3000; ++count) {
        if (count > expectedColumns * expectedRows)
            ++(expectedColumns == expectedRows ? expectedColumns : expectedRows);
        GenTools::bestGridLayoutDim(count, columns, rows);
        QCOMPARE(columns, expectedColumns);
        QCOMPARE(rows, expectedRows);
    }
    GenTools::bestGridLayoutDim(UINT_MAX, columns, rows);
    QVERIFY(columns == 65536 && rows == 65536);
}

void TestGenTools::cells() {
    using List = QList<QRectF>;
    const QRectF rect(10, 20, 100, 50);
    QCOMPARE(GenTools::split(rect, 2, 2),
             (List{{0, 0, 50, 25}, {50, 0, 50, 25}, {0, 25, 50, 25}, {50, 25, 50, 25}}));
    QCOMPARE(GenTools::split(rect, 1, 2), (List{{0, 0, 100, 25}, {0, 25, 100, 25}}));
    QCOMPARE(GenTools::split(rect, 2, 0), List());
    QCOMPARE(GenTools::split(rect, 0, 2), List());
    for (const unsigned int rows : {1u, 0x8000'0000u, UINT_MAX})  // more than there is memory for
        QCOMPARE(GenTools::split(rect, UINT_MAX, rows), List());
}

QTEST_APPLESS_MAIN(TestGenTools)
#include "tst_gentools.moc"
