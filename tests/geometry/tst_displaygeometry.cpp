#include <pylon/geometry/displaygeometry.h>

#include <QtTest/QtTest>

#include <cmath>

using namespace pylon;

namespace {

DisplayGeometry geometryOf(QSizeF container, QSizeF image) {
    DisplayGeometry geometry;
    geometry.setContainerSize(container);
    geometry.setImageSize(image);
    return geometry;
}

// Steps such as "zoom 2 0 0, pan 7 -3".
void run(DisplayGeometry& geometry, const QString& steps) {
    for (const QString& step : steps.split(QStringLiteral(", "))) {
        const QStringList words = step.split(QLatin1Char(' '));
        const QString& name = words[0];
        const auto number = [&](int i) { return words.value(i).toDouble(); };
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
        else
            QFAIL(qPrintable(step));
    }
}

}  // namespace

class TestDisplayGeometry : public QObject {
    Q_OBJECT

private slots:
    void steps();
    void movedFrom();
    void ndc();
};

// On a container of 200 × 100 with a square picture.
void TestDisplayGeometry::steps() {
    const QRectF base(50, 0, 100, 100);
    const struct {
        const char* steps;
        double factor;
        QRectF rect;
    } rows[] = {
        {"image 10 10", 1, base},
        {"container 200 300, image 400 200", 1, {0, 100, 200, 100}},
        {"keepAspect 0, keepAspect 1", 1, base},
        {"image -1 100", 1, {}},
        {"image 100 -1, keepAspect 0", 1, {}},
        {"zoom 2 0 0", 2, {0, -50, 200, 200}},
        {"zoom 0.5 0 0", 1, base},
        {"zoom nan 0 0", 1, base},
        {"zoom 4 1 1, zoom 0.5 -1 -1", 2, {-100, -100, 200, 200}},
        {"zoom 2 0 0, pan 999 999", 2, {100, 0, 200, 200}},
        {"zoom 2 0 0, pan -999 -999", 2, {-100, -100, 200, 200}},
        {"container 100 200, image 100 50, zoom 2 0 0, pan -999 -999", 2, {-100, -50, 200, 100}},
        {"container 300 200, image 100 50, zoom 3 0.5 -0.25, pan 20 10, zoom 0.5 0.2 0.25",
         1.5,
         {-125, 30, 450, 225}},
        {"zoom 2 0 0, reset, zoom 1.5 0 0", 3, {-50, -100, 300, 300}},
        {"zoom 2 0 0, reset, pan -999 0", 2, {0, 0, 100, 100}},
        {"zoom 2 1 1, resetOffset", 4, {-100, -150, 400, 400}},
        {"zoom 2 0 0, container 200 100, image 100 100", 2, {0, -50, 200, 200}},
        // No more than rounding, each time: what it is compared with is the size set last.
        {"zoom 2 0 0, image 100.00000000009 100, image 100.00000000018 100", 2, {0, -50, 200, 200}},
        {"zoom 2 0 0, container 200 99.9999999998", 2, {50 + 1e-10, 0, 100 - 2e-10, 100 - 2e-10}},
        {"zoom 2 0 0, container 300 100", 2, {100, 0, 100, 100}},
        {"image 0 0, keepAspect 0, zoom 2 0 0, image 9e-13 0, image 0 0", 2, {-100, -50, 400, 200}},
        {"image 0 0, keepAspect 0, zoom 2 0 0, image 2e-12 0", 2, {0, 0, 200, 100}},
        {"image 0 100, zoom 2 0 0, container 200 100", 2, {100, 0, 0, 100}},
        {"image 100 0, zoom 2 0 0, container 200 100", 2, {0, 50, 200, 0}},
        {"container -1 -1, zoom 2 0 0, pan -5 -5", 2, {0, 0, -2, -2}},
        {"zoom 2 0 0, keepAspect 1", 2, base},
    };
    for (const auto& [steps, factor, rect] : rows) {
        DisplayGeometry geometry = geometryOf({200, 100}, {100, 100});
        run(geometry, QString::fromUtf8(steps));
        QVERIFY2(geometry.zoomFactor() == factor && geometry.zoomRect() == rect, steps);
    }
}

// Takes any call like a new one.
void TestDisplayGeometry::movedFrom() {
    for (const char* first : {"reset", "resetOffset", "keepAspect 0", "zoom 3 0.5 -0.5",
                              "zoom inf inf nan", "pan nan -inf", "image 9 9"}) {
        DisplayGeometry from = geometryOf({200, 100}, {100, 100});
        run(from, QStringLiteral("keepAspect 0, zoom 2 0 0"));
        DisplayGeometry to(std::move(from));
        from = DisplayGeometry(std::move(from));
        QVERIFY(from.preserveAspectRatio() && from.zoomFactor() == 1 && from.zoomRect().isNull());
        run(from, QString::fromUtf8(first));
        run(from, QStringLiteral("container 300 100, image 50 100, keepAspect 1"));
        QCOMPARE(from.zoomRect(), QRectF(125, 0, 50, 100));
        from = std::move(to);
        QVERIFY(!from.preserveAspectRatio());
        QCOMPARE(from.zoomRect(), QRectF(-100, -50, 400, 200));
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
