#include <pylon/geometry/gentools.h>

#include <QtTest/QtTest>

#include <climits>

using pylon::GenTools;

class TestGenTools : public QObject {
    Q_OBJECT

private slots:
    void factor_data();
    void factor();
    void grid_data();
    void grid();
    void everyGridHolds();
    void cells();
};

void TestGenTools::factor_data() {
    QTest::addColumn<QList<unsigned int>>("arguments");  // width, height, their limits, the cap
    QTest::addColumn<unsigned int>("expected");
    using List = QList<unsigned int>;
    QTest::newRow("both") << List{1920, 1080, 960, 540, 3} << 1u;
    QTest::newRow("height fits") << List{1920, 1080, 480, 1080, 3} << 0u;
    QTest::newRow("width fits") << List{480, 1080, 480, 100, 3} << 0u;
    QTest::newRow("smaller count is the height's") << List{1920, 1080, 100, 540, 9} << 1u;
    QTest::newRow("smaller count is the width's") << List{1920, 1080, 960, 100, 9} << 1u;
    QTest::newRow("cap") << List{8000, 8000, 100, 100, 3} << 3u;
    QTest::newRow("no cap in reach") << List{8000, 8000, 100, 100, 99} << 7u;
    QTest::newRow("cap of 0") << List{8000, 8000, 100, 100, 0} << 0u;
    QTest::newRow("halves are cut") << List{201, 201, 100, 100, 9} << 1u;
    QTest::newRow("one above") << List{202, 202, 100, 100, 9} << 2u;
    QTest::newRow("no room at all") << List{UINT_MAX, UINT_MAX, 0, 0, 99} << 32u;
    QTest::newRow("nothing") << List{0, 0, 0, 0, 3} << 0u;
}

void TestGenTools::factor() {
    QFETCH(QList<unsigned int>, arguments);
    const auto& a = arguments;
    QTEST(GenTools::bestFactor(a[0], a[1], a[2], a[3], a[4]), "expected");
}

void TestGenTools::grid_data() {
    QTest::addColumn<unsigned int>("count");
    QTest::addColumn<QSize>("expected");
    const struct {
        unsigned int count;
        int columns, rows;
    } rows[] = {{0, 1, 1},  {1, 1, 1},  {2, 2, 1},  {3, 2, 2},  {4, 2, 2},
                {5, 3, 2},  {6, 3, 2},  {7, 3, 3},  {8, 3, 3},  {9, 3, 3},
                {10, 4, 3}, {13, 4, 4}, {16, 4, 4}, {17, 5, 4}, {UINT_MAX, 65536, 65536}};
    for (const auto& row : rows)
        QTest::addRow("%u", row.count) << row.count << QSize(row.columns, row.rows);
}

void TestGenTools::grid() {
    QFETCH(unsigned int, count);
    unsigned int columns = 77;
    unsigned int rows = 77;
    GenTools::bestGridLayoutDim(count, columns, rows);
    QTEST(QSize(int(columns), int(rows)), "expected");
}

void TestGenTools::everyGridHolds() {
    for (unsigned int count = 2; count < 3000; ++count) {
        unsigned int columns;
        unsigned int rows;
        GenTools::bestGridLayoutDim(count, columns, rows);
        QVERIFY(columns == rows || columns == rows + 1);
        QVERIFY(columns * rows >= count);
        const unsigned int previous = columns == rows ? columns * (rows - 1) : rows * rows;
        QVERIFY2(previous < count, qPrintable(QString::number(count)));
    }
}

void TestGenTools::cells() {
    using List = QList<QRectF>;
    const QRectF rect(10, 20, 100, 50);
    QCOMPARE(GenTools::split(rect, 2, 2),
             (List{{0, 0, 50, 25}, {50, 0, 50, 25}, {0, 25, 50, 25}, {50, 25, 50, 25}}));
    QCOMPARE(GenTools::split(rect, 4, 1),
             (List{{0, 0, 25, 50}, {25, 0, 25, 50}, {50, 0, 25, 50}, {75, 0, 25, 50}}));
    QCOMPARE(GenTools::split(rect, 1, 2), (List{{0, 0, 100, 25}, {0, 25, 100, 25}}));
    QCOMPARE(GenTools::split(rect, 2, 0), List());
    QCOMPARE(GenTools::split(rect, 0, 2), List());
    for (const unsigned int rows : {1u, 0x8000'0000u, UINT_MAX})  // more than there is memory for
        QCOMPARE(GenTools::split(rect, UINT_MAX, rows), List());
}

QTEST_APPLESS_MAIN(TestGenTools)
#include "tst_gentools.moc"
