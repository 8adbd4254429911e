#include <pylon/geometry/displaygeometry.h>

#include <QtTest/QtTest>

#include <cmath>
#include <random>

using namespace pylon;

namespace {

DisplayGeometry geometryOf(QSizeF container, QSizeF image) {
    DisplayGeometry geometry;
    geometry.setContainerSize(container);
    geometry.setImageSize(image);
    return geometry;
}

bool isFinite(const QRectF& rect) {
    return std::isfinite(rect.x() + rect.y() + rect.width() + rect.height());
}

// Steps such as "zoom 2 0 0, pan 7 -3".
void run(DisplayGeometry& geometry, const QString& steps) {
    for (const QString& step : steps.split(QStringLiteral(", "))) {
        const QString name = step.section(QLatin1Char(' '), 0, 0);
        const auto number = [&](int i) { return step.section(QLatin1Char(' '), i, i).toDouble(); };
        if (name == QLatin1String("zoom"))
            geometry.zoom(number(1), number(2), number(3));
        else if (name == QLatin1String("pan"))
            geometry.addOffsetPixels(number(1), number(2));
        else if (name == QLatin1String("container"))
            geometry.setContainerSize({number(1), number(2)});
        else if (name == QLatin1String("image"))
            geometry.setImageSize({number(1), number(2)});
        else if (name == QLatin1String("keepAspect"))
            geometry.setPreserveAspectRatio(number(1) != 0);
        else if (name == QLatin1String("reset"))
            geometry.resetZoom();
        else if (name == QLatin1String("resetOffset"))
            geometry.resetZoomOffset();
        else if (name == QLatin1String("move"))
            DisplayGeometry(std::move(geometry)).resetZoom();
        else
            QFAIL(qPrintable(step));
    }
}

// One axis of the container: where the picture lay and lies now, and what was to happen.
struct Axis {
    double room, margin, oldBegin, oldSize, begin, size, centre, offset;
};

bool isRight(const Axis& axis, double factor, bool isZoom) {
    const double tolerance = 1e-8 * (axis.size + axis.room);
    // The picture together with its bars, zoomed like it, covers the container.
    const double before = factor * axis.margin - axis.begin;
    const double after = axis.begin + axis.size + factor * axis.margin - axis.room;
    if (before < -tolerance || after < -tolerance)
        return false;
    if (before < 100 * tolerance || after < 100 * tolerance)
        return true;  // held by its margins
    const double fixed = (axis.centre + 1) / 2 * axis.room;
    const double expected = isZoom ? fixed - (fixed - axis.oldBegin) / axis.oldSize * axis.size
                                   : axis.oldBegin + axis.offset;
    return std::abs(axis.begin - expected) <= tolerance;
}

}  // namespace

class TestDisplayGeometry : public QObject {
    Q_OBJECT

private slots:
    void steps_data();
    void steps();
    void sizesMissing();
    void moves();
    void randomSteps_data();
    void randomSteps();
    void ndc();
};

void TestDisplayGeometry::steps_data() {
    QTest::addColumn<double>("factor");
    QTest::addColumn<QRectF>("rect");
    const QRectF base(50, 0, 100, 100);
    const struct {
        const char* steps;
        double factor;
        QRectF rect;
    } rows[] = {
        {"image 10 10", 1, base},
        {"container 200 300, image 400 200", 1, {0, 100, 200, 100}},
        {"image 400 200, container 200 300", 1, {0, 100, 200, 100}},
        {"image 1000 500", 1, {0, 0, 200, 100}},
        {"keepAspect 0", 1, {0, 0, 200, 100}},
        {"keepAspect 0, keepAspect 1", 1, base},
        {"image -1 100", 1, {}},
        {"image 100 -1, keepAspect 0", 1, {}},
        {"zoom 2 0 0", 2, {0, -50, 200, 200}},
        {"zoom 0.5 0 0", 1, base},
        {"zoom nan 0 0", 1, base},
        {"zoom 4 -1 0", 4, {200, -150, 400, 400}},
        {"zoom 2 0 1", 2, {0, -100, 200, 200}},  // at the bottom: y points down
        {"zoom 4 1 1, zoom 0.5 -1 -1", 2, {-100, -100, 200, 200}},
        {"zoom 2 0 0, pan 7 -3", 2, {7, -53, 200, 200}},
        {"zoom 2 0 0, pan 999 999", 2, {100, 0, 200, 200}},
        {"zoom 2 0 0, pan -999 -999", 2, {-100, -100, 200, 200}},
        {"pan 7 -3", 1, base},
        {"zoom 2 0 0, reset", 2, base},
        {"zoom 2 0 0, reset, zoom 1.5 0 0", 3, {-50, -100, 300, 300}},
        {"zoom 2 0 0, reset, pan -999 0", 2, {0, 0, 100, 100}},
        {"zoom 2 1 1, resetOffset", 4, {-100, -150, 400, 400}},
        {"zoom 2 0 0, container 200 100, image 100 100", 2, {0, -50, 200, 200}},
        // No more than rounding, each time: what it is compared with is the size set last.
        {"zoom 2 0 0, image 100.00000000009 100, image 100.00000000018 100", 2, {0, -50, 200, 200}},
        {"zoom 2 0 0, container 200 99.9999999998",
         2,
         {50.0000000001, 0, 99.9999999998, 99.9999999998}},
        {"zoom 2 0 0, container 300 100", 2, {100, 0, 100, 100}},
        {"image 0 0, keepAspect 0, zoom 2 0 0, image 9e-13 0", 2, {-100, -50, 400, 200}},
        {"image 0 0, keepAspect 0, zoom 2 0 0, image 2e-12 0", 2, {0, 0, 200, 100}},
        {"image 0 100, zoom 2 0 0, container 200 100", 2, {100, 0, 0, 100}},
        {"image 100 0, zoom 2 0 0, container 200 100", 2, {0, 50, 200, 0}},
        {"container -1 -1, zoom 2 0 0, pan -5 -5", 2, {0, 0, -2, -2}},
        {"zoom 2 0 0, image 50 50", 2, base},
        {"zoom 2 0 0, keepAspect 1", 2, base},
    };
    for (const auto& row : rows)
        QTest::newRow(row.steps) << row.factor << row.rect;
}

// On a container of 200 × 100 with a square picture.
void TestDisplayGeometry::steps() {
    DisplayGeometry geometry = geometryOf({200, 100}, {100, 100});
    run(geometry, QString::fromUtf8(QTest::currentDataTag()));
    QTEST(geometry.zoomFactor(), "factor");
    QTEST(geometry.zoomRect(), "rect");
}

void TestDisplayGeometry::sizesMissing() {
    const QString all = QStringLiteral(
        "move|zoom 3 0.5 -0.5|pan 10 -20|reset|resetOffset|keepAspect 0|zoom inf inf nan|"
        "pan nan -inf");
    for (const QString& sizes : {QStringLiteral("move"), QStringLiteral("container 200 100"),
                                 QStringLiteral("image 100 100")}) {
        for (const QString& first : all.split(QLatin1Char('|'))) {
            for (const QString& second : all.split(QLatin1Char('|'))) {
                const QString steps = QStringList{sizes, first, second}.join(QStringLiteral(", "));
                DisplayGeometry geometry;
                run(geometry, steps);
                QRectF rect = geometry.zoomRect();
                QVERIFY2(rect.isEmpty() || !isFinite(rect), qPrintable(steps));
                QVERIFY2(geometry.zoomFactor() >= 1, qPrintable(steps));
                run(geometry, QStringLiteral("container 300 100, image 50 100, keepAspect 1"));
                QCOMPARE(geometry.zoomRect(), QRectF(125, 0, 50, 100));
            }
        }
    }
}

void TestDisplayGeometry::moves() {
    DisplayGeometry from = geometryOf({200, 100}, {100, 100});
    run(from, QStringLiteral("keepAspect 0, zoom 2 0 0"));
    DisplayGeometry to(std::move(from));
    from = DisplayGeometry(std::move(from));  // what was moved from can be moved once more
    QVERIFY(from.preserveAspectRatio());
    QCOMPARE(from.zoomFactor(), 1.0);
    QCOMPARE(from.zoomRect(), QRectF());
    from = std::move(to);
    QVERIFY(!from.preserveAspectRatio());
    QCOMPARE(from.zoomRect(), QRectF(-100, -50, 400, 200));
}

void TestDisplayGeometry::randomSteps_data() {
    QTest::addColumn<unsigned int>("seed");
    for (unsigned int seed = 1; seed <= 200; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestDisplayGeometry::randomSteps() {
    QFETCH(unsigned int, seed);
    std::mt19937 bits(seed);
    const auto between = [&bits](double low, double high) {
        return low + (high - low) * (static_cast<double>(bits()) / 4294967296.0);
    };
    const auto size = [&] { return QSizeF(between(1, 4000), between(1, 4000)); };
    QSizeF container = size();
    DisplayGeometry geometry = geometryOf(container, size());
    QRectF base = geometry.zoomRect();
    for (int step = 0; step < 300; ++step) {
        const QRectF old = geometry.zoomRect();
        const QPointF centre(between(-1, 1), between(-1, 1));
        const QPointF offset(between(-500, 500), between(-500, 500));
        const auto kind = bits() % 32;
        const bool isZoom = kind < 16;
        if (isZoom) {
            geometry.zoom(between(0.4, geometry.zoomFactor() < 50 ? 2 : 1), centre.x(), centre.y());
        } else if (kind < 28) {
            geometry.addOffsetPixels(offset.x(), offset.y());
        } else if (kind == 28) {
            geometry.resetZoom();
            QCOMPARE(geometry.zoomRect(), base);
            continue;
        } else {
            if (kind == 29)
                geometry.setContainerSize(container = size());
            else if (kind == 30)
                geometry.setImageSize(size());
            else
                geometry.setPreserveAspectRatio(bits() % 2 == 0);
            base = geometry.zoomRect();
            continue;
        }
        const QRectF now = geometry.zoomRect();
        const double factor = geometry.zoomFactor();
        QCOMPARE(now.size(), isZoom ? base.size() * factor : old.size());
        QVERIFY(isRight({container.width(), base.x(), old.x(), old.width(), now.x(), now.width(),
                         centre.x(), offset.x()},
                        factor, isZoom));
        QVERIFY(isRight({container.height(), base.y(), old.y(), old.height(), now.y(), now.height(),
                         centre.y(), offset.y()},
                        factor, isZoom));
    }
}

void TestDisplayGeometry::ndc() {
    const QSizeF size(640, 480);
    QCOMPARE(zoomRectToNdcRect({0, 0, 640, 480}, size), NDCRect());
    QCOMPARE(zoomRectToNdcRect({160, 360, 160, 360}, size), (NDCRect{-0.5, -0.5, 0, -2}));
    QVERIFY(std::isnan(zoomRectToNdcRect({}, {0, 0}).left));
    QString text;
    QDebug(&text) << NDCRect{-1, 0.5, 2, -1} << 1;
    QCOMPARE(text, QStringLiteral("NDCRect(left -1, top 0.5, right 2, bottom -1) 1 "));
}

QTEST_APPLESS_MAIN(TestDisplayGeometry)
#include "tst_displaygeometry.moc"
