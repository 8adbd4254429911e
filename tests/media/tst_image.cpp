#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <QtTest/QtTest>

#include <array>
#include <atomic>
#include <iostream>
#include <sstream>
#include <thread>

using namespace pylon;

class TestImage : public QObject {
    Q_OBJECT

private slots:
    void loads() {
        const QByteArray bytes = headerBytes(hex("c38600 c3b800 00 0101"), 4) + "data";
        Image image(headerBytes("Old ", bytes.size()) + bytes);
        QVERIFY(!Image(headerBytes()).isNull() && Image().isNull() && !image.isDewarping());
        image.setId(7);
        image.loadFromData(image.payload());  // the bytes may be its own
        QVERIFY(image.isDewarping() && image.totalSize() == 33 && image.imageSize() == 4);
        QVERIFY(image.payload() == "data" && image.id() == 7);
        QCOMPARE(image.serverName() + image.cameraName(), QStringLiteral("Old \u00c6\u00f8"));
    }

    void fields() {
        Image image(headerBytes("%1" + hex("00") + "%2").replace(16, 1, hex("96")));
        image.setEncrypted(false);
        QVERIFY(!image.isEncrypted() && image.receivedEncrypted());
        image.setFlags(0x88);
        QVERIFY(!image.iframe() && image.isRecording());
        image.setIFrame();
        QVERIFY(image.iframe() && image.flags() == 0x80);
        image.addFlags(0x0A);
        image.clearFlags(0x03);
        image.setChannel(0xABCDEF01);
        QVERIFY(image.cameraId() == 0xEF01 && image.trackId() == 0xABCD);
        image.setType(0xE9);
        image.setTime(-3);
        image.setId(~quint64{0});
        image.setServerUid(2);
        image.setServerId(3);
        image.setSortId(4);
        image.setStreamId(5);
        image.setLinkedStreamNextTimeStamp(6);
        const Image clone = image.clone();
        QVERIFY(clone.ServerUid() == 2 && clone.serverId() == 3 && clone.sortId() == 4);
        QVERIFY(clone.streamId() == 5 && clone.linkedStreamNextTimeStamp() == 6);
        QCOMPARE(clone.toString(),
                 QStringLiteral("Image: { Camera: '%2'. Channel: abcdef01. Payload Size: 0. "
                                "Flags: 10001000. Time: -3. Type: '\u00e9'. Rate: 0 }"));
        QCOMPARE(clone.idToString(), "[ id: 18446744073709551615, time: -3 (23:59:59.990) ]");
    }

    // Copies share the record, also one that was moved from; clones do not. Each thread drops the
    // handles it was given, and the last one frees the record.
    void copiesAndClones() {
        std::atomic<int> wrong = 0;
        Image frame(headerBytes("Gate", 2) + "xx"), copy = frame;
        const Image moved = std::move(copy);
        copy.setPayload("ab");  // NOLINT(bugprone-use-after-move)
        std::vector<std::jthread> threads;
        for (const char mark : {'1', '2', '3', '4'}) {
            threads.emplace_back([&wrong, mark, frame, header = ImageHeader(moved)]() mutable {
                for (int round = 0; round < 2000; ++round) {
                    const Image shared = frame;
                    Image clone = shared.clone();
                    clone.setHiddenFlag(true);
                    clone.payloadData()[1] = mark;
                    wrong += clone.payload().back() != mark || ImageHeader(header).channel() != 3;
                    clone.loadFromData(headerBytes("", 1) + mark);
                    wrong += clone.payload().front() != mark || clone.serverName() != "Gate";
                    wrong += shared.payload() != "ab" || shared.isHidden();
                }
            });
        }
        frame = copy = Image();
        threads.clear();
        QVERIFY(wrong == 0 && moved.payload() == "ab");
    }

    void slotRules() {
        const std::array<QByteArray, 3> rows[] = {
            {"", "", "h"}, {"ahbh", "ab", "ahbh"}, {"H", "H", "Hh"}};
        for (const auto& [marks, shown, hidden] : rows) {
            Image image(headerBytes(hex("0000000000") + marks));
            for (const bool hide : {true, true, false, false}) {
                image.setHiddenFlag(hide);
                QCOMPARE(image.isHidden(), hide);
                QCOMPARE(image.extension(ImageHeaderExtension::Marks), hide ? hidden : shown);
            }
        }
        for (const auto& [slot, camera] : {std::pair("", -1), {"0100", 3}, {"02ff01", 255}})
            QCOMPARE(Image(headerBytes(hex("0000") + hex(slot))).linkedAudioCameraID(), camera);
    }

    void timeViews() {
        Image image;
        image.setTime(512345678901);  // 2024-02-13 10:08:49.670 UTC
        image.setTimeZone(TimeZone(-14, TimeZoneAbbrevation("NST")));
        const char* const format = "dd hh:mm:ss.zzz t";
        const std::tuple<TimeZone, QString, std::string> rows[] = {
            {TimeZone(127, "CET"), "13 11:08:49.670 UTC", "13 11:08:49.670 UTC"},
            {ServerTimeZone(), "13 06:38:49.670 UTC",
             "13 10:08:49.670 UTC"}};  // without a frame, no server
        for (const auto& [zone, ofFrame, ofTime] : rows) {
            QCOMPARE(image.dateTime(zone, QString(format)), ofFrame);
            QCOMPARE(image.dateTimeQString(format, zone), ofFrame);
            QCOMPARE(image.dateTime(zone, format), ofFrame.toStdString());
            QCOMPARE(Image::dateTime(zone, 512345678901, format), ofTime);
        }
        QCOMPARE(image.dateTime(format), "13 06:38:49.670 UTC");
        QCOMPARE(image.timeZone(), TimeZone(-14, TimeZoneAbbrevation("NST")));
        QVERIFY(image.timeZoneName() == "NST" && Image::timeZoneIndexToName(111) == "WST");
        QCOMPARE(image.qDateTimeServerTimeZone().toString("hh:mm t"), "06:38 UTC-03:30");
        const QDateTime noon(QDate(2024, 7, 1), QTime(12, 0));  // local time
        QCOMPARE(Image::dateTime(quint64(noon.toMSecsSinceEpoch()), "dd hh:mm"), "01 12:00");
    }

    // A longer or shorter block counts in totalSize only.
    void generates() {
        Image image(ImageHeader(Image(headerBytes("Gate"))), 3);
        QCOMPARE(image.payloadSize(), 3U);
        image.setHiddenFlag(true);
        image.setPayload("payload");
        QVERIFY(image.payloadSize() == 7 && image.totalSize() == 37 && image.imageSize() == 13);
        const QByteArray rest =
            headerBytes("Gate" + hex("00 00000000") + "h").replace(16, 1, "V").sliced(4);
        QByteArray header, used(40, 'x');
        image.generateNetworkImageHeader(header, ImageHeaderVersion::V4);
        image.generateNetworkImage(used, ImageHeaderVersion::V4);
        // Without the frame around it, the size field goes by the block as last parsed.
        QCOMPARE(header, hex("2b000080") + rest);
        QCOMPARE(used, hex("2f000080") + rest + QByteArray(10, 'x') + "payload");
        image.setExtensions(ImageHeader(Image()));
        image.setPayload("a");
        QCOMPARE(image.imageSize(), 0xFFFFFFFDU);
    }

    // Below the home folder, which may be a real one where the system does not ask the environment.
    void dumps() {
        const std::tuple<QByteArray, QByteArray, const char*, QString, QString> rows[] = {
            {hex("5200 46726f6e7420646f6f7200 0109 02037f 0101 6800 7e7e"), hex("ff0102"),
             "04010200", "",
             "131332-260-2-0-136-0-1-47-3-3-2-1-10-1-2-1-1-2-9-130-252-82-989-Front_door.bin"},
            // An event; negative sums.
            {hex("00 c3bc20c3bc"), hex("ff"), "ff000000", "event/",
             "255-255-0-0-136-0-1-27-1-1-18446744073709551615-0-5-0-0-0-0-0--1-0-0-0-"
             "18446744073709551390-\u00fc_\u00fc.bin"},
            // Leads elsewhere.
            {hex("00") + "/../x", "", "03000000", "",
             "3-3-0-0-136-0-1-26-0-0-0-0-5-0-0-0-0-0--1-0-0-0-306-/../x.bin"}};
        const QTemporaryDir home;
        qputenv("HOME", QFile::encodeName(home.path()));
        const QString images = QDir::homePath() + "/TestServerData/unit/images/";
        for (const auto& [block, payload, channel, folder, ending] : rows) {
            QByteArray bytes = headerBytes(block, payload.size()) + payload;
            bytes.replace(4, 14, hex(channel) + hex("fffe00000000 15 04 96 88"));
            Image frame(bytes), back;
            frame.setEncrypted(false);
            const bool refused = ending.contains('/');
            const QString name = "img-7_0_4294967295-65279_4_CET-V-p-" + ending;
            const QString path = images + folder + name;
            QDir().mkpath(path.section('/', 0, refused ? -3 : -2));
            std::ostringstream printed;
            std::streambuf* const before = std::cout.rdbuf(printed.rdbuf());
            Image::dump(bytes.constData(), quint32(bytes.size()), frame, 7, 0, 4294967295);
            std::cout.rdbuf(before);
            const QString outcome = refused ? "not dumped" : "    dumped";
            QCOMPARE(
                QString::fromStdString(printed.str()),
                outcome + QString(" filename size=%1  ").arg(name.toUtf8().size()) + name + '\n');
            QCOMPARE(back.undump(path), !refused);
            QCOMPARE(back.payload(), payload);
            QFile::remove(path) || QDir().rmdir(path.section('/', 0, -3));
        }
        QDir().rmpath(images + "event");
    }

    // Looks at the first frame of a file, and loads all of it.
    void readsFiles() {
        const QByteArray bytes = headerBytes("", 3) + "new";
        const std::tuple<QByteArray, quint32, QByteArray> rows[] = {
            {hex("e80300"), 42, "Unknown header protocol"},
            {hex("ffffffff"), 42, "Protocol support dropped"},
            {hex("ffffff83"), 0x3FFFFFF, "Header too small"},
            {bytes + ".", 23, "Size mismatch"},
            {bytes.chopped(1), 23, "Size mismatch"},
            {bytes, 23, ""}};
        const QTemporaryDir folder;
        QFile file(folder.filePath("frame.bin"));
        Image image(bytes);
        QVERIFY(!image.undump(file.fileName()) && !image.undump(folder.path()));
        for (const auto& [content, expected, error] : rows) {
            QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Truncate));
            file.write(content);
            file.seek(0);
            quint32 size = 42;
            QCOMPARE(errorOf([&] { image.determineSizeFromFile(file, size); }),
                     expected == 42 ? error : "");
            QVERIFY(size == expected && file.pos() == 0 && image.payload() == "new");
            file.close();
            QCOMPARE(errorOf([&] { image.undump(file.fileName()); }), error);
            QCOMPARE(image.payload(), error.isEmpty() ? "new" : "");
            QCOMPARE(errorOf([&] { Image{content}; }), error);
            image.loadFromData(bytes);  // stays usable
        }
    }
};

QTEST_GUILESS_MAIN(TestImage)
#include "tst_image.moc"
