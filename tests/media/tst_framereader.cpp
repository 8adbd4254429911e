#include <pylon/media/framereader.h>

#include <QtCore/QBuffer>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <tuple>
#include <utility>

#include "../inspector/wireframe.h"

using pylon::FrameReader;
using Status = FrameReader::Status;
using B = QByteArray;
using Texts = QByteArrayList;

namespace {

// An input that comes in steps, each after it seemed to have ended.
struct Input {
    explicit Input(const B& content, qsizetype stepSize) : bytes(content), step(stepSize) {
        device.open(QIODevice::ReadOnly);
    }

    // Goes on to a frame, an error or the end.
    Status next() {
        for (;;) {
            const Status status = reader.next();
            if (status != Status::NeedsData)
                return status;
            const qint64 before = device.pos();
            if (!reader.fill() && device.size() == bytes.size())
                reader.finish();
            longestRead = std::max(longestRead, device.pos() - before);
            if (device.pos() == before)
                device.buffer() += bytes.mid(device.size(), step);
        }
    }

    // What became of it: "54" for a frame of that size, "-10" for bytes skipped, and the text of an
    // error behind its offset. Frames must be what stands there in the input.
    B story(bool resynchronise) {
        Texts parts;
        for (bool skipping = false;;) {
            const Status status = next();
            if (std::exchange(skipping, status == Status::Failed))
                parts += B::number(-reader.skippedBytes());
            if (status == Status::Frame) {
                const bool isRight = bytes.sliced(reader.offset()).startsWith(reader.bytes()) &&
                                     reader.headerImage().totalSize() == reader.bytes().size();
                parts += isRight ? B::number(reader.bytes().size()) : "wrong";
            } else if (skipping) {
                parts += B::number(reader.offset()) + ' ' + reader.reason().toUtf8();
            }
            if (status == Status::End || (skipping && !(resynchronise && reader.resynchronise())))
                return parts.join("; ");
        }
    }

    const B bytes;
    const qsizetype step;
    QBuffer device;
    FrameReader reader{device};
    qint64 longestRead = 0;
};

B frameOf(qsizetype size) {
    return WireFrame{.payload = static_cast<int>(size - 20)};
}

// A header alone that claims `size` bytes.
B claim(quint32 size) {
    B bytes = frameOf(20);
    qToLittleEndian<quint32>(0x80000000U | size, bytes.data());
    return bytes;
}

}  // namespace

class TestFrameReader : public QObject {
    Q_OBJECT

private slots:
    void stories_data() {
        QTest::addColumn<B>("bytes");
        QTest::addColumn<B>("expected");
        QTest::addColumn<quint32>("limit");
        const auto row = [](const char* name, const B& bytes, const B& expected,
                            quint32 limit = ~quint32{0}) {
            QTest::newRow(name) << bytes << expected << limit;
        };
        const B f = frameOf(30);
        const B large = frameOf(5'000'000);
        const B named = WireFrame{.extensions = extensionBlock("S", "Gate"), .payload = 9};
        row("nothing", {}, "");
        row("at the limit", f + f + f, "30; 30; 30", 30);
        row("all sizes", frameOf(20) + frameOf(9000) + named + frameOf(70'000),
            "20; 9000; 36; 70000");
        row("large frames", large + frameOf(21) + large, "5000000; 21; 5000000");
        row("small frames", frameOf(10'000).repeated(300), B("; 10000").repeated(300).sliced(2));
        row("cut at 1", named.first(1), "0 needs 20 bytes for its header, 1 is left; -1");
        row("cut at 3", named.first(3), "0 needs 20 bytes for its header, 3 are left; -3");
        for (int cut = 4; cut < 36; ++cut)
            row("cut", named.first(cut),
                QString("0 needs 36 bytes, %1 are left; -%1").arg(cut).toLatin1());

        // Behind a frame and in front of three.
        const auto damage = [&](const char* name, const B& junk, const B& reason,
                                quint32 limit = ~quint32{0}) {
            row(name, f + junk + f + f + f,
                "30; 30 " + reason + "; " + B::number(-junk.size()) + "; 30; 30; 30", limit);
        };
        const B unknown = "Unknown header protocol";
        damage("junk", "junk!", unknown);
        damage("beyond the limit", frameOf(31), "claims 31 bytes, the limit is 30", 30);
        damage("limit of the format", claim(0x3FFFFFF), "needs 67108863 bytes, 110 are left");
        damage("legacy protocol", B(4, '\xff'), "Protocol support dropped");
        damage("marker alone", B("\x14\0\0\x84", 4), unknown);
        damage("too small for a header", claim(19), "Size mismatch");
        damage("extensions beyond the frame", claim(20).first(19) + '\x01', "Size mismatch");
        damage("block of 255 bytes", "x" + claim(300).first(19) + '\xff' + B(280, '\0'), unknown);
        damage("false header", "x" + claim(40), unknown);
        damage("two false headers", "x" + claim(25) + "12345" + claim(27) + B(16, '?'), unknown);
        damage("false header that claims all", "x" + claim(1'000'000), unknown);

        const B start = "0 " + unknown + "; ";
        row("junk alone", "junk!", start + "-5");
        row("one frame behind", "x" + frameOf(20), start + "-1; 20");
        row("cut frame", "x" + f + f.first(29),
            start + "-1; 30; 31 needs 30 bytes, 29 are left; -29");
        row("cut header", "x" + f + f.first(5),
            start + "-1; 30; 31 needs 30 bytes, 5 are left; -5");
        row("a cut frame only", "x" + f.first(29), start + "-30");
        row("twice", "x" + f + f + f + "yz" + f + f,
            start + "-1; 30; 30; 30; 91 " + unknown + "; -2; 30; 30");
        row("no frame", B(3000, '\x80'), "0 needs 8421504 bytes, 3000 are left; -3000");
        row("mere claim", claim(0x3FFFFFF) + B(1'000'000, '\0'),
            "0 needs 67108863 bytes, 1000020 are left; -1000020");
        row("small, large", "x" + f + frameOf(2'000'000) + f, start + "-1; 30; 2000000; 30");
    }

    void stories() {
        QFETCH(const B, bytes);
        QFETCH(const B, expected);
        QFETCH(const quint32, limit);
        const bool isWhole = !expected.contains('-');
        qsizetype longest = isWhole ? 0 : 2 * bytes.size();
        for (const B& part : expected.split(';'))
            longest = std::max<qsizetype>(longest, part.trimmed().toInt());
        // Bytes a read, as the device and as the reader wants it; whether it goes on.
        constexpr std::tuple<qint64, qsizetype, bool> ways[] = {
            {1, -1, true}, {33, 4096, true}, {1 << 30, 1 << 19, true}, {33, 4096, false}};
        for (const auto& [step, chunk, resynchronise] : ways) {
            if (step == 1 && bytes.size() > 200'000)
                continue;
            Input input(bytes, step);
            FrameReader& reader = input.reader;
            reader.setFrameSizeLimit(limit);
            reader.setChunkSize(chunk);
            QVERIFY(!reader.resynchronise() && reader.frameSizeLimit() <= 0x3FFFFFF);
            const B found = input.story(resynchronise);
            QCOMPARE(found, resynchronise ? expected : expected.first(found.size()));
            const bool failed = !isWhole && !resynchronise;
            QCOMPARE(reader.next(), failed ? Status::Failed : Status::End);
            QVERIFY(failed || reader.offset() == bytes.size());
            input.device.buffer() += "late";
            QVERIFY(!reader.fill());
            const qsizetype request = std::max<qsizetype>(chunk, 1);
            QVERIFY(input.longestRead <= request);
            QVERIFY2(reader.capacity() <= longest + request, B::number(reader.capacity()));
        }
    }

    // What is taken out of the reader stays when it goes on.
    void givesFrames() {
        const B first =
            WireFrame{.camera = 7, .extensions = extensionBlock("S", "Gate"), .payload = 9};
        Input input(first + WireFrame{.camera = 8, .typeByte = 0x56}, 1 << 30);
        FrameReader& reader = input.reader;
        QVERIFY(reader.headerImage().isNull() && reader.image().isNull());
        QVERIFY(reader.header().isNull());
        QCOMPARE(input.next(), Status::Frame);
        const pylon::Image image = reader.image();
        const pylon::Image headerImage = reader.headerImage();
        const pylon::ImageHeader header = reader.header();
        QCOMPARE(reader.payload().toByteArray(), B(9, 'p'));
        QCOMPARE(reader.next(), Status::Frame);
        QCOMPARE(reader.headerImage().cameraId(), 8U);
        QVERIFY(reader.header().isNewKeyRequired() && reader.payload().isEmpty());
        reader.fill();
        QVERIFY(reader.header().isNull() && reader.bytes().isEmpty());
        QVERIFY(reader.headerImage().isNull());
        QCOMPARE(image.payload(), B(9, 'p'));
        QCOMPARE(image.cameraName(), "Gate");
        QCOMPARE(headerImage.cameraName(), "Gate");
        QCOMPARE(headerImage.payloadSize(), 0U);
        QCOMPARE(header.channel(), 0x10007U);
    }

    // Frames behind a false header that claims 64 MiB are there long before these are.
    void doesNotWaitForFalseHeaders() {
        Input input("x" + claim(0x3FFFFFF) + frameOf(5000).repeated(200), 4096);
        QCOMPARE(input.next(), Status::Failed);
        QVERIFY(input.reader.resynchronise());
        QCOMPARE(input.next(), Status::Frame);
        QCOMPARE(input.reader.offset(), 21);
        QVERIFY(input.device.size() < input.bytes.size());
        QVERIFY(input.reader.capacity() <= pylon::defaultFrameChunkSize);
        // Nor do frames wait for more than one of the longest behind them.
        Input few("x" + frameOf(100) + frameOf(20), 1000);
        few.reader.setFrameSizeLimit(100);
        QCOMPARE(few.next(), Status::Failed);
        QVERIFY(few.reader.resynchronise());
        QCOMPARE(few.reader.next(), Status::Frame);
    }

    void deviceErrorIsFinal() {
        Input input(frameOf(40), 30);
        QCOMPARE(input.next(), Status::Frame);
        input.device.close();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("not open"));
        QVERIFY(!input.reader.fill() && !input.reader.resynchronise());
        input.reader.finish();
        QCOMPARE(input.reader.next(), Status::Failed);
        QCOMPARE(input.reader.reason(), "cannot read: " + input.device.errorString());
    }
};

QTEST_GUILESS_MAIN(TestFrameReader)
#include "tst_framereader.moc"
