#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparser.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <utility>

using namespace pylon;

namespace {

constexpr auto V4 = ImageHeaderVersion::V4;

// 2024-02-13 10:08:49.670 UTC
constexpr qint64 gateTime = 512345678901;

Image withSlots(const QByteArray& block) {
    return Image(headerBytes(block));
}

// A text that loading twice made longer than a header can hold.
Image tooManySlots() {
    Image image = withSlots(QByteArray(254, 'x'));
    image.loadFromData(headerBytes("x"));
    return image;
}

}  // namespace

class TestImage : public QObject {
    Q_OBJECT

private slots:
    void fromBytes();
    void failedLoad_data();
    void failedLoad();
    void fromHeader();
    void copiesShareClonesDoNot();
    void accessors();
    void setsPayload();
    void slotRules();
    void timeViews_data();
    void timeViews();
    void timeZoneOfFrame();
    void timeUnits();
    void text();
    void generates();
    void refusesToGenerate();
    void regeneratesRecording();
};

void TestImage::fromBytes() {
    const QByteArray bytes = headerBytes(hex("c38600 c3b800 0107 0101"), 4) + "data";
    const Image image(bytes);
    QCOMPARE(image.payload(), "data");
    QCOMPARE(image.totalSize(), 34U);
    QCOMPARE(image.imageSize(), 4U);
    QCOMPARE(image.serverName(), QString(QChar(0xC6)));
    QCOMPARE(image.cameraName(), QString(QChar(0xF8)));
    QVERIFY(image.isDewarping());
    QCOMPARE(image.authenticationState(), Image::AuthenticationUnknown);

    const Image smallest(headerBytes());
    QCOMPARE(smallest.payloadSize() | smallest.imageSize(), 0U);
    QVERIFY(!smallest.isNull() && Image().isNull());

    // The bytes may be the payload the frame holds so far.
    Image outer(headerBytes("Old ", bytes.size()) + bytes);
    outer.loadFromData(outer.payload());
    QCOMPARE(outer.payload(), "data");
    QCOMPARE(outer.serverName(), "Old " + image.serverName());
}

void TestImage::failedLoad_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("error");
    const QByteArray frame = headerBytes("Gate", 76) + QByteArray(76, 'x');
    QTest::newRow("99 of 100 bytes") << frame.chopped(1) << QByteArray("Size mismatch");
    QTest::newRow("101 of 100 bytes") << frame + "x" << QByteArray("Size mismatch");
    QTest::newRow("header cut off") << frame.first(22) << QByteArray("Size mismatch");
    QTest::newRow("19 bytes") << frame.first(19) << QByteArray("Header too small");
    QTest::newRow("no frame") << QByteArray("no frame") << QByteArray("Unknown header protocol");
    QTest::newRow("empty") << QByteArray() << QByteArray("Unknown header protocol");
    QTest::newRow("legacy") << QByteArray(40, '\xff') << QByteArray("Protocol support dropped");
}

void TestImage::failedLoad() {
    QFETCH(QByteArray, data);
    Image image(headerBytes("", 3) + "old");
    QTEST(errorOf([&] { image.loadFromData(data); }), "error");
    QCOMPARE(image.payload(), "");
    QTEST(errorOf([&] { Image{data}; }), "error");
    // The frame stays usable.
    image.loadFromData(headerBytes("", 3) + "new");
    QCOMPARE(image.payload(), "new");
}

void TestImage::fromHeader() {
    const ImageHeader header(Image(headerBytes("Gate")));
    const Image image(header, 5);
    QCOMPARE(image.payloadSize(), 5U);
    QCOMPARE(image.totalSize(), 24U);
    QCOMPARE(image.serverName(), "Gate");
    QCOMPARE(Image(header, -5).payload(), "");

    Image other;
    other.setExtensions(header);
    QCOMPARE(other.serverName(), "Gate");
    QVERIFY(!other.isDewarping());
#ifdef QT_NO_DEBUG
    QCOMPARE(Image(ImageHeader(), 2).payloadSize(), 2U);
    other.setExtensions(ImageHeader());
    QCOMPARE(other.serverName(), "Gate");
#endif
}

void TestImage::copiesShareClonesDoNot() {
    Image image(headerBytes("Gate", 4) + "data");
    image.setAuthenticationState(static_cast<Image::AuthenticationState>(0xFFFFFFFF));
    Image copy = image;
    Image clone = image.clone();
    // A moved-from handle still has its frame.
    Image moved = std::move(copy);  // NOLINT(performance-move-const-arg)
    copy.setTime(1);                // NOLINT(bugprone-use-after-move)
    moved.setHiddenFlag(true);
    moved.payloadData()[0] = 'D';
    QCOMPARE(image.time(), 1);
    QVERIFY(image.isHidden());
    QCOMPARE(image.payload(), "Data");

    QCOMPARE(clone.time(), 0);
    QVERIFY(!clone.isHidden());
    QCOMPARE(clone.payload(), "data");
    QCOMPARE(clone.serverName(), "Gate");
    QCOMPARE(clone.authenticationState(), 0xFFFFFFFF);

    copy = clone;
    clone.setTime(2);
    QCOMPARE(copy.time(), 2);
}

void TestImage::accessors() {
    Image image;
    image.setServerUid(~quint64{0});
    std::as_const(image).setId(~quint64{1});
    image.setServerId(0xFFFFFFFE);
    image.setSortId(0xFFFFFFFD);
    image.setStreamId(0xFFFC);
    image.setChannel(0xABCD1234);
    image.setLinkedStreamNextTimeStamp(-5);
    QByteArray bytes = headerBytes();
    bytes[16] = '\x96';
    bytes[17] = '\x88';
    QVERIFY(!image.isEncrypted());
    QCOMPARE(image.cameraId(), 0x1234U);
    QCOMPARE(image.trackId(), 0xABCDU);

    // What is not on the wire outlives loading.
    image.loadFromData(bytes);
    QCOMPARE(image.ServerUid(), ~quint64{0});
    QCOMPARE(image.id(), ~quint64{1});
    QCOMPARE(image.serverId(), 0xFFFFFFFE);
    QCOMPARE(image.sortId(), 0xFFFFFFFD);
    QCOMPARE(image.streamId(), quint16{0xFFFC});
    QCOMPARE(image.linkedStreamNextTimeStamp(), -5);
    QCOMPARE(image.channel(), 3U);

    QVERIFY(image.isEncrypted() && image.receivedEncrypted());
    image.setEncrypted(false);
    QVERIFY(!image.isEncrypted() && image.receivedEncrypted());
    QVERIFY(!image.iframe() && image.isRecording());
    image.setIFrame();
    QVERIFY(image.iframe());
    QCOMPARE(image.flags(), quint8{0x80});
    image.addFlags(0x0A);
    image.clearFlags(0x81);
    QCOMPARE(image.flags(), quint8{0x0A});
}

void TestImage::setsPayload() {
    Image image(headerBytes("Gate", 2) + "ab");
    const QByteArray payload(100, 'p');
    image.setPayload(payload);
    QCOMPARE(image.payload().constData(), payload.constData());
    QCOMPARE(image.totalSize(), 124U);
    QCOMPARE(image.imageSize(), 100U);

    // A longer or shorter block counts in totalSize only.
    image.setHiddenFlag(true);
    image.setPayload("");
    QCOMPARE(image.totalSize(), 20U + 10);
    QCOMPARE(image.imageSize(), 6U);
    image.setExtensions(ImageHeader(Image()));
    image.setPayload("a");
    QCOMPARE(image.imageSize(), 0xFFFFFFFDU);

    Image full = tooManySlots();
    QCOMPARE(errorOf([&] { full.setPayload("stored"); }), "Extension field is too large");
    QCOMPARE(full.payload(), "stored");
    QCOMPARE(full.totalSize(), 21U);
}

void TestImage::slotRules() {
    const struct {
        const char* marks;
        const char* shown;
        const char* hidden;
    } rows[] = {{"", "", "h"}, {"ahbh", "ab", "ahbh"}, {"hhh", "", "hhh"}, {"H", "H", "Hh"}};
    for (const auto& row : rows) {
        for (bool hide : {true, false}) {
            Image image = withSlots(hex("0000000000") + row.marks);
            QCOMPARE(image.isHidden(), QByteArray(row.marks).contains('h'));
            image.setHiddenFlag(hide);
            image.setHiddenFlag(hide);
            QCOMPARE(image.isHidden(), hide);
            QCOMPARE(image.extension(ImageHeaderExtension::Marks), hide ? row.hidden : row.shown);
        }
    }
    QCOMPARE(withSlots("").linkedAudioCameraID(), -1);
    QCOMPARE(withSlots(hex("0000 0100")).linkedAudioCameraID(), 3);  // its own camera
    QCOMPARE(withSlots(hex("0000 0107")).linkedAudioCameraID(), 7);
    QCOMPARE(withSlots(hex("0000 02ff01")).linkedAudioCameraID(), 255);
}

void TestImage::timeViews_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<QString>("text");
    const QString utc("02-13 10:08:49.670 UTC");
    QTest::newRow("UTC") << TimeZone() << utc;
    QTest::newRow("+5:30") << TimeZone(5, 2) << "02-13 15:38:49.670 UTC";
    QTest::newRow("+14:00") << TimeZone(14, 0) << "02-14 00:08:49.670 UTC";
    QTest::newRow("-23:45") << TimeZone(-23, 3) << "02-12 10:23:49.670 UTC";
    QTest::newRow("unknown offset, name CET") << TimeZone(127, "CET") << "02-13 11:08:49.670 UTC";
    QTest::newRow("unknown offset, ambiguous CST") << TimeZone(127, "CST") << utc;
    QTest::newRow("unknown offset, abbreviation only")
        << TimeZone(127, TimeZoneAbbrevation("CET")) << utc;
}

void TestImage::timeViews() {
    QFETCH(TimeZone, zone);
    QFETCH(QString, text);
    const QString format("MM-dd hh:mm:ss.zzz t");
    const QByteArray utf8 = format.toUtf8();
    Image image;
    image.setTime(gateTime);
    image.setTimeZone(TimeZone(-3, 2));

    QCOMPARE(image.dateTime(zone, format), text);
    QCOMPARE(image.dateTime(zone, "MM-dd hh:mm:ss.zzz t"), text.toStdString());
    QCOMPARE(image.dateTimeQString(format, zone), text);
    QCOMPARE(image.qDateTime(zone).offsetFromUtc(), 0);
    QCOMPARE(Image::qDateTime(zone, gateTime), image.qDateTime(zone));
    QCOMPARE(Image::dateTime(zone, gateTime, utf8.constData()), text.toStdString());
    const qint64 shift = image.qDateTime(zone).toMSecsSinceEpoch() - image.timestampMSec();
    QCOMPARE(shift % 900'000, 0);

    zone.setServerTimeZone(true);
    QCOMPARE(image.dateTime(zone, utf8.constData()), "02-13 06:38:49.670 UTC");
    QCOMPARE(image.dateTime("MM-dd hh:mm:ss.zzz t"), "02-13 06:38:49.670 UTC");
    QCOMPARE(Image::dateTime(zone, gateTime, utf8.constData()), text.toStdString());
}

void TestImage::timeZoneOfFrame() {
    Image image;
    QCOMPARE(image.timeZoneName(), "");
    image.setTime(gateTime);
    image.setTimeZone(TimeZone(-14, TimeZoneAbbrevation("NST")));
    QCOMPARE(int{image.timeZoneOffset()}, -14);
    QCOMPARE(image.timeZoneName(), "NST");
    QCOMPARE(int{image.timeZone().offset()}, -14);
    QCOMPARE(int{image.timeZone().abbrevation().index()}, 69);
    QCOMPARE(image.timeZone().name(), "");
    QCOMPARE(image.frameQTimeZone().offsetFromUtc(QDateTime()), -14 * 900);
    QCOMPARE(image.qDateTimeServerTimeZone().toString(Qt::ISODateWithMs),
             "2024-02-13T06:38:49.670-03:30");

    QCOMPARE(Image::timeZoneIndexToName(21), "CET");
    QCOMPARE(Image::timeZoneIndexToName(111), "WST");
    for (qint8 index : {qint8{0}, qint8{112}, qint8{-1}})
        QCOMPARE(Image::timeZoneIndexToName(index), "");

    // Beyond what Qt takes for a zone; the wall clock is 31:45 ahead.
    image.setTimeZone(TimeZone(127, ""));
    QVERIFY(!image.qDateTimeServerTimeZone().isValid());
    QCOMPARE(image.dateTime("dd hh:mm"), "14 17:53");
}

void TestImage::timeUnits() {
    Image image;
    for (const auto& [time, msecs] : {std::pair{1, 3}, {2, 6}, {3, 10}, {-1, -3}, {-4, -13}}) {
        image.setTime(time);
        QCOMPARE(image.timestampMSec(), msecs);
    }
    const QDateTime noon(QDate(2024, 7, 1), QTime(12, 0, 0, 7));
    const auto msecs = static_cast<quint64>(noon.toMSecsSinceEpoch());
    QCOMPARE(Image::dateTime(msecs, "yyyy-MM-dd hh:mm:ss.zzz"), "2024-07-01 12:00:00.007");
}

void TestImage::text() {
    Image image(headerBytes(hex("00") + "Gate", 512) + QByteArray(512, 'x'));
    image.setChannel(0x10003);
    image.setFlags(0x88);
    image.setTime(gateTime);
    image.setId(~quint64{0});
    QCOMPARE(image.toString(),
             "Image: { Camera: 'Gate'. Channel: 10003. Payload Size: 512. Flags: 10001000. "
             "Time: 512345678901. Type: 'V'. Rate: 0 }");
    QCOMPARE(image.idToString(), "[ id: 18446744073709551615, time: 512345678901 (10:08:49.670) ]");

    Image odd(headerBytes("%1" + hex("00") + "%2"));
    odd.setChannel(0xABCDEF01);
    odd.setType(0xE9);
    odd.setTime(-3);
    QCOMPARE(odd.toString(), QString("Image: { Camera: '%2'. Channel: abcdef01. Payload Size: 0. "
                                     "Flags: 0. Time: -3. Type: '") +
                                 QChar(0xE9) + "'. Rate: 0 }");
    QCOMPARE(odd.idToString(), "[ id: 0, time: -3 (23:59:59.990) ]");
}

void TestImage::generates() {
    Image image(headerBytes("Gate", 3) + "abc");
    image.setHiddenFlag(true);
    image.setPayload("payload");
    QByteArray expected = headerBytes("Gate" + hex("00 00000000") + "h", 7);
    expected[16] = 'V';
    QByteArray frame;
    QByteArray header;
    image.generateNetworkImage(frame, V4);
    image.generateNetworkImageHeader(header, V4);
    QCOMPARE(frame.toHex(' '), QByteArray(expected + "payload").toHex(' '));
    // Without the frame around it, the size field goes by the block as last parsed.
    QCOMPARE(header.sliced(4), expected.sliced(4));
    QCOMPARE(header.first(4).toHex(), "2b000080");

    QByteArray used(40, 'x');
    image.generateNetworkImage(used, V4);
    QCOMPARE(used.first(4).toHex(), "2f000080");
    QCOMPARE(used.sliced(4), expected.sliced(4) + QByteArray(10, 'x') + "payload");
}

void TestImage::refusesToGenerate() {
    const auto check = [](const Image& image, int version, const QByteArray& error) {
        const auto wanted = static_cast<ImageHeaderVersion>(version);
        QByteArray out("old");
        QCOMPARE(errorOf([&] { image.generateNetworkImage(out, wanted); }), error);
        QCOMPARE(errorOf([&] { image.generateNetworkImageHeader(out, wanted); }), error);
        QCOMPARE(out, "old");
    };
    check(Image(), 0, "Unknown header protocol");
    check(Image(), 1, "Protocol support dropped");
    check(Image(), 3, "Unknown header protocol");
    check(tooManySlots(), 2, "Extension field is too large");
}

void TestImage::regeneratesRecording() {
    QFile file(QStringLiteral(PYLON_GATE_RECORDING));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const auto parser = LyraImageHeaderParser::createParser(V4);
    int frames = 0;
    for (quint32 size = 0; !file.atEnd(); ++frames) {
        parser->readSize(file, size);
        QByteArray bytes = file.read(size);
        const Image image(bytes);
        QByteArray out;
        image.generateNetworkImage(out, V4);
        bytes[16] = static_cast<char>(bytes[16] | 0x40);
        QVERIFY2(out == bytes, qPrintable(image.toString()));
    }
    QCOMPARE(frames, 154);
}

QTEST_GUILESS_MAIN(TestImage)
#include "tst_image.moc"
