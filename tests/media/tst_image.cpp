#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparser.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <tuple>
#include <utility>

using namespace pylon;

namespace {

constexpr auto V4 = ImageHeaderVersion::V4;

// 2024-02-13 10:08:49.670 UTC
constexpr qint64 gateTime = 512345678901;

// A text that loading twice made longer than a header can hold.
Image tooManySlots() {
    Image image(headerBytes(QByteArray(254, 'x')));
    image.loadFromData(headerBytes("x"));
    return image;
}

}  // namespace

class TestImage : public QObject {
    Q_OBJECT

private slots:
    void loads() {
        const QByteArray bytes = headerBytes(hex("c38600 c3b800 0107 0101"), 4) + "data";
        Image image(headerBytes("Old ", bytes.size()) + bytes);
        QVERIFY(!image.isNull() && Image().isNull());
        QVERIFY(!image.isDewarping());
        image.loadFromData(image.payload());  // the bytes may be its own
        QCOMPARE(image.payload(), "data");
        QCOMPARE(image.totalSize(), 34U);
        QCOMPARE(image.imageSize(), 4U);
        QCOMPARE(image.serverName(), QStringLiteral("Old ") + QChar(0xC6));
        QCOMPARE(image.cameraName(), QString(QChar(0xF8)));
        QVERIFY(image.isDewarping());
        QCOMPARE(image.authenticationState(), Image::AuthenticationUnknown);

        const QByteArray frame = headerBytes("Gate", 76) + QByteArray(76, 'x');
        const std::pair<QByteArray, QByteArray> rows[] = {{frame.chopped(1), "Size mismatch"},
                                                          {frame + "x", "Size mismatch"},
                                                          {frame.first(22), "Size mismatch"},
                                                          {"", "Unknown header protocol"}};
        for (const auto& [data, error] : rows) {
            image.loadFromData(bytes);  // stays usable
            QCOMPARE(errorOf([&] { image.loadFromData(data); }), error);
            QCOMPARE(image.payload(), "");
            QCOMPARE(errorOf([&] { Image{data}; }), error);
        }
    }

    void copiesShareClonesDoNot() {
        Image image(headerBytes("Gate", 4) + "data");
        image.setAuthenticationState(static_cast<Image::AuthenticationState>(0xFFFFFFFF));
        Image copy = image;
        const Image clone = image.clone();
        // A moved-from handle still has its frame.
        Image moved = std::move(copy);  // NOLINT(performance-move-const-arg)
        copy.setTime(1);                // NOLINT(bugprone-use-after-move)
        moved.setHiddenFlag(true);
        moved.payloadData()[0] = 'D';
        QVERIFY(image.time() == 1 && image.isHidden() && image.payload() == "Data");
        QVERIFY(clone.time() == 0 && !clone.isHidden() && clone.payload() == "data");
        QCOMPARE(clone.serverName(), "Gate");
        QCOMPARE(clone.authenticationState(), 0xFFFFFFFF);
        copy = clone;
        copy.setTime(2);
        QCOMPARE(clone.time(), 2);
    }

    // Distinct values tell every field from its neighbours; what is not on the wire outlives
    // loading.
    void fields() {
        Image image;
        image.setServerUid(~quint64{0});
        std::as_const(image).setId(~quint64{1});
        image.setServerId(0xFFFFFFFE);
        image.setSortId(0xFFFFFFFD);
        image.setStreamId(0xFFFC);
        QByteArray bytes = headerBytes().replace(4, 4, hex("3412cdab"));
        image.loadFromData(bytes.replace(16, 2, hex("9688")));
        const QList<quint64> ids = {image.ServerUid(), image.id(),       image.serverId(),
                                    image.sortId(),    image.streamId(), image.cameraId(),
                                    image.trackId()};
        QCOMPARE(ids, QList<quint64>({~quint64{0}, ~quint64{1}, 0xFFFFFFFE, 0xFFFFFFFD, 0xFFFC,
                                      0x1234, 0xABCD}));

        image.setEncrypted(false);
        QVERIFY(!image.isEncrypted() && image.receivedEncrypted());
        QVERIFY(!image.iframe() && image.isRecording());
        image.setIFrame();
        QVERIFY(image.iframe() && image.flags() == 0x80);
        image.addFlags(0x0A);
        image.clearFlags(0x03);
        QCOMPARE(image.flags(), 0x88);
    }

    void setsPayload() {
        Image image(ImageHeader(Image(headerBytes("Gate"))), 5);
        QCOMPARE(image.payloadSize(), 5U);
        QCOMPARE(Image(ImageHeader(image), -5).payload(), "");
        const QByteArray payload(100, 'p');
        image.setPayload(payload);
        QCOMPARE(image.payload().constData(), payload.constData());
        QCOMPARE(image.totalSize(), 124U);
        // A longer or shorter block counts in totalSize only.
        image.setHiddenFlag(true);
        image.setPayload("");
        QCOMPARE(image.totalSize(), 20U + 10);
        QCOMPARE(image.imageSize(), 6U);
        image.setExtensions(ImageHeader(Image()));
        image.setPayload("a");
        QCOMPARE(image.imageSize(), 0xFFFFFFFDU);
#ifdef QT_NO_DEBUG
        image.setExtensions(ImageHeader());
        QCOMPARE(Image(ImageHeader(), 2).payloadSize(), 2U);
#endif

        Image full = tooManySlots();
        QCOMPARE(errorOf([&] { full.setPayload("stored"); }), "Extension field is too large");
        QCOMPARE(full.payload(), "stored");
        QCOMPARE(full.totalSize(), 21U);
    }

    void slotRules() {
        const struct {
            const char* marks;
            const char* shown;
            const char* hidden;
        } rows[] = {{"", "", "h"}, {"ahbh", "ab", "ahbh"}, {"H", "H", "Hh"}};
        for (const auto& [marks, shown, hidden] : rows) {
            for (bool hide : {true, false}) {
                Image image(headerBytes(hex("0000000000") + marks));
                image.setHiddenFlag(hide);
                image.setHiddenFlag(hide);
                QCOMPARE(image.isHidden(), hide);
                QCOMPARE(image.extension(ImageHeaderExtension::Marks), hide ? hidden : shown);
            }
        }
        const auto linkedCamera = [](const char* block) {
            return Image(headerBytes(hex(block))).linkedAudioCameraID();
        };
        QCOMPARE(linkedCamera(""), -1);
        QCOMPARE(linkedCamera("0000 0100"), 3);  // its own camera
        QCOMPARE(linkedCamera("0000 02ff01"), 255);
    }

    void timeViews() {
        TimeZone server(8, "CET");
        server.setServerTimeZone(true);
        const struct {
            TimeZone zone;
            QString text;
        } rows[] = {{TimeZone(14, 0), "02-14 00:08:49.670 UTC"},
                    {TimeZone(-23, 3), "02-12 10:23:49.670 UTC"},
                    {TimeZone(127, "CET"), "02-13 11:08:49.670 UTC"},
                    {TimeZone(127, "CST"), "02-13 10:08:49.670 UTC"},  // ambiguous
                    {TimeZone(127, TimeZoneAbbrevation("CET")), "02-13 10:08:49.670 UTC"},
                    {server, "02-13 06:38:49.670 UTC"}};
        const char* const format = "MM-dd hh:mm:ss.zzz t";
        Image image;
        image.setTime(gateTime);
        image.setTimeZone(TimeZone(-3, 2));
        for (const auto& [zone, text] : rows) {
            QCOMPARE(image.dateTime(zone, QString(format)), text);
            QCOMPARE(image.dateTimeQString(format, zone), text);
            QCOMPARE(image.dateTime(zone, format), text.toStdString());
            if (!zone.isServerTimeZone())
                QCOMPARE(Image::dateTime(zone, gateTime, format), text.toStdString());
        }
        QCOMPARE(image.dateTime(format), "02-13 06:38:49.670 UTC");
        // Without a frame the mark of the server's zone has no meaning.
        QCOMPARE(Image::dateTime(server, gateTime, format), "02-13 12:08:49.670 UTC");
    }

    void timeZoneOfFrame() {
        Image image;
        for (const auto& [time, msecs] : {std::pair{1, 3}, {3, 10}, {-4, -13}}) {
            image.setTime(time);
            QCOMPARE(image.timestampMSec(), msecs);
        }
        image.setTime(gateTime);
        image.setTimeZone(TimeZone(-14, TimeZoneAbbrevation("NST")));
        QCOMPARE(image.timeZone(), TimeZone(-14, TimeZoneAbbrevation("NST")));
        QCOMPARE(image.timeZoneName(), "NST");
        QCOMPARE(image.qDateTimeServerTimeZone().toString(Qt::ISODateWithMs),
                 "2024-02-13T06:38:49.670-03:30");
        QCOMPARE(Image::timeZoneIndexToName(111), "WST");
        QCOMPARE(Image::timeZoneIndexToName(-1), "");

        // Beyond what Qt takes for a zone; the wall clock is 31:45 ahead.
        image.setTimeZone(TimeZone(127, ""));
        QVERIFY(!image.qDateTimeServerTimeZone().isValid());
        QCOMPARE(image.dateTime("dd hh:mm"), "14 17:53");
        const QDateTime noon(QDate(2024, 7, 1), QTime(12, 0, 0, 7));  // local time
        QCOMPARE(Image::dateTime(static_cast<quint64>(noon.toMSecsSinceEpoch()), "dd hh:mm:ss.zzz"),
                 "01 12:00:00.007");
    }

    void text() {
        Image image(headerBytes("%1" + hex("00") + "%2", 512) + QByteArray(512, 'x'));
        image.setChannel(0xABCDEF01);
        image.setType(0xE9);
        image.setFlags(0x88);
        image.setTime(-3);
        image.setId(~quint64{0});
        QCOMPARE(image.toString(),
                 QStringLiteral("Image: { Camera: '%2'. Channel: abcdef01. Payload Size: 512. "
                                "Flags: 10001000. Time: -3. Type: '\u00e9'. Rate: 0 }"));
        QCOMPARE(image.idToString(), "[ id: 18446744073709551615, time: -3 (23:59:59.990) ]");
    }

    void generates() {
        Image image(headerBytes("Gate", 3) + "abc");
        image.setHiddenFlag(true);
        image.setPayload("payload");
        QByteArray expected = headerBytes("Gate" + hex("00 00000000") + "h", 7);
        expected[16] = 'V';
        QByteArray header;
        image.generateNetworkImageHeader(header, V4);
        // Without the frame around it, the size field goes by the block as last parsed.
        QCOMPARE(header.sliced(4), expected.sliced(4));
        QCOMPARE(header.first(4).toHex(), "2b000080");
        QByteArray used(40, 'x');
        image.generateNetworkImage(used, V4);
        QCOMPARE(used.first(4).toHex(), "2f000080");
        QCOMPARE(used.sliced(4), expected.sliced(4) + QByteArray(10, 'x') + "payload");
    }

    void refusesToGenerate() {
        const std::tuple<Image, int, const char*> rows[] = {
            {Image(), 0, "Unknown header protocol"},
            {Image(), 1, "Protocol support dropped"},
            {Image(), 3, "Unknown header protocol"},
            {tooManySlots(), 2, "Extension field is too large"},
        };
        for (const auto& [frame, version, error] : rows) {
            QByteArray out("old");
            const auto wanted = static_cast<ImageHeaderVersion>(version);
            const Image& image = frame;
            QCOMPARE(errorOf([&] { image.generateNetworkImage(out, wanted); }), error);
            QCOMPARE(errorOf([&] { image.generateNetworkImageHeader(out, wanted); }), error);
            QCOMPARE(out, "old");
        }
    }

    void regeneratesRecording() {
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
};

QTEST_GUILESS_MAIN(TestImage)
#include "tst_image.moc"
