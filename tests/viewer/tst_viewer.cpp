#include <viewer/logpane.h>
#include <viewer/mainwindow.h>
#include <viewer/recording.h>
#include <viewer/tilegrid.h>
#include <viewer/tilewidget.h>
#include <viewer/zonechoice.h>

#include <pylon/log/logmacros.h>

#include <QtCore/QTemporaryFile>
#include <QtTest/QtTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QSlider>
#include <QtWidgets/QToolButton>

#include <set>
#include <thread>

using namespace pylon;
using namespace pylon::viewer;
using Content = TileWidget::Content;

namespace {

plog::LogClient<plog::Test> client;

const QString gate = QStringLiteral(PYLON_GATE_RECORDING);

// Mean difference of the colour values of two pictures of one size, 0..255.
double difference(const QImage& left, const QImage& right) {
    qint64 sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb a = left.pixel(x, y);
            const QRgb b = right.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                   std::abs(qBlue(a) - qBlue(b));
        }
    }
    return static_cast<double>(sum) / (3.0 * left.width() * left.height());
}

size_t colours(const QImage& image) {
    std::set<QRgb> found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found.insert(image.pixel(x, y));
    }
    return found.size();
}

QImage grabPart(TileWidget* tile, const QRect& part) {
    return tile->grab(part).toImage();
}

}  // namespace

class TestViewer : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void recording();
    void damagedRecordings_data();
    void damagedRecordings();
    void grid();
    void pictures();
    void placeholders();
    void frameKinds();
    void slider();
    void playsToTheEnd();
    void zones_data();
    void zones();
    void logPane();

private:
    TileWidget* tile(int index) const {
        return window_->findChild<TileGrid*>()->tiles().value(index);
    }
    QString logText() const {
        QCoreApplication::processEvents();
        return window_->findChild<LogPane*>()->toPlainText();
    }

    std::unique_ptr<MainWindow> window_;
};

void TestViewer::init() {
    window_ = std::make_unique<MainWindow>();
    QVERIFY(window_->open(gate));
    window_->show();
}

void TestViewer::cleanup() {
    window_.reset();
}

void TestViewer::recording() {
    const auto recording = Recording::load(gate);
    QVERIFY(recording);
    QCOMPARE(recording->begin, 538417800000);
    QCOMPARE(recording->events.size(), 6);
    const struct {
        quint32 id;
        const char* name;
        qsizetype pictures;
    } expected[] = {{1, "Gate", 40}, {2, "Front door", 16}, {3, "Hall", 0}, {4, "Vault", 4}};
    QCOMPARE(recording->cameras.size(), qsizetype(std::size(expected)));
    for (qsizetype i = 0; i < recording->cameras.size(); ++i) {
        const Camera& camera = recording->cameras[i];
        QCOMPARE(camera.id, expected[i].id);
        QCOMPARE(camera.name, QString::fromUtf8(expected[i].name));
        QCOMPARE(camera.pictures.size(), expected[i].pictures);
    }
    const Camera& door = recording->cameras[1];  // first picture at tick 21, the next at 171
    QVERIFY(!door.pictureAt(recording->begin + 20));
    QCOMPARE(door.pictureAt(recording->begin + 21), &door.pictures[0]);
    QCOMPARE(door.pictureAt(recording->begin + 170), &door.pictures[0]);
    QCOMPARE(door.pictureAt(recording->begin + 171), &door.pictures[1]);
    QCOMPARE(door.pictureAt(recording->end), &door.pictures.last());
}

void TestViewer::damagedRecordings_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("logged");
    QFile file(gate);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray start = file.read(13060);  // two frames
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("no recording") << QByteArray("what is this, please?") << QString();
    QTest::newRow("cut") << start.chopped(1) << QStringLiteral("1 frames");
    QTest::newRow("rubbish at the end")
        << start + "rubbish, not a frame" << QStringLiteral("2 frames");
}

void TestViewer::damagedRecordings() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, logged);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(bytes);
    file.close();
    QCOMPARE(window_->open(file.fileName()), !logged.isEmpty());
    QVERIFY(logText().contains(QLatin1String("ERROR")));
    QVERIFY(logText().contains(logged));
    QCOMPARE(tile(3) != nullptr, logged.isEmpty());  // the old recording stays if there is no new
    QVERIFY(!window_->open(QStringLiteral("/no/such/file")));
}

void TestViewer::grid() {
    QCOMPARE(window_->findChild<TileGrid*>()->tiles().size(), 4);
    const QRect area = window_->findChild<TileGrid*>()->rect();
    for (int i = 0; i < 4; ++i) {
        QVERIFY(area.contains(tile(i)->geometry()));
        QVERIFY(tile(i)->width() > area.width() * 2 / 5);
        QVERIFY(tile(i)->height() > area.height() * 2 / 5);
        for (int other = 0; other < i; ++other)
            QVERIFY(!tile(i)->geometry().intersects(tile(other)->geometry()));
    }
}

void TestViewer::pictures() {
    window_->playback().seek(1000);
    const auto recording = Recording::load(gate);
    for (int i = 0; i < 2; ++i) {
        TileWidget* shown = tile(i);
        QCOMPARE(shown->content(), Content::Picture);
        const QRect rect = shown->pictureRect();
        QImage expected;
        QVERIFY(expected.loadFromData(
            recording->cameras[i].pictureAt(window_->playback().time())->payload(), "JPG"));
        const QSizeF size = expected.size();
        QVERIFY(qAbs(rect.width() / size.width() - rect.height() / size.height()) < 0.02);
        expected = expected.scaled(rect.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);

        const QImage picture = grabPart(shown, rect);
        QVERIFY(colours(picture) > 100);
        QVERIFY2(difference(picture, expected) < 4,
                 qPrintable(QString::number(difference(picture, expected))));
        QVERIFY(difference(picture.mirrored(), expected) > 8);
    }
}

void TestViewer::placeholders() {
    const struct {
        int position;
        Content contents[4];
    } rows[] = {
        {0, {Content::Picture, Content::Nothing, Content::SoundOnly, Content::Nothing}},
        {66, {Content::Picture, Content::Nothing, Content::SoundOnly, Content::Nothing}},
        {70, {Content::Picture, Content::Picture, Content::SoundOnly, Content::Nothing}},
        {900, {Content::Picture, Content::Picture, Content::SoundOnly, Content::Encrypted}},
        {1400, {Content::Hidden, Content::Picture, Content::SoundOnly, Content::Encrypted}},
        {1599, {Content::Hidden, Content::Picture, Content::SoundOnly, Content::Encrypted}},
        {1800, {Content::Picture, Content::Picture, Content::SoundOnly, Content::Encrypted}},
    };
    for (const auto& row : rows) {
        window_->playback().seek(row.position);
        for (int i = 0; i < 4; ++i) {
            QVERIFY2(tile(i)->content() == row.contents[i],
                     qPrintable(QStringLiteral("%1 ms, tile %2").arg(row.position).arg(i)));
            const QRect stage = tile(i)->rect().adjusted(0, 0, 0, -tile(i)->captionRect().height());
            const QImage image = grabPart(tile(i), stage);
            if (row.contents[i] == Content::Picture)
                continue;
            QVERIFY(tile(i)->pictureRect().isEmpty());
            // A dark tile with a text in the middle of it.
            QCOMPARE(image.pixel(5, 5), image.pixel(image.width() - 5, image.height() - 5));
            QVERIFY(colours(image.copy(image.width() / 4, image.height() / 4, image.width() / 2,
                                       image.height() / 2)) > 5);
        }
    }
}

void TestViewer::frameKinds() {
    const Image picture = Recording::load(gate)->cameras[0].pictures[0];
    QList<Image> frames;
    for (int i = 0; i < 5; ++i) {
        frames.append(picture.clone());
        frames[i].setTime(i);
    }
    frames[1].setEncrypted(true);
    frames[2].setHiddenFlag(true);
    frames[3].setPayload(picture.payload().left(20));
    frames[4].setPayload(QByteArray());
    const Content expected[] = {Content::Picture, Content::Encrypted, Content::Hidden,
                                Content::Damaged, Content::Damaged};
    TileWidget shown({1, QStringLiteral("Yard"), frames});
    for (int time = 4; time >= 0; --time) {
        shown.showTime(time);
        QCOMPARE(shown.content(), expected[time]);
        QCOMPARE(shown.pictureRect().isEmpty(), time != 0);
    }
    shown.showTime(-1);
    QCOMPARE(shown.content(), Content::Nothing);
    QVERIFY(shown.caption().isEmpty());
}

void TestViewer::slider() {
    auto* slider = window_->findChild<QSlider*>();
    QCOMPARE(slider->minimum(), 0);
    QCOMPARE(slider->maximum(), 9760);
    TileWidget* gateTile = tile(0);
    const QRect caption = gateTile->captionRect();
    const QImage oldPicture = grabPart(gateTile, gateTile->pictureRect());
    const QImage oldCaption = grabPart(gateTile, caption);
    QVERIFY(colours(oldCaption) > 10);
    QCOMPARE(gateTile->caption(), QStringLiteral("2026-11-15 08:00:00.000 CET"));
    slider->setValue(5000);
    QCOMPARE(window_->playback().position(), 5000);
    QVERIFY(difference(grabPart(gateTile, gateTile->pictureRect()), oldPicture) > 1);
    QVERIFY(grabPart(gateTile, caption) != oldCaption);
}

void TestViewer::playsToTheEnd() {
    Playback& playback = window_->playback();
    QSignalSpy states(&playback, &Playback::playingChanged);
    playback.seek(playback.duration() - 100);
    window_->findChild<QToolButton*>(QStringLiteral("play"))->click();
    QVERIFY(playback.isPlaying());
    QTRY_VERIFY(!playback.isPlaying());
    QCOMPARE(states, (QList<QVariantList>{{true}, {false}}));
    QCOMPARE(playback.position(), playback.duration());
    QCOMPARE(window_->findChild<QSlider*>()->value(), playback.duration());

    playback.seek(1800);  // before the event at 1900
    playback.play();
    QTRY_VERIFY(logText().contains(QLatin1String("<Event id='2' camera='2' kind='door'/>")));
    playback.pause();
    QVERIFY(!logText().contains(QLatin1String("<Event id='1'")));
    playback.seek(-5);
    QCOMPARE(playback.position(), 0);
}

void TestViewer::zones_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("caption");  // empty for a zone that is refused
    const char* const rows[][2] = {{"server", "2026-11-15 08:00:01.000 CET"},
                                   {"UTC", "2026-11-15 07:00:01.000 UTC"},
                                   {"NST", "2026-11-15 03:30:01.000 NST"},
                                   {"CST:Cuba", "2026-11-15 02:00:01.000 CST"},
                                   {":China", "2026-11-15 15:00:01.000 CST"},
                                   {"CST", ""},
                                   {"XYZ", ""},
                                   {"", ""}};
    for (const auto& row : rows)
        QTest::addRow("\"%s\"", row[0]) << QString::fromUtf8(row[0]) << QString::fromUtf8(row[1]);
}

void TestViewer::zones() {
    QFETCH(QString, text);
    QFETCH(QString, caption);
    window_->playback().seek(1000);
    const QString before = tile(0)->caption();
    QString error;
    QCOMPARE(window_->setZone(text, &error), !caption.isEmpty());
    QCOMPARE(error.isEmpty(), !caption.isEmpty());
    QCOMPARE(tile(0)->caption(), caption.isEmpty() ? before : caption);
    if (text == QLatin1String("CST"))
        QVERIFY2(error.contains(QLatin1String("Cuba Standard Time")), qPrintable(error));
}

void TestViewer::logPane() {
    QVERIFY(logText().contains(QLatin1String("INFO   Playback  Opened gate.frames: 154 frames")));
    QVERIFY(logText().contains(QLatin1String("Camera 4, Vault: 4 of 4 pictures are encrypted")));
    std::thread([] { PLOG_WARN(client, nullptr, "from %s", "another thread"); }).join();
    auto* pane = window_->findChild<LogPane*>();
    QVERIFY(!pane->toPlainText().contains(QLatin1String("from another thread")));
    QVERIFY(logText().contains(QLatin1String("from another thread")));
    window_.reset();
    PLOG_WARN(client, nullptr, "nobody %s", "there");
}

QTEST_MAIN(TestViewer)
#include "tst_viewer.moc"
