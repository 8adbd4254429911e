#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include "inspectrun.h"
#include "wireframe.h"

namespace {

QString textOf(const QString& hex) {
    return QString::fromUtf8(QByteArray::fromHex(hex.toLatin1()));
}

// What --json must say about a frame of the sample, from the description that came with it.
QJsonObject expectedObject(const QJsonObject& truth) {
    const QJsonArray slotTexts = truth[u"slots"].toArray();
    const auto slot = [&](int i) {
        return QByteArray::fromHex(slotTexts[i].toString().toLatin1());
    };
    const qint64 time = truth[u"time"].toInteger();
    const qint64 msecs = time * 10 / 3;
    const int flags = truth[u"flags"].toInt();
    const int camera = truth[u"cam"].toInt();
    const int audio = slot(2).isEmpty() ? -1 : slot(2)[0] == 0 ? camera : uchar(slot(2)[0]);
    return {
        {"offset", truth[u"at"]},
        {"size", truth[u"size"]},
        {"time300", time},
        {"timestampMs", msecs},
        {"utc", QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC).toString(Qt::ISODateWithMs)},
        {"zone", truth[u"zone"].toInt() == 21 ? "CET" : "GMT"},
        {"zoneQuarters", truth[u"offset"]},
        {"camera", camera},
        {"track", truth[u"track"]},
        {"type", truth[u"type"]},
        {"key", (flags & 0x08) == 0},
        {"recording", (flags & 0x80) != 0},
        {"hidden", slot(5).contains('h')},
        {"dewarped", !slot(3).isEmpty()},
        {"encrypted", truth[u"encrypted"].toBool()},
        {"newKeyRequired", truth[u"newkey"].toBool()},
        {"linkedAudioCamera", audio},
        {"rate", truth[u"rate"]},
        {"flags", flags},
        {"server", textOf(slotTexts[0].toString())},
        {"cameraName", truth[u"camera"]},
        {"payloadSize", truth[u"payload"]},
        {"slots", slotTexts},
    };
}

}  // namespace

class TestInspector : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void jsonOfSample();
    void jsonText_data();
    void jsonText();
    void damage_data();
    void damage();
    void resync();
    void table();
    void summary();
    void zone_data();
    void zone();
    void selection_data();
    void selection();
    void usageErrors_data();
    void usageErrors();
    void information();
    void log_data();
    void log();
    void logFile();
    void severalFiles();
    void readerGoesAway();

private:
    QString write(const QByteArray& content) {
        QFile file(dir_.filePath(QStringLiteral("input.frames")));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
                   ? file.fileName()
                   : QString();
    }

    QTemporaryDir dir_;
    const QString sample_ = QStringLiteral(SAMPLE_RECORDING);
    QByteArray sampleBytes_;
};

void TestInspector::initTestCase() {
    sampleBytes_ = readAll(sample_);
    QCOMPARE(sampleBytes_.size(), 822249);
}

void TestInspector::jsonOfSample() {
    const QJsonArray truth = QJsonDocument::fromJson(readAll(QStringLiteral(SAMPLE_TRUTH))).array();
    const Run run = inspect({"--json", sample_});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(!run.out.contains('\r'));
    const QByteArrayList lines = run.out.split('\n');
    QCOMPARE(truth.size(), 154);
    QCOMPARE(lines.size(), truth.size() + 1);
    for (qsizetype i = 0; i < truth.size(); ++i) {
        QCOMPARE(QJsonDocument::fromJson(lines[i]).object(), expectedObject(truth[i].toObject()));
    }
    QCOMPARE(inspect({"--json", "-"}, sampleBytes_).out, run.out);
}

void TestInspector::jsonText_data() {
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("part");
    using B = QByteArray;
    const auto names = [](const B& server, const B& camera) {
        return B(WireFrame{.extensions = extensionBlock(server, camera)});
    };
    QTest::newRow("last time") << B(WireFrame{.time = (quint64{1} << 48) - 1})
                               << B(R"("time300":281474976710655,"timestampMs":938249922368850,)"
                                    R"("utc":"+31701-12-16T02:26:08.850Z")");
    QTest::newRow("first time")
        << B(WireFrame{.time = 1, .zone = 0, .quarters = -128})
        << B(R"("time300":1,"timestampMs":3,"utc":"1970-01-01T00:00:00.003Z",)"
             R"("zone":"","zoneQuarters":-128,)");
    QTest::newRow("unknown zone index") << B(WireFrame{.zone = 200}) << B(R"("zone":"",)");
    QTest::newRow("largest channel")
        << B(WireFrame{.camera = 65535, .track = 65534}) << B(R"("camera":65535,"track":65534,)");
    QTest::newRow("unprintable type") << B(WireFrame{.typeByte = 0x3F}) << B(R"("type":"\u007f")");
    QTest::newRow("type to escape")
        << B(WireFrame{.typeByte = 0xC0 | 0x1C}) << B(R"("type":"\\","key":true,)");
    QTest::newRow("all flags")
        << B(WireFrame{.typeByte = 0xD6, .flags = 0xFF, .rate = 255})
        << B(R"("key":false,"recording":true,"hidden":false,"dewarped":false,)"
             R"("encrypted":true,"newKeyRequired":true,"linkedAudioCamera":-1,)"
             R"("rate":255,"flags":255,)");
    QTest::newRow("escapes") << names("a\"b\\c\n\x1b[31m\x7f", "Tür 1 \xf0\x9f\x9a\xaa")
                             << B("\"server\":\"a\\\"b\\\\c\\n\\u001b[31m\\u007f\","
                                  "\"cameraName\":\"Tür 1 \xf0\x9f\x9a\xaa\",");
    QTest::newRow("not UTF-8") << names("\xff\xfeGate",
                                        "\xc2\x9b"
                                        "2J")
                               << B("\"server\":\"\xef\xbf\xbd\xef\xbf\xbdGate\","
                                    "\"cameraName\":\"\\u009b2J\",");
    QTest::newRow("binary slots")
        << B(WireFrame{.extensions = extensionBlock({}, {}, B("\x02\x07\xff\x01\x80\0xhy\0z", 11)),
                       .payload = 3})
        << B(R"("linkedAudioCamera":7,)"
             R"("rate":5,"flags":0,"server":"","cameraName":"",)"
             R"("payloadSize":3,"slots":["","","07ff","80","","786879","7a"]})"
             "\n");
}

void TestInspector::jsonText() {
    QFETCH(const QByteArray, frame);
    QFETCH(const QByteArray, part);
    const Run run = inspect({"--json", "-"}, frame);
    QCOMPARE(run.status, 0);
    if (!run.out.contains(part))
        qInfo().noquote() << run.out;
    QVERIFY(run.out.contains(part));
    QVERIFY(QString::fromUtf8(run.out).toUtf8() == run.out);
    QVERIFY(QJsonDocument::fromJson(run.out).isObject());
}

void TestInspector::damage_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("frames");
    QTest::addColumn<QByteArray>("reason");  // without the file name; empty for whole input

    // The first frame of the sample: a header of 44 bytes, 24 of them extensions.
    constexpr int first = 11025;
    struct Cut {
        int length;
        int frames;
        const char* reason;
    };
    static constexpr Cut cuts[] = {
        {0, 0, ""},
        {1, 0, "frame at byte 0: needs 20 bytes for its header, 1 is left"},
        {3, 0, "frame at byte 0: needs 20 bytes for its header, 3 are left"},
        {4, 0, "frame at byte 0: needs 11025 bytes, 4 are left"},
        {19, 0, "frame at byte 0: needs 11025 bytes, 19 are left"},
        {20, 0, "frame at byte 0: needs 11025 bytes, 20 are left"},
        {43, 0, "frame at byte 0: needs 11025 bytes, 43 are left"},
        {44, 0, "frame at byte 0: needs 11025 bytes, 44 are left"},
        {first - 1, 0, "frame at byte 0: needs 11025 bytes, 11024 are left"},
        {first, 1, ""},
        {first + 2, 1, "frame at byte 11025: needs 20 bytes for its header, 2 are left"},
        {822248, 153, "frame at byte 820208: needs 2041 bytes, 2040 are left"},
    };
    const QByteArray sample = readAll(sample_);
    for (const Cut& cut : cuts)
        QTest::addRow("cut at %d", cut.length)
            << sample.first(cut.length) << cut.frames << QByteArray(cut.reason);

    const QByteArray whole = WireFrame{.payload = 7};
    struct Garbage {
        const char* name;
        QByteArray bytes;
        const char* reason;
    };
    const Garbage garbage[] = {
        {"text", "hello", "Unknown header protocol"},
        {"zeros", QByteArray(64, '\0'), "Unknown header protocol"},
        {"reserved marker bit", QByteArray("\x14\0\0\x84", 4) + QByteArray(60, '\0'),
         "Unknown header protocol"},
        {"legacy protocol", "\xff\xff\xff\xff", "Protocol support dropped"},
        {"shorter than a header", QByteArray("\x13\0\0\x80", 4) + QByteArray(16, '\0'),
         "Size mismatch"},
        {"extensions beyond the frame",
         QByteArray("\x14\0\0\x80", 4) + QByteArray(15, '\0') + '\x01', "Size mismatch"},
        {"tiny and cut", QByteArray("\x05\0\0\x80\0", 5),
         "needs 20 bytes for its header, 5 are left"},
        {"claims 64 MiB", QByteArray("\xff\xff\xff\x83", 4) + QByteArray(1020, '\0'),
         "needs 67108863 bytes, 1024 are left"},
    };
    for (const Garbage& row : garbage)
        QTest::addRow("%s", row.name)
            << whole + whole + row.bytes << 2 << "frame at byte 54: " + QByteArray(row.reason);
}

void TestInspector::damage() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, frames);
    QFETCH(const QByteArray, reason);
    const auto expectedError = [&](const QString& name) {
        return reason.isEmpty() ? QByteArray()
                                : "pylon-inspect: " + name.toUtf8() + ": " + reason + '\n';
    };
    const QString file = write(bytes);
    const Run json = inspect({"--json", file});
    QCOMPARE(json.err, expectedError(file));
    QCOMPARE(json.status, reason.isEmpty() ? 0 : 1);
    QCOMPARE(json.out.count('\n'), frames);

    const Run piped = inspect({"--summary", "-"}, bytes);
    QCOMPARE(piped.err, expectedError(QStringLiteral("standard input")));
    QCOMPARE(piped.status, json.status);
    QCOMPARE(piped.out.startsWith("no frames\n"), frames == 0);
}

// The parts of a recording around damage: a line for each damage, and all other frames shown.
void TestInspector::resync() {
    const QByteArray frames = QByteArray(WireFrame{.payload = 100}).repeated(3);
    const QByteArray bytes = frames + "junk" + frames + QByteArray(30, '\0') + frames + "x";
    const QByteArrayList expected = {
        "frame at byte 360: Unknown header protocol; 4 bytes skipped",
        "frame at byte 724: Unknown header protocol; 30 bytes skipped",
        "frame at byte 1114: needs 20 bytes for its header, 1 is left; 1 byte skipped",
    };
    const QByteArray prefix = "pylon-inspect: standard input: ";
    const Run run = inspect({"--json", "--resync", "-"}, bytes);
    QCOMPARE(run.status, 1);
    QCOMPARE(run.out.count('\n'), 9);
    QCOMPARE(run.err, prefix + expected.join('\n' + prefix) + '\n');
    const Run whole = inspect({"--json", "--resync", sample_});
    QCOMPARE(whole.status, 0);
    QCOMPARE(whole.out, inspect({"--json", sample_}).out);
}

void TestInspector::table() {
    const QByteArray bytes =
        QByteArray(
            WireFrame{.flags = 0x88,
                      .extensions = extensionBlock("S", "Gate", QByteArray("\x01\0\0\0h", 5)),
                      .payload = 1000}) +
        WireFrame{.camera = 65535,
                  .track = 12,
                  .zone = 0,
                  .quarters = -14,
                  .typeByte = 0xFF,
                  .extensions = extensionBlock("S", "A rather long camera name")} +
        WireFrame{.camera = 7,
                  .time = 0,
                  .zone = 0,
                  .quarters = 127,
                  .extensions =
                      extensionBlock("S", "A\x1b]0;x\x07", QByteArray("\0\x01\x01\0ahb\n", 8))} +
        WireFrame{.time = (quint64{1} << 48) - 1,
                  .quarters = 127,
                  .typeByte = 0x40 | 0x05,
                  .extensions = extensionBlock("S", "門口 \xe2\x80\xae")} +
        WireFrame{.track = 3};
    const QByteArray expected =
        R"(OFFSET  TIME                            CAMERA              TRACK  TYPE  KEY  REC  RATE      SIZE   PAYLOAD  MARKS
     0  2026-11-15 08:00:00.000 CET       1 Gate                1  V     -    rec     5      1032      1000  hidden audio:1
  1032  2026-11-15 03:30:00.000 -03:30  65535 A rather lo…     12  \x7f  key  -       5        48         0  encrypted new-key
  1080  1970-01-01 00:00:00.000 UTC       7 A\x1b]0;x\x07       1  V     key  -       5        38         0  hidden dewarped marks:ahb\x0a
  1118  +31701-12-16 03:26:08.850 CET     1 門口 \u202e         1  E     key  -       5        33         0  new-key
  1151  2026-11-15 08:00:00.000 CET       1                     3  V     key  -       5        20         0
)";
    const Run run = inspect({write(bytes)});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.err, QByteArray());
    const QByteArray shown = run.out.left(run.out.indexOf("\n\n") + 1);
    if (shown != expected)
        qInfo().noquote() << '\n' << shown;
    QCOMPARE(shown, expected);
}

void TestInspector::summary() {
    const auto at = [](quint16 track, quint64 seconds, quint8 flags = 0) {
        return QByteArray(WireFrame{.track = track,
                                    .time = seconds * 300,
                                    .flags = flags,
                                    .extensions = extensionBlock("S", "Gate"),
                                    .payload = 70});
    };
    const QByteArray bytes =
        at(1, 1000) + at(2, 500) + at(1, 1001, 8) + at(1, 4601) + at(1, 4000) + at(3, 100) +
        at(3, 100) +
        WireFrame{.camera = 20000, .time = 300, .extensions = extensionBlock("S", "Tür")} +
        WireFrame{.camera = 20000, .time = quint64{300} * 864000};
    const QByteArray expected =
        R"(CAMERA      TRACK  FRAMES  KEY  BYTES  FIRST                        LAST                         FRAMES/S  LONGEST GAP
    1 Gate      1       4    3    388  1970-01-01 01:16:40.000 CET  1970-01-01 02:16:41.000 CET   0.00083     1h00m00s
    1 Gate      2       1    1     97  1970-01-01 01:08:20.000 CET  1970-01-01 01:08:20.000 CET         -            -
    1 Gate      3       2    2    194  1970-01-01 01:01:40.000 CET  1970-01-01 01:01:40.000 CET         -      0.000 s
20000 Tür       1       2    2     47  1970-01-01 01:00:01.000 CET  1970-01-11 01:00:00.000 CET   1.2e-06        9d23h
total                   9    8    726
)";
    const Run run = inspect({"--summary", "-"}, bytes);
    QCOMPARE(run.err, QByteArray());
    if (run.out != expected)
        qInfo().noquote() << '\n' << run.out;
    QCOMPARE(run.out, expected);

    // Figures are kept for a limited number of tracks only.
    QByteArray many;
    for (int track = 0; track < 4100; ++track)
        many += WireFrame{.track = static_cast<quint16>(track)};
    const Run crowded = inspect({"--summary", "-"}, many);
    QCOMPARE(crowded.out.count('\n'), 1 + 4096 + 2);
    QVERIFY(crowded.out.contains("\nothers  "));
    QVERIFY(crowded.out.contains("   4100  4100  82000\n"));
}

void TestInspector::zone_data() {
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QByteArray>("time");
    const auto row = [](const char* zone, const char* time) {
        QTest::newRow(zone) << QString::fromLatin1(zone) << QByteArray(time);
    };
    row("UTC", "2026-11-15 07:00:00.000 UTC");
    row("CST:China", "2026-11-15 15:00:00.000 CST");
    row("CST:Cuba Standard Time", "2026-11-15 02:00:00.000 CST");
    row(":Newfoundland S", "2026-11-15 03:30:00.000 NST");
    row("CHADT", "2026-11-15 20:45:00.000 CHADT");
    row("LHST", "2026-11-15 17:30:00.000 LHST");  // listed twice with one offset
}

void TestInspector::zone() {
    QFETCH(const QString, zone);
    QFETCH(const QByteArray, time);
    const Run run = inspect({"--zone", zone, "-"}, WireFrame{});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out.count(time), 3);  // in the table, as first and as last time
}

void TestInspector::selection_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("frames");
    QTest::newRow("camera") << QStringList{"--camera", "3"} << 8;
    QTest::newRow("cameras") << QStringList{"--camera", "3", "--camera", "255"} << 14;
    QTest::newRow("type") << QStringList{"--type", "V"} << 60;
    QTest::newRow("both") << QStringList{"--type=a", "--camera=1"} << 40;
    QTest::newRow("none") << QStringList{"--type", "v"} << 0;
}

void TestInspector::selection() {
    QFETCH(const QStringList, arguments);
    QFETCH(const int, frames);
    QCOMPARE(inspect(QStringList{"--json", sample_} + arguments).out.count('\n'), frames);
    const Run summary = inspect(QStringList{"--summary", sample_} + arguments);
    QCOMPARE(summary.status, 0);
    QCOMPARE(summary.out == "no frame matches\n", frames == 0);
}

void TestInspector::usageErrors_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    const auto row = [](const char* message, const QStringList& arguments) {
        QTest::newRow(qPrintable(arguments.join(' ').left(60))) << arguments << QByteArray(message);
    };
    row("no file given", {});
    row("Unknown option 'foo'", {"--foo", sample_});
    row("Unknown option 'x\\x1b'", {"--x\x1b", sample_});
    row("Missing value after '--zone'", {"--zone"});
    row("--json and --summary exclude each other", {"--json", "--summary", sample_});
    row("number from 0 to 65535, not \"65536\"", {"--camera", "65536", sample_});
    row("number from 0 to 65535, not \"-1\"", {"--camera", "-1", sample_});
    row("one character, not \"VV\"", {"--type", "VV", sample_});
    row("one character, not \"\xe2\x82\xac\"", {"--type", "€", sample_});
    row("ambiguous time zone \"IST\"; candidates are\n"
        "  IST   +01:00  Irish Standard Time (Europe)\n"
        "  IST   +02:00  Israel Standard Time (Asia)\n"
        "  IST   +05:30  India Standard Time (Asia)\n",
        {"--zone", "IST", sample_});
    row("ambiguous time zone \"IST:I\"", {"--zone", "IST:I", sample_});
    row("unknown time zone \"IST:X\"; candidates are\n  IST ", {"--zone", "IST:X", sample_});
    row("unknown time zone \"cet\"; candidates are\n  CET   +01:00", {"--zone", "cet", sample_});
    row("candidates are\n  WST   +13:00  West Samoa Time", {"--zone", "samoa", sample_});
    row("the known abbreviations are\n  ADT AKDT", {"--zone", "Mars", sample_});
    row("empty time zone", {"--zone", ":", sample_});
    row("unknown log level \"loud\", \"\"; the levels are TRACE",
        {"--log-level", "info,loud,", sample_});
    row("unknown name in the log filter: Network{Foo}, Bogus",
        {"--log-filter", "Network{Foo}, Bogus{X}", sample_});
    row("empty module name", {"--log-filter", " , ", sample_});
    row("from 1 to 1000, not \"1001\"", {"--log", "x", "--log-size", "1001", sample_});
    row("--log needs the name", {"--log", "", sample_});
    row("--extract needs the name", {"--extract", "", sample_});
    row("longer than 255 bytes", {"--log-filter", QString(256, 'a'), sample_});
    row("longer than 255 bytes", {"--log-filter", "Playback{" + QString(300, 'a'), sample_});
    row("unknown name in the log filter: aaaa", {"--log-filter", QString(255, 'a'), sample_});
}

void TestInspector::usageErrors() {
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, message);
    const Run run = inspect(arguments);
    QCOMPARE(run.status, 2);
    QCOMPARE(run.out, QByteArray());
    if (!run.err.contains(message))
        qInfo().noquote() << run.err;
    QVERIFY(run.err.startsWith("pylon-inspect: ") && run.err.contains(message));
}

void TestInspector::information() {
    const Run help = inspect({"--help"});
    QCOMPARE(help.status, 0);
    for (const char* option :
         {"--json", "--summary", "--zone ", "--zones", "--camera", "--type", "--resync",
          "--verbose", "--log-level", "--log-filter", "--version", "NO_COLOR", "Exit status"})
        QVERIFY2(help.out.contains(option), option);
    QCOMPARE(inspect({"-h", "--foo"}).status, 2);
    QVERIFY(inspect({"--version"}).out.startsWith("pylon-inspect 6."));
    const Run zones = inspect({"--zones"});
    QCOMPARE(zones.out.count('\n'), 2 + 121);
    QVERIFY(zones.out.contains("Brasília time"));
    QCOMPARE(help.err + zones.err, QByteArray());
}

void TestInspector::log_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArrayList>("present");
    QTest::addColumn<QByteArrayList>("absent");
    const QByteArray banner = "PylonSDK {";
    const QByteArray untagged = "reading ";
    const QByteArray tagged = "154 frames up to byte 822249";
    const QByteArray perFrame = "frame at byte 820208";
    const QByteArray detail = "buffer of";
    const auto row = [](const QStringList& arguments, const QByteArrayList& present,
                        const QByteArrayList& absent) {
        QTest::newRow(qPrintable(arguments.join(' ').left(60))) << arguments << present << absent;
    };
    row({"--verbose"}, {banner, untagged, tagged, detail}, {perFrame});
    row({"--log-level", "trace"}, {banner, perFrame}, {untagged, tagged, detail});
    row({"--log-level", " Warn,TIME,information"}, {untagged, tagged}, {perFrame, detail});
    row({"--log-level", "ALL"}, {untagged, tagged, perFrame, detail}, {});
    row({"--log-filter", "Playback"}, {banner, tagged}, {untagged, perFrame});
    row({"--log-filter", "Network,Playback{Stream}", "--log-level", "trace"}, {perFrame}, {tagged});
    row({"--log-filter", "Playback{Decoder}"}, {banner}, {untagged, tagged});
    row({"--log-filter", ""}, {banner}, {untagged, tagged});
    row({"--log-filter", QStringLiteral("Playback{Stream}").repeated(20)}, {tagged}, {untagged});
}

void TestInspector::log() {
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArrayList, present);
    QFETCH(const QByteArrayList, absent);
    const Run run = inspect(QStringList{"--summary", sample_} + arguments);
    QCOMPARE(run.status, 0);
    QVERIFY(run.out.startsWith("CAMERA"));
    for (const QByteArray& text : present)
        QVERIFY2(run.err.contains(text), text);
    for (const QByteArray& text : absent)
        QVERIFY2(!run.err.contains(text), text);
}

void TestInspector::logFile() {
    const QString log = dir_.filePath(QStringLiteral("inspect.log"));
    for (int run = 1; run <= 2; ++run) {
        QCOMPARE(inspect({"--summary", "--log", log, "--log-size", "1", sample_}).err,
                 QByteArray());
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QCOMPARE(text.count("154 frames up to byte 822249\n#"), run);
        QCOMPARE(text.count("} Shutdown at "), run);
        QVERIFY(text.startsWith("\n#") && text.endsWith(" ###############################"));
    }
    const Run refused = inspect({"--log", dir_.filePath(QStringLiteral("no/folder.log")), sample_});
    QCOMPARE(refused.status, 1);
    QVERIFY(refused.err.startsWith("pylon-inspect: cannot write the log file "));
}

void TestInspector::severalFiles() {
    const QString file = write(WireFrame{});
    const QString missing = dir_.filePath(QStringLiteral("missing"));
    const Run table = inspect({file, missing, dir_.path(), file});
    QCOMPARE(table.status, 1);
    QCOMPARE(table.out.count("==> "), 4);
    QCOMPARE(table.out.count("==> " + file.toUtf8() + " <==\nOFFSET"), 2);
    QCOMPARE(table.err.count('\n'), 2);
    QVERIFY(table.err.startsWith("pylon-inspect: " + missing.toUtf8() + ": "));

    const Run json = inspect({"--json", file, missing, file});
    QCOMPARE(json.status, 1);
    const QByteArrayList lines = json.out.split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0], lines[1]);
    QVERIFY(lines[0].startsWith("{\"offset\":0,"));
}

void TestInspector::readerGoesAway() {
    QProcess process;
    QProcess reader;  // gives up at once, since JSON is no recording
    process.setStandardOutputProcess(&reader);
    // In this order, since on Windows a process inherits the pipe ends its parent has open.
    reader.start(QStringLiteral(INSPECT_PROGRAM), {"-"});
    QVERIFY(reader.waitForStarted());
    process.start(QStringLiteral(INSPECT_PROGRAM), {"--json", write(sampleBytes_.repeated(30))});
    QVERIFY(reader.waitForFinished() && process.waitForFinished());
    QCOMPARE(reader.exitCode(), 1);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

QTEST_GUILESS_MAIN(TestInspector)
#include "tst_inspector.moc"
