#include <pylon/media/audioutils.h>
#include <QtTest/QtTest>

#include "inspectrun.h"
#include "wireframe.h"

namespace {

using B = QByteArray;
using Files = QMap<QString, QByteArray>;

const QString sample = QStringLiteral(SAMPLE_RECORDING);
constexpr quint64 start = 538417800000;  // 1/300 s
constexpr quint8 audio = 'a' & 0x3F;
constexpr quint8 encrypted = 0x80;

B withPayload(WireFrame frame, const B& payload) {
    frame.payload = static_cast<int>(payload.size());
    return B(frame).chopped(payload.size()) + payload;
}

// An audio frame that begins `ticks` after the start, every byte of its payload being `value`.
B sound(quint64 ticks, quint8 subType, int size, char value) {
    return withPayload({.track = 2, .time = start + ticks, .typeByte = audio, .flags = subType},
                       B(size, value));
}

// Samples as runs of equal ones behind their rate: "8000 a800 -240" for 800 with bytes "aa" and 240
// of silence.
B described(quint32 rate, const B& samples) {
    B text = B::number(rate);
    for (qsizetype at = 0; at < samples.size();) {
        const char first = samples[at];
        const qsizetype before = at;
        while (at < samples.size() && samples[at] == first)
            ++at;
        text += B(" ") + (first == 0 ? '-' : first) + B::number((at - before) / 2);
    }
    return text;
}

QString nameOf(qint64 offset, int camera, const char* suffix) {
    return QString("%1-camera%2.%3").arg(offset, 12, 10, QChar('0')).arg(camera).arg(suffix);
}

// The rows of a PNG picture of 8 bits grey, each with the number of its filter before it.
B rowsOf(const B& png) {
    const qsizetype data = png.indexOf("IDAT") + 4;
    return qUncompress(B(4, '\0') + png.sliced(data, png.size() - data - 16));
}

}  // namespace

class TestExtract : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("HOME", QFile::encodeName(dir_.path())); }

    void extractsSample() {
        const Run run = inspect({"--summary", "--extract", pathOf("new/sample"), sample});
        QCOMPARE(run.status, 0);
        QCOMPARE(run.err, B());
        const B recording = readAll(sample);
        Files expected, tracks;
        for (const B& line : readAll(SAMPLE_AS_JSON).trimmed().split('\n')) {
            const QJsonObject truth = QJsonDocument::fromJson(line).object();
            const int offset = truth["offset"].toInt(), camera = truth["camera"].toInt();
            const pylon::Image image(recording.mid(offset, truth["size"].toInt()));
            if (truth["type"] == "a")
                tracks[QString("camera%1-track%2.wav").arg(camera).arg(truth["track"].toInt())] +=
                    pylon::AudioUtils::decode(image).payload();
            else
                expected[nameOf(offset, camera,
                                camera == 4     ? "bin"
                                : camera == 255 ? "xml"
                                                : "jpg")] = image.payload();
        }
        QCOMPARE(expected.size(), 56 + 6 + 4);
        QCOMPARE(tracks["camera1-track2.wav"].size(), 2 * 80000);
        for (const QString& track : tracks.keys())  // hosts of today are little-endian
            expected[track] = described(8000, tracks[track]);
        QCOMPARE(filesIn("new/sample"), expected);
    }

    // A tick is 1/300 s; 75 of them are 2000 samples at 8 kHz.
    void extracts_data() {
        QTest::addColumn<B>("bytes");
        QTest::addColumn<Files>("expected");
        const auto row = [](const char* name, const B& bytes, const char* expected) {
            QTest::newRow(name) << bytes << Files{{"camera1-track2.wav", expected}};
        };
        const auto a = [](quint64 ticks) { return sound(ticks, 2, 4000, 'a'); };
        const auto b = [](quint64 ticks) { return sound(ticks, 2, 4000, 'b'); };
        const auto c = [](quint64 ticks) { return sound(ticks, 2, 4000, 'c'); };
        row("jitter", a(0) + b(84) + c(141) + a(225), "8000 a2000 b2000 c2000 a2000");
        row("more than jitter", a(0) + b(85), "8000 a2000 -266 b2000");
        row("drift adds up", a(0) + b(80) + c(160), "8000 a2000 b2000 -266 c2000");
        row("overlap", a(0) + b(60) + c(135), "8000 a2000 b1600 c2000");
        row("sent twice", a(0) + b(75) + a(0) + b(75) + c(150), "8000 a2000 b2000 c2000");
        row("far back", a(6000) + b(0) + c(75), "8000 a2000 b2000 c2000");
        row("longest gap", a(0) + b(75 + 18000), "8000 a2000 -480000 b2000");
        row("gap too long", a(0) + b(30000) + c(30150), "8000 a2000 -480000 b2000 -2000 c2000");
        row("last time", a(0) + sound((quint64{1} << 48) - 1 - start, 2, 4000, 'b'),
            "8000 a2000 -480000 b2000");
        row("16 kHz", sound(0, 1, 8000, 'a') + sound(150, 1, 8000, 'b'), "16000 a4000 -4000 b4000");
        row("raised to 16 kHz", sound(0, 1, 8000, 'a') + b(75), "16000 a4000 b4000");
        row("lowered to 8 kHz", a(0) + sound(75, 1, 8000, 'b') + c(150), "8000 a2000 b2000 c2000");
        row("half a sample", a(0) + sound(75, 2, 3, 'b') + sound(75, 2, 1, 'c'), "8000 a2000 b1");
        row("half a sample to raise", sound(0, 1, 2, 'a') + sound(0, 2, 1, 'b'), "16000 a1");
        row("no sample", sound(0, 2, 1, 'a'), "8000");
        row("mu-law silence", sound(0, 3, 300, '\xff'), "8000 -300");

        const auto kind = [](const char* suffix, const B& payload, quint8 typeByte = 'V' & 0x3F,
                             quint8 flags = 0) {
            const B block = extensionBlock("../s", "../../c");
            QTest::newRow(payload.toPercentEncoding())
                << withPayload({9, 1, start, 21, 4, typeByte, flags, 5, block}, payload)
                << Files{{nameOf(0, 9, suffix), payload}};
        };
        QTest::newRow("no payload") << B(WireFrame{}) << Files();
        kind("bin", "\xff");
        kind("xml", "\xef\xbb\xbf \r\n\t<a/>");
        kind("bin", "a<");
        kind("bin", "\xff\xd8 encrypted", encrypted | ('V' & 0x3F));
        kind("bin", "encrypted sound", encrypted | audio, 2);
        kind("bin", "unknown sound", audio, 0);
        kind("bin", "G.726", audio, 5);
    }

    void extracts() {
        QFETCH(const B, bytes);
        const QString folder = QTest::currentDataTag();
        const Run run = extract(bytes, folder);
        QCOMPARE(run.err, B());
        QCOMPARE(run.status, 0);
        QTEST(filesIn(folder), "expected");
    }

    void limits() {
        // Frames of two bytes that jump ahead a minute each.
        B bytes;
        for (quint64 minute = 0; minute < 200; ++minute)
            bytes += sound(18000 * minute, 2, 2, 'a');
        QCOMPARE(extract(bytes, "jumps").status, 0);
        QCOMPARE(QFileInfo(pathOf("jumps/camera1-track2.wav")).size(), 44 + 100'000'000 + 2 * 200);
        // Sound of more tracks than are decoded.
        bytes.clear();
        for (quint16 track = 0; track < 66; ++track)
            bytes += WireFrame{.track = track, .typeByte = audio, .flags = 3, .payload = 10};
        QCOMPARE(extract(bytes, "tracks").status, 0);
        const QStringList names = filesIn("tracks").keys();
        QCOMPARE(names.filter(".wav").size(), 64);
        QCOMPARE(names.filter(".bin").size(), 2);
    }

    void leavesFilesAlone() {
        for (const B& bytes : {withPayload({}, "picture"), sound(0, 1, 2, 'a')}) {
            QCOMPARE(extract(bytes, "again").status, 0);
            const Run again = extract(bytes + bytes, "again", {"--verbose"});
            QCOMPARE(again.status, 1);
            QVERIFY(again.err.contains("cannot extract to "));
        }
        const QString wave = "again/camera1-track2.wav";
        QCOMPARE(filesIn("again").keys(), QStringList({nameOf(0, 1, "bin"), wave.section('/', 1)}));
        QCOMPARE(readAll(pathOf(wave)).toHex(),
                 B("524946462600000057415645666d7420100000000100"
                   "0100803e0000007d00000200100064617461020000006161"));
        const Run run = extract(withPayload({}, "x") + withPayload({}, "y"), wave);
        QCOMPARE(run.status, 1);
        QCOMPARE(missingIn(run.err, {"pylon-inspect: standard input: cannot extract to ",
                                     "the folder cannot be made\n", "1*\n"}),
                 B());
    }

    // Only selected frames are extracted, and damage keeps none of the others from it.
    void severalInputs() {
        const B frames = withPayload({}, "picture") + withPayload({.camera = 2}, "other") +
                         sound(0, 3, 4, '\xff');
        QVERIFY(writeAll(pathOf("input.frames"), frames));
        const Run run = extract(frames + "junk" + frames, "several",
                                {pathOf("input.frames"), "--camera", "1", "--resync"});
        QCOMPARE(run.status, 1);
        QCOMPARE(filesIn("several"),
                 (Files{{"input1-" + nameOf(0, 1, "bin"), "picture"},
                        {"input1-" + nameOf(frames.size() + 4, 1, "bin"), "picture"},
                        {"input1-camera1-track2.wav", "8000 -8"},
                        {"input2-" + nameOf(0, 1, "bin"), "picture"},
                        {"input2-camera1-track2.wav", "8000 -4"}}));
    }

    // What was dumped is, taken together, the recording.
    void dumpsSample() {
        const QString folder = pylon::Image::dumpFolder(pylon::Image());
        const Run run = inspect({"--dump", sample});
        B content;
        QStringList files;
        for (const B& line : run.out.split('\n')) {
            if (!line.startsWith("    dumped filename size="))
                continue;
            const QString name = line.sliced(line.lastIndexOf("  ") + 2);
            files.prepend(folder + (name.contains("-255-255-0-") ? "event/" : "") + name);
            content += readAll(files.front());
        }
        QVERIFY(run.status == 0 && run.out.startsWith("OFFSET  TIME"));
        QVERIFY(content == readAll(sample));
        QVERIFY(run.out.endsWith("\n154 dumped to " + QDir::toNativeSeparators(folder).toUtf8() +
                                 '\n'));
        QVERIFY(files.back().contains("/img-1_1_0-538417800000_4_CET-V-i-65537-"));
        QVERIFY(files.front().contains("/img-1_154_820208-538417802928_4_CET-a-i-131074-"));
        const B json = inspect({"--json", "--dump", sample}).out;  // again, without a word about it
        QCOMPARE(json, readAll(SAMPLE_AS_JSON));
        QCOMPARE(inspect({"--json", folder}).out, json);
        QCOMPARE(inspect(QStringList("--json") + files).out, json);

        // A damaged one keeps none of the others from being shown.
        QVERIFY(writeAll(files[5], readAll(files[5]).chopped(1)));
        const Run damaged = inspect({"--json", folder});
        QCOMPARE(damaged.status, 1);
        QCOMPARE(damaged.out.count('\n'), 153);
        QVERIFY(damaged.err.endsWith("bin: frame at byte 0: needs 2035 bytes, 2034 are left\n"));
        for (const QString& file : files)
            QVERIFY(QFile::remove(file));
    }

    // By their times, whatever recording they are from.
    void ordersDumps() {
        QVERIFY(QDir().mkpath(pathOf("dumps")));
        QVERIFY(writeAll(pathOf("dumps/img-1_1_0-9_.bin"), WireFrame{.camera = 9}));
        QVERIFY(writeAll(pathOf("dumps/img-2_1_0--5_.bin"), WireFrame{.camera = 5}));
        const B json = inspect({"--json", pathOf("dumps")}).out;
        QVERIFY(json.split('\n').front().contains("\"camera\":5,") && json.count('\n') == 2);
    }

    void dumpFails() {
        const B input = WireFrame{.extensions = extensionBlock("", "a/\x1b")};
        const Run run = inspect({"--dump", "-"}, input);
        QCOMPARE(run.status, 1);
        const B wrong =
            missingIn(run.out,
                      {"\nnot dumped filename size=", "a/\\x1b.bin\n", "!\x1b", "\n0 dumped to "}) +
            missingIn(run.err, {"input: 1 not dumped, the first as ",
                                "\\x1b.bin: the camera's name leads to another folder\n"});
        QVERIFY2(wrong.isEmpty(), wrong);
    }

    void pictures() {
        const QString path = pathOf("map.png");
        QCOMPARE(inspect({"--diffmap", "-", "--png", path}, "\x02\x01\x10\xff").status, 0);
        const B png = readAll(path);
        QVERIFY(
            png.startsWith(B::fromHex("89504e470d0a1a0a 0000000d 49484452 00000010 00000008 "
                                      "0800000000 d51d204b")));
        QVERIFY(png.endsWith(B::fromHex("0000000049454e44ae426082")));
        QCOMPARE(rowsOf(png), ('\0' + B(8, '\x10') + B(8, '\xff')).repeated(8));
        const Run again = inspect({"--diffmap", "-", "--png", path}, "\x01\x01\x01");
        QVERIFY(again.status == 1 && again.err.contains("map.png: cannot write: "));
        QCOMPARE(readAll(path), png);
        QCOMPARE(inspect({"--diffmap", "-", "--png", pathOf("no.png")}, "\x80\xc1").status, 1);
        QCOMPARE(inspect({"--mask", "-", "--png", pathOf("mask.png")}, "1").status, 0);
        QCOMPARE(rowsOf(readAll(pathOf("mask.png"))), ('\0' + B(960, '\xff')).repeated(720));
    }

private:
    QString pathOf(const QString& name) { return dir_.filePath(name); }
    Run extract(const B& bytes, const QString& folder, const QStringList& more = {}) {
        return inspect(QStringList{"--json", "--extract", pathOf(folder), "-"} + more, bytes);
    }
    // The files of a folder; sound is described.
    Files filesIn(const QString& folder) {
        Files files;
        for (const QFileInfo& file : QDir(pathOf(folder)).entryInfoList(QDir::Files)) {
            B& content = files[file.fileName()] = readAll(file.filePath());
            if (file.suffix() != "wav")
                continue;
            const auto number = [&](int at) {
                return qFromLittleEndian<quint32>(content.constData() + at);
            };
            content = number(4) == file.size() - 8 && number(40) == file.size() - 44
                          ? described(number(24), content.sliced(44))
                          : "wrong sizes";
        }
        return files;
    }

    QTemporaryDir dir_;
};

QTEST_GUILESS_MAIN(TestExtract)
#include "tst_extract.moc"
