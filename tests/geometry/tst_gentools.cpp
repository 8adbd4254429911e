#include <pylon/geometry/gentools.h>

#include <QtTest/QTest>

using pylon::GenTools;

class TestGenTools : public QObject {
    Q_OBJECT

private slots:
    // The smaller number of halvings counts, up to a cap; halves are cut.
    void factor() {
        const struct {
            unsigned int width, height, maxWidth, maxHeight, cap, expected;
        } rows[] = {{1920, 1080, 960, 540, 3, 1}, {1920, 1080, 480, 1080, 3, 0},
                    {1920, 1080, 100, 540, 9, 1}, {1920, 1080, 960, 100, 9, 1},
                    {8000, 8000, 100, 100, 3, 3}, {201, 201, 100, 100, 9, 1},
                    {~0u, ~0u, 0, 0, 99, 32}};
        for (const auto& [width, height, maxWidth, maxHeight, cap, expected] : rows)
            QCOMPARE(GenTools::bestFactor(width, height, maxWidth, maxHeight, cap), expected);
    }

    // Columns and rows grow in turn, columns first, whenever there are more tiles than cells.
    void grids() {
        unsigned int columns, rows, expectedColumns = 1, expectedRows = 1;
        for (unsigned int count = 0; count < 3000; ++count) {
            if (count > expectedColumns * expectedRows)
                ++(expectedColumns == expectedRows ? expectedColumns : expectedRows);
            GenTools::bestGridLayoutDim(count, columns, rows);
            QVERIFY(columns == expectedColumns && rows == expectedRows);
        }
    }

    void cells() {
        const QRectF rect(10, 20, 100, 50);
        using List = QList<QRectF>;
        QCOMPARE(GenTools::split(rect, 1, 2), (List{{0, 0, 100, 25}, {0, 25, 100, 25}}));
        QCOMPARE(GenTools::split(rect, 2, 2),
                 (List{{0, 0, 50, 25}, {50, 0, 50, 25}, {0, 25, 50, 25}, {50, 25, 50, 25}}));
        for (const unsigned int rows : {0u, 1u, ~0u})  // none, or more than there is memory for
            QVERIFY(GenTools::split(rect, ~0u, rows).isEmpty());
    }
};

QTEST_APPLESS_MAIN(TestGenTools)
#include "tst_gentools.moc"
