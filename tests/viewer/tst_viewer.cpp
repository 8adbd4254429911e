#include <viewer/logpane.h>
#include <viewer/mainwindow.h>
#include <viewer/theme.h>
#include <viewer/tilegrid.h>

#include <pylon/log/logmacros.h>
#include <pylon/media/motionutils.h>

#include <QtCore/QTemporaryFile>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QSlider>
#include <QtWidgets/QToolButton>

#include <thread>

using namespace pylon;
using namespace pylon::viewer;
using enum TileWidget::Content;

namespace {

plog::LogClient<plog::Test> client;

const QString gate = QStringLiteral(PYLON_GATE_RECORDING);

DisplayGeometry geometryOf(const QWidget& view, bool keepAspect = true) {
    DisplayGeometry geometry;
    geometry.setPreserveAspectRatio(keepAspect);
    geometry.setContainerSize(view.size());
    geometry.setImageSize({384, 288});  // of both cameras
    return geometry;
}

// Whether the picture of a frame is drawn into a rectangle; the badge above does not count.
bool shows(PictureView& view, const Image& frame, const QRectF& rect) {
    QImage expected(view.size(), QImage::Format_RGB32);
    expected.fill(theme::tile);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect, QImage::fromData(frame.payload(), "JPG"));
    painter.end();
    const QImage shown = view.grab().toImage().convertToFormat(expected.format());
    const QRect part = view.rect().adjusted(0, 40, 0, 0);
    return view.pictureRect() == rect && shown.copy(part) == expected.copy(part);
}

QString write(QTemporaryFile& file, const QByteArray& bytes) {
    const bool written = file.open() && file.write(bytes) == bytes.size();
    file.close();
    return written ? file.fileName() : QString();
}

}  // namespace

class TestViewer : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { window_.reset(); }
    void recordings();
    void contents();
    void frameKinds();
    void zoomsAndMoves();
    void viewStays();
    void masks();
    void plays();
    void zones();
    void logPane();

private:
    TileWidget* tile(int index) const { return window_->grid().tiles().value(index); }
    const Image& frame(int index) const {
        return *recording_->cameras[index].pictureAt(window_->playback().time());
    }
    QString logText() const {
        QCoreApplication::processEvents();
        return window_->findChild<LogPane*>()->toPlainText();
    }

    const std::optional<Recording> recording_ = Recording::load(gate);
    std::unique_ptr<MainWindow> window_;
};

void TestViewer::init() {
    window_ = std::make_unique<MainWindow>();
    QVERIFY(window_->open(gate));
    window_->show();
}

void TestViewer::recordings() {
    QVERIFY(recording_->begin == 538417800000 && recording_->events.size() == 6);
    QString cameras;
    for (const Camera& camera : recording_->cameras)
        QTextStream(&cameras) << camera.id << camera.name << camera.pictures.size() << ' ';
    QCOMPARE(cameras, QStringLiteral("1Gate40 2Front door16 3Hall0 4Vault4 "));

    QFile file(gate);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray start = file.read(13060);  // two frames
    const std::tuple<QByteArray, const char*, int> damaged[] = {
        {"", " is empty", 4},  // the old recording stays if there is no new one
        {"what is this, please?", ": at byte 0: ", 4},
        {start + "rubbish, really", ": at byte 13060: ", 1},
        {start.chopped(1), ": at byte 11025: ", 1}};
    for (const auto& [bytes, logged, tiles] : damaged) {
        QTemporaryFile copy;
        QCOMPARE(window_->open(write(copy, bytes)), tiles == 1);
        QVERIFY(logText().contains(QLatin1String(logged)));
        QCOMPARE(window_->grid().findChildren<TileWidget*>().size(), tiles);
    }

    // The later one comes first, and is due between two milliseconds.
    const Image first = recording_->cameras[0].pictures[0];
    Image second = first.clone();
    second.setTime(first.time() + 1);
    QByteArray firstBytes, secondBytes;
    first.generateNetworkImage(firstBytes, ImageHeaderVersion::V4);
    second.generateNetworkImage(secondBytes, ImageHeaderVersion::V4);
    QTemporaryFile swapped;
    QVERIFY(window_->open(write(swapped, secondBytes + firstBytes)));
    window_->playback().seek(3);
    QCOMPARE(tile(0)->caption(), QStringLiteral("2026-11-15 08:00:00.003 CET"));
}

void TestViewer::contents() {
    const struct {
        int position;
        TileWidget::Content contents[4];
    } rows[] = {{66, {Picture, Nothing, SoundOnly, Nothing}},
                {70, {Picture, Picture, SoundOnly, Nothing}},
                {1400, {Hidden, Picture, SoundOnly, Encrypted}},
                {1599, {Hidden, Picture, SoundOnly, Encrypted}},
                {1800, {Picture, Picture, SoundOnly, Encrypted}}};
    for (const auto& row : rows) {
        window_->playback().seek(row.position);
        QRegion covered;
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(tile(i)->content(), row.contents[i]);
            PictureView& view = tile(i)->view();
            QCOMPARE(view.isVisible(), row.contents[i] == Picture);
            QVERIFY(view.isVisible() ? shows(view, frame(i), geometryOf(view).zoomRect())
                                     : view.pictureRect().isEmpty());
            const QImage painted = tile(i)->grab(view.geometry()).toImage();
            QVERIFY(painted != painted.mirrored());  // there is something to be seen
            QVERIFY(view.isVisible() || painted.pixelColor(5, 5) == theme::tile);
            QVERIFY(!covered.intersects(tile(i)->geometry()));
            covered += tile(i)->geometry();
        }
        QCOMPARE(covered.boundingRect(), window_->grid().rect());
    }
}

// None but the last is decoded, though all but the damaged one could be.
void TestViewer::frameKinds() {
    const Image picture = recording_->cameras[0].pictures[0];
    Image frames[] = {picture.clone(), picture.clone(), picture.clone(), picture};
    frames[0].setEncrypted(true);
    frames[1].setHiddenFlag(true);
    frames[2].setPayload(picture.payload().left(20));
    const TileWidget::Content expected[] = {Encrypted, Hidden, Damaged, Picture};
    for (int i = 0; i < 4; ++i) {
        TileWidget shown({1, QStringLiteral("Yard"), {frames[i]}});
        shown.showTime(picture.time());
        QCOMPARE(shown.content(), expected[i]);
        QCOMPARE(shown.view().pictureRect().isEmpty(), i < 3);
    }
}

void TestViewer::zoomsAndMoves() {
    PictureView& view = tile(0)->view();
    DisplayGeometry geometry = geometryOf(view);
    const auto zoom = [&](const QPointF& at, int notches, double factor) {
        QWheelEvent event(at, at, {}, {0, 120 * notches}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&view, &event);
        geometry.zoom(factor, 2 * at.x() / view.width() - 1, 2 * at.y() / view.height() - 1);
        return shows(view, frame(0), geometry.zoomRect());
    };
    const auto drag = [&](const QPoint& from, const QPoint& distance) {
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        QTest::mouseMove(&view, from + distance / 2);
        QTest::mouseMove(&view, from + distance);
        QTest::mouseRelease(&view, Qt::LeftButton, {}, from + distance);
        geometry.addOffsetPixels(distance.x(), distance.y());
        return shows(view, frame(0), geometry.zoomRect());
    };
    QVERIFY(drag({10, 10}, {80, 80}));  // nothing to be moved
    QVERIFY(zoom({100, 60}, 2, 1.5625));
    QVERIFY(drag({200, 120}, {30, -20}));
    QVERIFY(drag({0, 0}, {998, -998}));
    window_->playback().seek(1400);  // hidden
    window_->playback().seek(5000);
    QVERIFY(zoom({30, 40}, -1, 0.8));
    QVERIFY(zoom({0, 0}, 99, 20 / 1.25));
    QTest::mouseDClick(&view, Qt::LeftButton);
    geometry = geometryOf(view);
    QVERIFY(shows(view, frame(0), geometry.zoomRect()));
    QVERIFY(zoom({300, 200}, 1, 1.25));  // from the whole picture, not from 20
}

void TestViewer::viewStays() {
    PictureView& view = tile(0)->view();
    view.zoomTo(4, {0.6, 0.3});
    const auto staysInMiddle = [&](bool keepAspect) {
        const QRectF rect = view.pictureRect(), whole = geometryOf(view, keepAspect).zoomRect();
        const QPointF middle = rect.topLeft() + QPointF(0.6 * rect.width(), 0.3 * rect.height());
        return rect.size() == 4 * whole.size() && middle == view.rect().toRectF().center();
    };
    QVERIFY(staysInMiddle(true));
    window_->resize(1200, 700);
    QVERIFY(staysInMiddle(true));
    window_->findChild<QCheckBox*>()->click();
    QVERIFY(staysInMiddle(false));
    QVERIFY(window_->open(gate));
    QCOMPARE(tile(0)->view().pictureRect(), geometryOf(tile(0)->view(), false).zoomRect());
}

void TestViewer::masks() {
    PictureView& view = tile(0)->view();
    char cells[MotionUtils::maskHeight][MotionUtils::maskWidth] = {};
    for (int row = 15; row < 30; ++row)
        std::fill_n(cells[row] + 20, 20, char{1});  // the lower right quarter of 40 × 30
    QTemporaryFile quarter, all, wrong;
    const QString path = write(quarter, MotionUtils::encodeMask(cells, 40, 30).toLatin1() + '\n');
    QVERIFY(view.loadMask(write(all, "1")));
    QVERIFY(!view.loadMask(write(wrong, "z#")) && !view.loadMask(QStringLiteral("/no/file")));
    QVERIFY(logText().contains(QLatin1String("Invalid character in mask text")));
    for (const bool isQuarter : {false, true}) {
        const QImage masked = view.grab().toImage();
        view.removeMask();
        const QImage plain = view.grab().toImage();
        const QRectF rect = view.pictureRect();
        for (const QPointF& part : {QPointF(0.3, 0.4), QPointF(0.48, 0.8), QPointF(0.52, 0.48),
                                    QPointF(0.52, 0.52), QPointF(0.7, 0.7)}) {
            const QPoint at(static_cast<int>(rect.x() + part.x() * rect.width()),
                            static_cast<int>(rect.y() + part.y() * rect.height()));
            QCOMPARE(masked.pixel(at) != plain.pixel(at),
                     !isQuarter || (part.x() > 0.5 && part.y() > 0.5));
        }
        QVERIFY(view.loadMask(path));
        view.zoomTo(1.5, {0.5, 0.6});
    }
}

void TestViewer::plays() {
    Playback& playback = window_->playback();
    auto* slider = window_->findChild<QSlider*>();
    QCOMPARE(slider->maximum(), 9760);
    slider->setValue(5000);
    QCOMPARE(playback.position(), 5000);
    QCOMPARE(tile(0)->caption(), QStringLiteral("2026-11-15 08:00:05.000 CET"));

    playback.seek(99'999);
    QCOMPARE(playback.position(), playback.duration());
    playback.seek(playback.duration() - 100);
    window_->findChild<QToolButton*>(QStringLiteral("play"))->click();
    QVERIFY(playback.isPlaying());
    QTRY_VERIFY(!playback.isPlaying());
    QCOMPARE(slider->value(), playback.duration());
    playback.play();
    QVERIFY(playback.isPlaying() && playback.position() == 0);
    QVERIFY(window_->open(gate) && !playback.isPlaying());

    playback.seek(1800);  // before the event at 1900
    playback.play();
    QTRY_VERIFY(logText().contains(QLatin1String("<Event id='2' camera='2' kind='door'/>")));
    playback.seek(playback.duration());
    QTRY_VERIFY(!playback.isPlaying());
    QVERIFY(!logText().contains(QLatin1String("<Event id='1'")));  // none of those skipped
    QVERIFY(!logText().contains(QLatin1String("<Event id='3'")));
}

void TestViewer::zones() {
    window_->playback().seek(1000);
    const char* const rows[][2] = {
        {"server", "08:00:01.000 CET"}, {"CST", "08:00:01.000 CET"},
        {"UTC", "07:00:01.000 UTC"},    {"NST", "03:30:01.000 NST"},
        {"XYZ", "03:30:01.000 NST"},    {"CST:Cuba", "02:00:01.000 CST"},
        {"", "02:00:01.000 CST"},       {":China", "15:00:01.000 CST"},
    };
    QString previous, error;
    for (const auto& [text, time] : rows) {
        const QString expected = QStringLiteral("2026-11-15 ") + QLatin1String(time);
        QCOMPARE(window_->setZone(QString::fromUtf8(text), &error), expected != previous);
        QCOMPARE(tile(0)->caption(), previous = expected);
    }
    QVERIFY(window_->open(gate));
    QCOMPARE(tile(0)->caption(), QStringLiteral("2026-11-15 15:00:00.000 CST"));
    QVERIFY(!window_->setZone(QStringLiteral("CST"), &error));
    QVERIFY(error.contains(QLatin1String("Cuba Standard Time")));
}

void TestViewer::logPane() {
    QVERIFY(logText().contains(QLatin1String("INFO   Playback  Opened gate.frames: 154 frames")));
    QVERIFY(logText().contains(QLatin1String("Camera 4, Vault: 4 of 4 pictures are encrypted")));
    std::thread([] { PLOG_WARN(client, nullptr, "from %s", "another thread"); }).join();
    QVERIFY(!window_->findChild<LogPane*>()->toPlainText().contains(QLatin1String("from another")));
    QVERIFY(logText().contains(QLatin1String("from another thread")));
    window_.reset();
    PLOG_WARN(client, nullptr, "nobody %s", "there");
}

QTEST_MAIN(TestViewer)
#include "tst_viewer.moc"
