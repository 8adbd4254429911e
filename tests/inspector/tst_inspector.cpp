#include <QtTest/QtTest>

#include "inspectrun.h"
#include "wireframe.h"

namespace {

using B = QByteArray;
using Texts = QByteArrayList;

const QString sample = QStringLiteral(SAMPLE_RECORDING);
const B nothing = "=";

void row(const B& name, const QStringList& arguments, const B& input, int status, const Texts& out,
         const Texts& err = {nothing}) {
    QTest::newRow(name.simplified().left(60)) << arguments << input << status << out << err;
}

void addJson() {
    const auto json = [](const char* name, const B& frame, const Texts& parts) {
        row(name, {"--json", "-"}, frame, 0, parts);
    };
    json("last time",
         WireFrame{1, 1, (quint64{1} << 48) - 1, 200, 4, 0xC0 | 0x1C, 0, 5,
                   extensionBlock("\xff\xfeGate", "\xc2\x9b\x32J")},
         {R"("time300":281474976710655,"timestampMs":938249922368850,)"
          R"("utc":"+31701-12-16T02:26:08.850Z","zone":"","zoneQuarters":4,)",
          R"("type":"\\","key":true,)", R"("server":"��Gate","cameraName":"\u009b2J",)"});
    json("first time",
         WireFrame{1, 1, 1, 0, -128, 0x3F, 0, 5,
                   extensionBlock("a\"b\\c\b\t\n\f\r\x1b[31m\x7f", "Tür 1 🚪")},
         {R"("time300":1,"timestampMs":3,"utc":"1970-01-01T00:00:00.003Z","zone":"",)"
          R"("zoneQuarters":-128,"camera":1,"track":1,"type":"\u007f",)",
          R"("server":"a\"b\\c\b\t\n\f\r\u001b[31m\u007f","cameraName":"Tür 1 🚪",)"});
    json("all flags and slots",
         WireFrame{65535, 65534, 0, 0, 0, 0xD6, 0xFF, 255,
                   extensionBlock({}, {}, B("\x02\x07\xff\x01\x80\0xhy\0z", 11)), 3},
         {R"("camera":65535,"track":65534,"type":"V","key":false,"recording":true,"hidden":true,)"
          R"("dewarped":true,"encrypted":true,"newKeyRequired":true,"linkedAudioCamera":7,)"
          R"("rate":255,"flags":255,"server":"","cameraName":"","payloadSize":3,)"
          R"("slots":["","","07ff","80","","786879","7a"]})"});
}

void addTables() {
    constexpr quint64 now = 538417800000;
    row("table", {"-"},
        B(WireFrame{1, 1, now, 21, 4, 0x16, 0x88, 5,
                    extensionBlock("S", "Gate", B("\x01\0\0\0h", 5)), 1000}) +
            WireFrame{65535, 12, now, 0, -14, 0xFF, 0, 5,
                      extensionBlock("S", "A rather long camera name")} +
            WireFrame{7, 1, 0, 0, 127, 0x16, 0, 5,
                      extensionBlock("S", "A\x1b]0;x\x07", B("\0\x01\x01\0ahb\n", 8))} +
            WireFrame{1, 1, (quint64{1} << 48) - 1, 21, 127, 0x45, 0, 5,
                      extensionBlock("S", "門口 \xe2\x80\xaexyz")} +
            WireFrame{.track = 3},
        0,
        {R"(    OFFSET  TIME                            CAMERA              TRACK  TYPE  KEY  REC  RATE      SIZE   PAYLOAD  MARKS
         0  2026-11-15 08:00:00.000 CET       1 Gate                1  V     -    rec     5      1032      1000  hidden audio:1
      1032  2026-11-15 03:30:00.000 -03:30  65535 A rather lo…     12  \x7f  key  -       5        48         0  encrypted new-key
      1080  1970-01-01 00:00:00.000 UTC       7 A\x1b]0;x\x07       1  V     key  -       5        38         0  hidden dewarped marks:ahb\x0a
      1118  +31701-12-16 03:26:08.850 CET     1 門口 \u202exyz      1  E     key  -       5        36         0  new-key
      1154  2026-11-15 08:00:00.000 CET       1                     3  V     key  -       5        20         0

CAMERA)"});

    const auto at = [](quint16 track, quint64 seconds, quint8 flags = 0) {
        return B(WireFrame{1, track, seconds * 300, 21, 4, 0x16, flags, 5,
                           extensionBlock("S", "Gate"), 70});
    };
    row("summary", {"--summary", "-"},
        at(1, 1000) + at(2, 500) + at(1, 1001, 8) + at(1, 4601) + at(1, 999) + at(3, 100) +
            at(3, 100) +
            WireFrame{
                .camera = 20000, .time = 300, .extensions = extensionBlock("S", "Tu\u0308r")} +
            WireFrame{.camera = 20000, .time = quint64{300} * 864000},
        0,
        {R"(=CAMERA      TRACK  FRAMES  KEY  BYTES  FIRST                        LAST                         FRAMES/S  LONGEST GAP
    1 Gate      1       4    3    388  1970-01-01 01:16:39.000 CET  1970-01-01 02:16:41.000 CET   0.00083     1h00m00s
    1 Gate      2       1    1     97  1970-01-01 01:08:20.000 CET  1970-01-01 01:08:20.000 CET         -            -
    1 Gate      3       2    2    194  1970-01-01 01:01:40.000 CET  1970-01-01 01:01:40.000 CET         -      0.000 s
20000 Tu)"
         "\u0308"
         R"(r       1       2    2     48  1970-01-01 01:00:01.000 CET  1970-01-11 01:00:00.000 CET   1.2e-06        9d23h
total                   9    8    727
)"});

    // Figures are kept for a limited number of tracks only.
    B many;
    for (quint16 track = 0; track < 4100; ++track)
        many += WireFrame{.track = track};
    row("many tracks", {"--summary", "-"}, many, 0,
        {"4099*\n", "\nothers  ", "   4100  4100  82000\n"});
}

void addDamage() {
    const auto damage = [](const QStringList& arguments, const B& input, const B& out,
                           const Texts& lines) {
        const B prefix = "pylon-inspect: standard input: ";
        row(lines.front(), arguments, input, 1, {out},
            {'=' + prefix + lines.join('\n' + prefix) + '\n'});
    };
    const B frames = B(WireFrame{.payload = 100}).repeated(3);
    row("empty", {"-"}, {}, 0, {"=no frames\n"});
    damage({"-"}, "hello", "=no frames\n",
           {"frame at byte 0: Unknown header protocol, so this may be no recording at all"});
    damage({"--summary", "-"}, frames.chopped(1), "2    2    240  2026",
           {"frame at byte 240: needs 120 bytes, 119 are left"});
    damage({"--json", "-"}, frames + "junk" + frames, "3*\n",
           {"frame at byte 360: Unknown header protocol; the rest is not read, see --resync"});
    damage({"--json", "--resync", "-"}, frames + "junk" + frames + B(30, '\0') + frames + "x",
           "9*\n",
           {"frame at byte 360: Unknown header protocol; 4 bytes skipped",
            "frame at byte 724: Unknown header protocol; 30 bytes skipped",
            "frame at byte 1114: needs 20 bytes for its header, 1 is left; 1 byte skipped"});
    row("several files", {"--summary", sample, "/no/such", ".", sample}, {}, 1,
        {"4*==> ", "2*==> " + sample.toUtf8() + " <==\nCAMERA"},
        {"2*\n", "pylon-inspect: /no/such: ",
         "pylon-inspect: .: is a folder without dumped frames (img-*.bin)\n"});
    row("several as JSON", {"--json", sample, "/no/such", sample}, {}, 1,
        {"308*\n", "2*{\"offset\":0,"}, {"1*\n"});
}

void addZonesAndSelections() {
    const auto zone = [](const char* name, const B& time) {  // in the table, as first and last time
        row(name, {"--zone", name, "-"}, WireFrame{}, 0, {"3*2026-11-15 " + time});
    };
    zone("CST:Cuba Standard Time", "02:00:00.000 CST");
    zone(":Newfoundland S", "03:30:00.000 NST");
    zone("LHST", "17:30:00.000 LHST");  // listed twice with one offset

    const auto selection = [](const QStringList& arguments, const B& frames) {
        row(arguments.join(' ').toLatin1(), QStringList{"--json", sample} + arguments, {}, 0,
            {frames + "*\n"});
    };
    selection({"--camera", "3", "--camera", "255"}, "14");
    selection({"--type", "V"}, "60");
    selection({"--type=a", "--camera=1"}, "40");
    row("none selected", {"--type", "v", sample}, {}, 0, {"=no frame matches\n"});
}

void addUsage() {
    const auto refused = [](const QStringList& arguments, const B& message) {
        row(message, QStringList(sample) + arguments, {}, 2, {nothing},
            {"pylon-inspect: ", message});
    };
    row("no file given", {}, {}, 2, {nothing}, {"no file given"});
    refused({""}, "the name of a file is empty");
    refused({"-h", "--foo"}, "Unknown option 'foo'");
    refused({"--x\x1b"}, "Unknown option 'x\\x1b'");
    refused({"--zone"}, "Missing value after '--zone'");
    refused({"--json", "--summary"}, "--json and --summary exclude each other");
    refused({"--camera", "65536"}, "number from 0 to 65535, not \"65536\"");
    refused({"--type", "VV"}, "one character, not \"VV\"");
    refused({"--type", "€"}, "one character, not \"€\"");
    refused({"--zone", "IST"},
            "ambiguous time zone \"IST\"; candidates are\n"
            "  IST   +01:00  Irish Standard Time (Europe)\n"
            "  IST   +02:00  Israel Standard Time (Asia)\n"
            "  IST   +05:30  India Standard Time (Asia)\n");
    refused({"--zone", "IST:X"}, "unknown time zone \"IST:X\"; candidates are\n  IST ");
    refused({"--zone", "cet"}, "unknown time zone \"cet\"; candidates are\n  CET   +01:00");
    refused({"--zone", "samoa"}, "candidates are\n  WST   +13:00  West Samoa Time");
    refused({"--zone", "Mars"}, "the known abbreviations are\n  ADT AKDT");
    refused({"--zone", ":"}, "empty time zone");
    refused({"--log-level", "info,loud,"},
            "unknown log level \"loud\", \"\"; the levels are TRACE");
    refused({"--log-filter", "Network{Foo}, Bogus{X}"}, "in the log filter: Network{Foo}, Bogus");
    refused({"--log-filter", " , "}, "empty module name");
    refused({"--log-filter", "Playback{" + QString(300, 'a')}, "longer than 255 bytes");
    refused({"--log-filter", QString(255, 'a')}, "unknown name in the log filter: aaaa");
    refused({"--log", "x", "--log-size", "1001"}, "from 1 to 1000, not \"1001\"");
    refused({"--log-size", "5"}, "--log-size needs --log");
    refused({"--log", ""}, "--log needs the name");
    refused({"--extract", ""}, "--extract needs the name");
    refused({"--png", "x"}, "--png needs --mask or --diffmap");
    refused({"--png", "-", "--mask", "x"}, "--png needs the name of a file");
    refused({"--mask", "x", "--diffmap", "x"}, "--mask and --diffmap exclude each other");
    refused({"--mask", "x"}, "--mask FILE does not go with another FILE");
    refused({"--dump", "--diffmap", "x"}, "--diffmap FILE does not go with --dump");

    row("help", {"--help"}, {}, 0, {"\n  --json  ", "\n  --dump ", "NO_COLOR", "Exit status"});
    row("version", {"--version"}, {}, 0, {"pylon-inspect 6."});
    row("zones", {"--zones"}, {}, 0, {"123*\n", "Brasília time"});
}

// Which lines there must be, by the first letters of their kinds; lower case for those there must
// not be.
void addLogs() {
    const auto log = [](const QStringList& arguments, const B& kinds) {
        const std::pair<char, B> lines[] = {{'B', "PylonSDK {"},
                                            {'U', "reading "},
                                            {'T', "154 frames up to byte 822249"},
                                            {'F', "frame at byte 820208"},
                                            {'D', "buffer of"}};
        Texts texts;
        for (const auto& [kind, line] : lines) {
            if (kinds.toUpper().contains(kind))
                texts += kinds.contains(kind) ? line : '!' + line;
        }
        row(arguments.join(' ').toLatin1(), QStringList{"--summary", sample} + arguments, {}, 0,
            {"CAMERA"}, texts);
    };
    log({"--verbose"}, "BUTDf");
    log({"--log-level", "trace"}, "BFutd");
    log({"--log-level", " Warn,TIME,information"}, "UTfd");
    log({"--log-level", "ALL"}, "UTFD");
    log({"--log-filter", "Network,Playback{Stream}", "--log-level", "trace"}, "Ft");
    log({"--log-filter", ""}, "But");
    log({"--log-filter", QString("Playback{Stream}").repeated(20)}, "Tu");
}

void addMotion() {
    const auto shown = [](const QString& option, const B& input, const B& text) {
        row(text, {option, "-"}, input, 0, {'=' + text});
    };
    const auto refused = [](const QString& option, const B& input, const B& reason) {
        row(reason, {option, "-"}, input, 1, {nothing},
            {"=pylon-inspect: standard input: " + reason + '\n'});
    };
    const B legend = "█ watched, · not watched; two rows a line\n";
    shown("--mask", "A00110K01010K10N0\r\n",
          "motion mask, 16 x 90 cells, 5 watched\n·▄▀█············\n▀···············\n"
          "rows 5 to 90 are like row 4\n" +
              legend);
    shown("--mask", "1",
          "motion mask without width, 120 x 90 cells, 10800 watched\n" + B("█").repeated(120) +
              "\nrows 3 to 90 are like row 2\n" + legend);
    refused("--mask", "A0#", "Invalid character in mask text at byte 2");
    row("no mask", {"--mask", "/no/such"}, {}, 1, {nothing}, {"pylon-inspect: /no/such: "});
    refused("--mask", B(65537, '0'), "too long: more than 65536 bytes");
    const B shades = "motion: · none, ░ below 64, ▒ below 128, ▓ below 192, █ up to 255\n";
    shown("--diffmap", "\x81\xC1\xE0",
          "difference map, 1 x 1 cells, step 15, 1 with motion, strongest 240\n█\n" + shades);
    shown("--diffmap", B("\x04\x02\0\x01\x3F\x40\x7F\x80\xBF\xC0xy", 12),
          "difference map, 4 x 2 cells, not coded, 7 with motion, strongest 192; 2 bytes behind "
          "it\n·░░▒\n▒▓▓█\n" +
              shades);
    refused("--diffmap", "\x04\x02 cells", "Difference map too short: 8 bytes for 4 x 2 cells");
    refused("--diffmap", "\x01", "Difference map too short: 1 of the 2 bytes before the cells");
}

}  // namespace

class TestInspector : public QObject {
    Q_OBJECT

private slots:
    // The file was made from the description that came with the recording.
    void sampleAsJson() {
        const Run run = inspect({"--json", sample});
        QCOMPARE(run.err, B());
        QCOMPARE(run.out.split('\n'), readAll(QStringLiteral(SAMPLE_AS_JSON)).split('\n'));
        QCOMPARE(inspect({"--json", "--resync", "-"}, readAll(sample)).out, run.out);
    }

    void runs_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<B>("input");
        QTest::addColumn<int>("status");
        QTest::addColumn<Texts>("out");
        QTest::addColumn<Texts>("err");
        for (const auto add :
             {addJson, addTables, addDamage, addZonesAndSelections, addUsage, addLogs, addMotion})
            add();
    }

    void runs() {
        QFETCH(const QStringList, arguments);
        QFETCH(const B, input);
        QFETCH(const Texts, out);
        QFETCH(const Texts, err);
        const Run run = inspect(arguments, input);
        const B wrong = missingIn(run.out, out) + missingIn(run.err, err);
        QVERIFY2(wrong.isEmpty(), wrong);
        QTEST(run.status, "status");
        for (const B& line : arguments.contains("--json") ? run.out.split('\n') : Texts())
            QVERIFY(line.isEmpty() || QJsonDocument::fromJson(line).isObject());
    }

    void logFile() {
        const QTemporaryDir dir;
        const QString log = dir.filePath("inspect.log");
        for (int run = 1; run <= 2; ++run) {
            QCOMPARE(inspect({"--summary", "--log", log, "--log-size", "1", sample}).err, B());
            const B text = readAll(log);
            QCOMPARE(text.count("154 frames up to byte 822249\n#"), run);
            QCOMPARE(text.count("} Shutdown at "), run);
            QVERIFY(text.startsWith("\n#") && text.endsWith(" ###############################"));
        }
        const Run refused = inspect({"--log", dir.filePath("no/folder.log"), sample});
        QCOMPARE(refused.status, 1);
        QVERIFY(refused.err.startsWith("pylon-inspect: cannot write the log file "));
    }

    void outputFails() {
        const QString full = "/dev/full";
        if (!QFile::exists(full))
            QSKIP("there is no device that is always full");
        for (const QStringList& arguments :
             {QStringList("--help"), {sample}, {"--mask", "/dev/null"}}) {
            QProcess process;
            process.setStandardOutputFile(full);
            process.start(INSPECT_PROGRAM, arguments);
            QVERIFY(process.waitForFinished());
            QVERIFY(process.exitCode() == 1 && process.readAllStandardError().contains("write"));
        }
    }

    void readerGoesAway() {
        QProcess process;
        QProcess reader;  // gives up at once, since JSON is no recording
        process.setStandardOutputProcess(&reader);
        // In this order, since on Windows a process inherits the pipe ends its parent has open.
        reader.start(INSPECT_PROGRAM, {"-"});
        QVERIFY(reader.waitForStarted());
        process.start(INSPECT_PROGRAM, QStringList("--json") + QStringList(30, sample));
        QVERIFY(reader.waitForFinished() && process.waitForFinished());
        QCOMPARE(reader.exitCode(), 1);
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.readAllStandardError(), B());
    }
};

QTEST_GUILESS_MAIN(TestInspector)
#include "tst_inspector.moc"
