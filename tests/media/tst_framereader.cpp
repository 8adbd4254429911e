#include <pylon/media/framereader.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <utility>
#include <vector>

#include "../inspector/wireframe.h"

using pylon::FrameReader;
using Status = FrameReader::Status;
using B = QByteArray;

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
    B story() {
        QByteArrayList parts;
        for (bool skipping = false;;) {
            const Status status = next();
            if (std::exchange(skipping, status == Status::Failed))
                parts += B::number(-reader.skippedBytes());
            if (status == Status::End)
                return parts.join("; ");
            if (skipping) {
                parts += B::number(reader.offset()) + ' ' + reader.reason().toUtf8();
                // The failure stays until then.
                if (reader.fill() || reader.next() != Status::Failed || !reader.resynchronise())
                    return "goes on";
            } else {
                const bool isRight = bytes.sliced(reader.offset()).startsWith(reader.bytes()) &&
                                     reader.headerImage().totalSize() == reader.bytes().size();
                parts += isRight ? B::number(reader.bytes().size()) : "wrong";
            }
        }
    }

    const B bytes;
    const qsizetype step;
    QBuffer device;
    FrameReader reader{device};
    qint64 longestRead = 0;
};

constexpr quint32 limit = 2'000'000;

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
    void stories() {
        const B f = frameOf(30), largest = frameOf(limit), unknown = "Unknown header protocol";
        const B named = WireFrame{.extensions = extensionBlock("S", "Gate"), .payload = 9};
        std::vector<std::pair<B, B>> stories = {
            {"", ""},
            {frameOf(20) + named + frameOf(70'000) + f, "20; 36; 70000; 30"},
            {largest + frameOf(21) + largest, "2000000; 21; 2000000"},
            {frameOf(10'000).repeated(300), B("; 10000").repeated(300).sliced(2)},
            {named.first(1), "0 needs 20 bytes for its header, 1 is left; -1"},
            // Without three frames behind the damage
            {"x" + frameOf(20), "0 " + unknown + "; -1; 20"},
            {"x" + f + f.first(29),
             "0 " + unknown + "; -1; 30; 31 needs 30 bytes, 29 are left; -29"},
            {"x" + f + f.first(5), "0 " + unknown + "; -1; 30; 31 needs 30 bytes, 5 are left; -5"},
            {"x" + f.first(29), "0 " + unknown + "; -30"},
            {"x" + f + largest + f, "0 " + unknown + "; -1; 30; 2000000; 30"},
            {claim(limit) + B(9980, '\0'), "0 needs 2000000 bytes, 10000 are left; -10000"}};
        for (int cut = 4; cut < 36; ++cut)
            stories.emplace_back(named.first(cut),
                                 QString("0 needs 36 bytes, %1 are left; -%1").arg(cut).toLatin1());
        const std::pair<B, B> damages[] = {
            {"junk!", unknown},
            {claim(limit + 1), "claims 2000001 bytes, the limit is 2000000"},
            {B(4, '\xff'), "Protocol support dropped"},
            {claim(19), "Size mismatch"},
            {claim(20).first(19) + '\x01', "Size mismatch"},  // extensions beyond the frame
            {"x" + claim(300).first(19) + '\xff' + B(280, '\0'), unknown},  // 255 bytes of them
            {"x" + claim(20).first(19) + '\x01', unknown},
            {"x" + claim(40), unknown},  // false headers
            {"x" + claim(25) + "12345" + claim(27) + B(16, '?'), unknown},
            {"x" + claim(1'000'000), unknown}};
        // In front of three frames, and of one more behind the next damage.
        for (const auto& [junk, reason] : damages) {
            const B skipped = B::number(-junk.size()), next = B::number(120 + junk.size());
            stories.emplace_back(f + junk + f + f + f + "!" + f,
                                 "30; 30 " + reason + "; " + skipped + "; 30; 30; 30; " + next +
                                     ' ' + unknown + "; -1; 30");
        }
        for (const auto& [bytes, expected] : stories) {
            // The longest frame; in damage, a header may claim all that is there.
            qsizetype longest = expected.contains('-') ? 2 * bytes.size() : 0;
            for (const B& part : expected.split(';'))
                longest = std::max<qsizetype>(longest, part.trimmed().toInt());
            // Bytes a read, as the device and as the reader wants it.
            for (const auto& [step, chunk] : {std::pair(1, -1), {33, 4096}, {1 << 30, 1 << 19}}) {
                if (step == 1 && bytes.size() > 200'000)
                    continue;
                Input input(bytes, step);
                FrameReader& reader = input.reader;
                reader.setFrameSizeLimit(limit);
                reader.setChunkSize(chunk);
                QVERIFY(!reader.resynchronise());
                QCOMPARE(input.story(), expected);
                QVERIFY(reader.next() == Status::End && reader.offset() == bytes.size());
                input.device.buffer() += "late";
                QVERIFY(!reader.fill());
                const qsizetype request = std::max(chunk, 1);
                QVERIFY(input.longestRead <= request && reader.capacity() <= longest + request);
            }
        }
    }

    // What is taken out of the reader stays when it goes on.
    void givesFrames() {
        const B first =
            WireFrame{.camera = 7, .extensions = extensionBlock("S", "Gate"), .payload = 9};
        Input input(first + WireFrame{.camera = 8, .typeByte = 0x56}, 1 << 30);
        FrameReader& reader = input.reader;
        reader.setFrameSizeLimit(0xFFFFFFFF);
        QCOMPARE(reader.frameSizeLimit(), 0x3FFFFFFU);
        QVERIFY(reader.image().isNull() && reader.headerImage().isNull());
        QCOMPARE(input.next(), Status::Frame);
        const pylon::Image image = reader.image(), headerImage = reader.headerImage();
        const pylon::ImageHeader header = reader.header();
        QCOMPARE(reader.payload().toByteArray(), B(9, 'p'));
        QCOMPARE(reader.next(), Status::Frame);
        QVERIFY(reader.header().isNewKeyRequired() && reader.payload().isEmpty());
        QCOMPARE(reader.headerImage().cameraId(), 8U);
        reader.fill();
        QVERIFY(reader.header().isNull() && reader.headerImage().isNull());
        QVERIFY(image.payload() == B(9, 'p') && image.cameraName() == "Gate");
        QVERIFY(headerImage.cameraName() == "Gate" && headerImage.payloadSize() == 0);
        QCOMPARE(header.channel(), 0x10007U);
        // An error of the device is final.
        input.device.close();
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("not open"));
        QVERIFY(!reader.fill() && !reader.resynchronise());
        reader.finish();
        QCOMPARE(reader.next(), Status::Failed);
        QCOMPARE(reader.reason(), "cannot read: " + input.device.errorString());
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
};

QTEST_GUILESS_MAIN(TestFrameReader)
#include "tst_framereader.moc"
