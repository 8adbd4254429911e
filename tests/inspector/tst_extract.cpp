#include <pylon/media/audioutils.h>
#include <pylon/media/byteconversion.h>
#include <pylon/media/framereader.h>
#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <span>

#include "inspectrun.h"
#include "wireframe.h"

namespace {

constexpr quint64 start = 538417800000;  // 1/300 s

// An audio frame that begins `ticks` after the start, every byte of its payload being `value`.
QByteArray sound(quint64 ticks, quint8 subType, int size, char value) {
    const QByteArray frame = WireFrame{.track = 2,
                                       .time = start + ticks,
                                       .typeByte = 'a' & 0x3F,
                                       .flags = subType,
                                       .payload = size};
    return frame.chopped(size) + QByteArray(size, value);
}

// The samples of a WAV file as runs of equal ones: "a800 -240" for 800 samples with bytes "aa" and
// 240 of silence, behind its rate in Hz; what is wrong with the header otherwise.
QByteArray described(const QByteArray& wave) {
    const auto bytes = std::as_bytes(std::span(wave.constData(), size_t(wave.size())));
    const auto number = [&](size_t at) { return pylon::byteSpanToUint32(bytes.subspan(at)); };
    if (wave.size() < 44 || wave.first(4) != "RIFF" || wave.sliced(8, 8) != "WAVEfmt " ||
        wave.sliced(36, 4) != "data")
        return "no WAV file";
    if (number(4) != wave.size() - 8 || number(40) != wave.size() - 44)
        return "wrong sizes";
    if (number(16) != 16 || number(20) != 0x10001 || number(28) != 2 * number(24) ||
        number(32) != 0x100002)
        return "wrong format";
    QByteArray text = QByteArray::number(number(24));
    for (qsizetype at = 44; at < wave.size();) {
        const qsizetype first = at;
        while (at < wave.size() && wave[at] == wave[first])
            ++at;
        text += QByteArray(" ") + (wave[first] == 0 ? '-' : wave[first]) +
                QByteArray::number((at - first) / 2);
    }
    return text;
}

}  // namespace

class TestExtract : public QObject {
    Q_OBJECT

private slots:
    void sample();
    void placesSound_data();
    void placesSound();
    void boundsSilence();
    void kinds();
    void leavesFilesAlone();
    void severalInputs();
    void failures();

private:
    Run extract(const QByteArray& bytes, const QString& folder, const QStringList& more = {}) {
        return inspect(QStringList{"--json", "--extract", dir_.filePath(folder), "-"} + more,
                       bytes);
    }
    QByteArray content(const QString& name) { return readAll(dir_.filePath(name)); }
    QStringList namesIn(const QString& folder) {
        return QDir(dir_.filePath(folder)).entryList(QDir::Files, QDir::Name);
    }

    QTemporaryDir dir_;
    const QString sample_ = QStringLiteral(SAMPLE_RECORDING);
};

void TestExtract::sample() {
    const QString folder = dir_.filePath(QStringLiteral("new/sample"));
    const Run run = inspect({"--summary", "--extract", folder, sample_});
    QCOMPARE(run.status, 0);
    QCOMPARE(run.err, QByteArray());

    QFile file(sample_);
    QVERIFY(file.open(QIODevice::ReadOnly));
    pylon::FrameReader reader(file);
    QMap<QString, int> kinds;
    QMap<quint32, QByteArray> samples;
    for (pylon::FrameReader::Status status;
         (status = reader.next()) != pylon::FrameReader::Status::End;) {
        if (status != pylon::FrameReader::Status::Frame) {
            if (!reader.fill())
                reader.finish();
            continue;
        }
        const pylon::Image image = reader.image();
        if (image.type() == 'a') {
            samples[image.channel()] += pylon::AudioUtils::decode(image).payload();
            continue;
        }
        const bool isEvent = image.cameraId() == 255;
        const QString suffix = image.isEncrypted() ? "bin" : isEvent ? "xml" : "jpg";
        const QByteArray written = content(QStringLiteral("new/sample/%1-camera%2.%3")
                                               .arg(reader.offset(), 12, 10, QLatin1Char('0'))
                                               .arg(image.cameraId())
                                               .arg(suffix));
        QCOMPARE(written, image.payload());
        QCOMPARE(written.startsWith("\xff\xd8"), suffix == "jpg");
        ++kinds[suffix];
    }
    QCOMPARE(kinds, (QMap<QString, int>{{"bin", 4}, {"jpg", 56}, {"xml", 6}}));
    QCOMPARE(samples.size(), 3);
    QCOMPARE(namesIn(QStringLiteral("new/sample")).size(), 4 + 56 + 6 + 3);
    for (auto track = samples.cbegin(); track != samples.cend(); ++track) {
        const QByteArray wave = content(QStringLiteral("new/sample/camera%1-track%2.wav")
                                            .arg(track.key() & 0xFFFF)
                                            .arg(track.key() >> 16));
        QVERIFY(described(wave).startsWith("8000 "));
        QVERIFY(wave.sliced(44) == track.value());  // all hosts of today are little-endian
    }
    QCOMPARE(samples[0x20001].size(), 2 * 80000);
}

// A tick is 1/300 s; 75 of them are 2000 samples at 8 kHz.
void TestExtract::placesSound_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("expected");
    using B = QByteArray;
    const auto a = [](quint64 ticks) { return sound(ticks, 2, 4000, 'a'); };
    const auto b = [](quint64 ticks) { return sound(ticks, 2, 4000, 'b'); };
    const auto c = [](quint64 ticks) { return sound(ticks, 2, 4000, 'c'); };
    const auto row = [](const char* name, const B& bytes, const char* expected) {
        QTest::newRow(name) << bytes << B(expected);
    };
    row("seamless", a(0) + b(75) + a(150), "8000 a2000 b2000 a2000");
    row("gap", a(0) + b(150), "8000 a2000 -2000 b2000");
    row("jitter", a(0) + b(84) + c(141) + a(225), "8000 a2000 b2000 c2000 a2000");
    row("more than jitter", a(0) + b(85), "8000 a2000 -266 b2000");
    row("drift adds up", a(0) + b(80) + c(160), "8000 a2000 b2000 -266 c2000");
    row("overlap", a(0) + b(60) + c(135), "8000 a2000 b1600 c2000");
    row("sent twice", a(0) + b(75) + a(0) + b(75) + c(150), "8000 a2000 b2000 c2000");
    row("far back", a(6000) + b(0) + c(75), "8000 a2000 b2000 c2000");
    row("longest gap", a(0) + b(75 + 18000), "8000 a2000 -480000 b2000");
    row("gap too long", a(0) + b(30000) + c(30150), "8000 a2000 -480000 b2000 -2000 c2000");
    row("last time", a(0) + sound(0xFFFFFFFFFFFF - start, 2, 4000, 'b'),
        "8000 a2000 -480000 b2000");
    row("16 kHz", sound(0, 1, 8000, 'a') + sound(150, 1, 8000, 'b'), "16000 a4000 -4000 b4000");
    row("raised to 16 kHz", sound(0, 1, 8000, 'a') + b(75), "16000 a4000 b4000");
    row("lowered to 8 kHz", a(0) + sound(75, 1, 8000, 'b') + c(150), "8000 a2000 b2000 c2000");
    row("half a sample", a(0) + sound(75, 2, 3, 'b') + sound(75, 2, 1, 'c'), "8000 a2000 b1");
    row("half a sample to raise", sound(0, 1, 2, 'a') + sound(0, 2, 1, 'b'), "16000 a1");
    row("no sample", sound(0, 2, 1, 'a'), "8000");
    row("A-law", sound(0, 4, 3, '\x55'),
        "8000 \xf8"
        "0 \xff"
        "0 \xf8"
        "0 \xff"
        "0 \xf8"
        "0 \xff"
        "0");
    row("mu-law silence", sound(0, 3, 300, '\xff'), "8000 -300");
}

void TestExtract::placesSound() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const QByteArray, expected);
    const QString folder = QString::fromLatin1(QTest::currentDataTag());
    const Run run = extract(bytes, folder);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.status, 0);
    QCOMPARE(described(content(folder + "/camera1-track2.wav")), expected);
    QCOMPARE(namesIn(folder).size(), 1);
}

// Frames of two bytes that jump ahead a minute each.
void TestExtract::boundsSilence() {
    QByteArray bytes;
    for (quint64 minute = 0; minute < 200; ++minute)
        bytes += sound(18000 * minute, 2, 2, 'a');
    QCOMPARE(extract(bytes, QStringLiteral("jumps")).status, 0);
    const QFileInfo file(dir_.filePath(QStringLiteral("jumps/camera1-track2.wav")));
    QCOMPARE(file.size(), 44 + 100'000'000 + 2 * 200);
}

void TestExtract::kinds() {
    struct Kind {
        const char* suffix;  // empty: no file
        QByteArray payload;
        quint8 typeByte = 'V' & 0x3F;
        quint8 flags = 0;
    };
    constexpr quint8 audio = 'a' & 0x3F;
    constexpr quint8 encrypted = 0x80;
    const Kind table[] = {
        {"", ""},
        {"jpg", "\xff\xd8"},
        {"bin", "\xff"},
        {"xml", "<a/>"},
        {"xml", "\xef\xbb\xbf \r\n\t<a/>"},
        {"bin", "a<"},
        {"bin", "\xff\xd8 encrypted", encrypted | ('V' & 0x3F)},
        {"bin", "<encrypted/>", encrypted | ('V' & 0x3F)},
        {"bin", "encrypted sound", encrypted | audio, 2},
        {"bin", "unknown sound", audio, 0},
        {"bin", "G.726", audio, 5},
        {"bin", "unknown sound", audio, 6},
    };
    QByteArray bytes;
    QMap<QString, QByteArray> expected;
    for (const Kind& kind : table) {
        const auto size = static_cast<int>(kind.payload.size());
        if (size > 0)
            expected[QStringLiteral("%1-camera9.%2")
                         .arg(bytes.size(), 12, 10, QLatin1Char('0'))
                         .arg(kind.suffix)] = kind.payload;
        const QByteArray frame = WireFrame{.camera = 9,
                                           .typeByte = kind.typeByte,
                                           .flags = kind.flags,
                                           .extensions = extensionBlock("../s", "../../c"),
                                           .payload = size};
        bytes += frame.chopped(size) + kind.payload;
    }
    QCOMPARE(extract(bytes, QStringLiteral("kinds")).status, 0);
    QCOMPARE(namesIn(QStringLiteral("kinds")), expected.keys());
    for (auto file = expected.cbegin(); file != expected.cend(); ++file)
        QCOMPARE(content("kinds/" + file.key()), file.value());

    // Sound of more tracks than are decoded.
    QByteArray many;
    for (quint16 track = 0; track < 66; ++track)
        many += QByteArray(WireFrame{.track = track, .typeByte = audio, .flags = 3, .payload = 10});
    QCOMPARE(extract(many, QStringLiteral("tracks")).status, 0);
    QCOMPARE(namesIn(QStringLiteral("tracks")).filter(QStringLiteral(".wav")).size(), 64);
    QCOMPARE(namesIn(QStringLiteral("tracks")).filter(QStringLiteral(".bin")).size(), 2);
}

void TestExtract::leavesFilesAlone() {
    const QByteArray picture = WireFrame{.payload = 10};
    for (const QByteArray& bytes : {picture, sound(0, 2, 10, 'a')}) {
        QCOMPARE(extract(bytes, QStringLiteral("again")).status, 0);
        const Run again = extract(bytes, QStringLiteral("again"), {"--verbose"});
        QCOMPARE(again.status, 1);
        QVERIFY(again.err.contains("cannot extract to "));
    }
    QCOMPARE(namesIn(QStringLiteral("again")),
             QStringList({"000000000000-camera1.bin", "camera1-track2.wav"}));
    QCOMPARE(described(content(QStringLiteral("again/camera1-track2.wav"))), QByteArray("8000 a5"));
}

// Only selected frames are extracted, and damage keeps none of the others from it.
void TestExtract::severalInputs() {
    const QByteArray frames = QByteArray(WireFrame{.payload = 10}) +
                              WireFrame{.camera = 2, .payload = 10} + sound(0, 3, 4, '\xff');
    QFile file(dir_.filePath(QStringLiteral("input.frames")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(frames) > 0 && file.flush());
    const Run run = extract(frames + "junk" + frames, QStringLiteral("several"),
                            {file.fileName(), "--camera", "1", "--resync"});
    QCOMPARE(run.status, 1);
    QCOMPARE(namesIn(QStringLiteral("several")),
             QStringList({"input1-000000000000-camera1.bin", "input1-000000000088-camera1.bin",
                          "input1-camera1-track2.wav", "input2-000000000000-camera1.bin",
                          "input2-camera1-track2.wav"}));
}

void TestExtract::failures() {
    QFile file(dir_.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray frame = WireFrame{.payload = 10};
    const Run run = extract(frame + frame, QStringLiteral("file"));
    QCOMPARE(run.status, 1);
    QCOMPARE(run.err.count('\n'), 1);
    QVERIFY(run.err.startsWith("pylon-inspect: standard input: cannot extract to "));
    QVERIFY(run.err.endsWith("the folder cannot be made\n"));
}

QTEST_GUILESS_MAIN(TestExtract)
#include "tst_extract.moc"
