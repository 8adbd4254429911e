#include <pylon/geometry/displaygeometry.h>

#include <QtTest/QTest>

using namespace pylon;

static DisplayGeometry geometryOf(QSizeF container, QSizeF image) {
    DisplayGeometry geometry;
    geometry.setContainerSize(container);
    geometry.setImageSize(image);
    return geometry;
}

// Most tests have a square picture in a container twice as wide.
const QSizeF wide(200, 100), square(100, 100);
const QRectF fitted(50, 0, 100, 100);

class TestDisplayGeometry : public QObject {
    Q_OBJECT

private slots:
    void zoomsAndPans() {
        const struct {
            QSizeF container, image;
            double zoom;
            QPointF centre, pan;
            QRectF rect;
        } rows[] = {{{200, 300}, {400, 200}, 1, {}, {}, {0, 100, 200, 100}},
                    {wide, square, 2, {}, {}, {0, -50, 200, 200}},
                    {wide, square, 0.5, {}, {}, fitted},
                    {wide, square, qQNaN(), {}, {}, fitted},
                    {wide, square, 2, {}, {999, 999}, {100, 0, 200, 200}},
                    {wide, square, 2, {}, {-999, -999}, {-100, -100, 200, 200}},
                    {{100, 200}, {100, 50}, 2, {}, {-999, -999}, {-100, -50, 200, 100}},
                    {{300, 200}, {100, 50}, 3, {0.5, -0.25}, {20, 10}, {-430, -65, 900, 450}}};
        for (const auto& [container, image, zoom, centre, pan, rect] : rows) {
            DisplayGeometry geometry = geometryOf(container, image);
            geometry.zoom(zoom, centre.x(), centre.y());
            geometry.addOffsetPixels(pan.x(), pan.y());
            QCOMPARE(geometry.zoomRect(), rect);
            QCOMPARE(geometry.zoomFactor(), zoom > 1 ? zoom : 1);
        }
    }

    void resets() {
        DisplayGeometry geometry = geometryOf(wide, square);
        geometry.zoom(4, 1, 1);
        geometry.zoom(0.5, -1, -1);
        QCOMPARE(geometry.zoomRect(), QRectF(-100, -100, 200, 200));
        geometry.resetZoom();
        QCOMPARE(geometry.zoomRect(), fitted);
        geometry.zoom(1.5, 1, 1);
        geometry.resetZoomOffset();
        QCOMPARE(geometry.zoomFactor(), 9);
        QCOMPARE(geometry.zoomRect(), QRectF(-350, -400, 900, 900));
        geometry.setPreserveAspectRatio(false);
        for (const QSizeF& unknown : {QSizeF(100, -1), QSizeF(-1, 100)}) {
            geometry.setImageSize(unknown);
            geometry.zoom(2, 0, 0);  // of nothing
            geometry.setImageSize(unknown);
            QCOMPARE(geometry.zoomRect(), QRectF());
        }
    }

    // The zoom survives sizes that differ from the last ones by no more than rounding.
    void newSizes() {
        DisplayGeometry geometry = geometryOf(wide, square);
        geometry.zoom(2, 0, 0);
        for (double height : {100., 100.00000000009, 100.00000000018}) {
            geometry.setContainerSize({200, height});
            geometry.setImageSize(square);
            QCOMPARE(geometry.zoomRect(), QRectF(0, -50, 200, 200));
        }
        geometry.setContainerSize({200, 300});
        QCOMPARE(geometry.zoomRect(), QRectF(0, 50, 200, 200));
        QCOMPARE(geometry.zoomFactor(), 2);
    }

    void movedFromIsLikeNew() {
        DisplayGeometry from = geometryOf(wide, square);
        from.setPreserveAspectRatio(false);
        const DisplayGeometry to(std::move(from));
        QVERIFY(from.preserveAspectRatio() && from.zoomRect().isNull());
        from.zoom(2, 0, 0);
        QCOMPARE(from.zoomFactor(), 2);
        QCOMPARE(to.zoomRect(), QRectF(QPointF(), wide));
    }

    void ndc() {
        QCOMPARE(zoomRectToNdcRect({0, 0, 640, 480}, {640, 480}), NDCRect());
        QCOMPARE(zoomRectToNdcRect({160, 360, 160, 360}, {640, 480}), (NDCRect{-0.5, -0.5, 0, -2}));
    }
};

QTEST_APPLESS_MAIN(TestDisplayGeometry)
#include "tst_displaygeometry.moc"
