#include <pylon/media/framereader.h>

#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>

#include "../inspector/wireframe.h"

using pylon::FrameReader;
using Status = FrameReader::Status;

namespace {

constexpr qint64 allAtOnce = qint64{1} << 30;

// A device that gives a few bytes a read, and nothing every second time, like a slow connection;
// where the bytes end, so does the device, or it fails.
class Trickle : public QIODevice {
public:
    Trickle(const QByteArray& bytes, qint64 step, bool breaks = false)
        : bytes_(bytes), step_(step), breaks_(breaks) {
        open(ReadOnly | Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool isDrained() const { return position_ == bytes_.size(); }
    qint64 longestRequest() const { return longestRequest_; }

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        longestRequest_ = std::max(longestRequest_, maxSize);
        if (breaks_ && isDrained()) {
            setErrorString(QStringLiteral("cable cut"));
            return -1;
        }
        silent_ = !silent_ && !isDrained();
        const qint64 count = silent_ ? 0 : std::min({maxSize, step_, bytes_.size() - position_});
        std::copy_n(bytes_.constData() + position_, count, data);
        position_ += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray bytes_;
    qint64 step_;
    bool breaks_;
    qint64 position_ = 0;
    qint64 longestRequest_ = 0;
    bool silent_ = false;
};

// What became of an input: "54" for a frame of that size, "-10" for bytes skipped, and the text of
// an error behind its offset.
QStringList story(FrameReader& reader, const Trickle& device, bool resynchronise) {
    QStringList lines;
    bool skipping = false;
    for (;;) {
        const Status status = reader.next();
        if (status == Status::NeedsData) {
            if (!reader.fill() && device.isDrained())
                reader.finish();
            continue;
        }
        if (skipping)
            lines += QString::number(-reader.skippedBytes());
        skipping = false;
        if (status == Status::Frame) {
            lines += QString::number(reader.bytes().size());
            continue;
        }
        if (status == Status::End)
            return lines;
        lines += QStringLiteral("%1 %2").arg(reader.offset()).arg(reader.reason());
        if (!resynchronise || !reader.resynchronise())
            return lines;
        skipping = true;
    }
}

QByteArray frameOf(qsizetype size) {
    return WireFrame{.payload = static_cast<int>(size - 20)};
}

// A header alone that claims `size` bytes.
QByteArray claim(quint32 size) {
    QByteArray bytes = frameOf(20);
    qToLittleEndian<quint32>(0x80000000U | size, bytes.data());
    return bytes;
}

}  // namespace

class TestFrameReader : public QObject {
    Q_OBJECT

private slots:
    void waitsForTheRest_data();
    void waitsForTheRest();
    void memoryFollowsTheData_data();
    void memoryFollowsTheData();
    void givesFrames();
    void failsAndGoesOn_data();
    void failsAndGoesOn();
    void doesNotWaitForFalseHeaders();
    void deviceErrorIsFinal();
};

void TestFrameReader::waitsForTheRest_data() {
    QTest::addColumn<qint64>("step");
    QTest::addColumn<qsizetype>("chunk");
    QTest::newRow("single bytes") << qint64{1} << pylon::defaultFrameChunkSize;
    QTest::newRow("chunks of one byte") << allAtOnce << qsizetype{-1};
    QTest::newRow("19 bytes a read") << qint64{19} << qsizetype{4096};
    QTest::newRow("4 KiB chunks") << allAtOnce << qsizetype{4096};
    QTest::newRow("1 MiB a read") << qint64{1} * 1024 * 1024 << pylon::defaultFrameChunkSize;
}

void TestFrameReader::waitsForTheRest() {
    QFETCH(const qint64, step);
    QFETCH(const qsizetype, chunk);
    QByteArray bytes;
    for (const int payload : {0, 5000, 1, 100'000})
        bytes += WireFrame{.extensions = extensionBlock("S", "Gate"), .payload = payload};
    Trickle device(bytes + "junk", step);
    FrameReader reader(device);
    reader.setChunkSize(chunk);
    QByteArray seen;
    Status status;
    while ((status = reader.next()) != Status::Failed) {
        if (status == Status::NeedsData) {
            reader.fill();
            continue;
        }
        QCOMPARE(reader.offset(), seen.size());
        QCOMPARE(reader.headerImage().totalSize(), quint32(reader.bytes().size()));
        seen += reader.bytes();
    }
    QVERIFY(seen == bytes);
    QCOMPARE(reader.offset(), bytes.size());
    QCOMPARE(reader.reason(), QStringLiteral("Unknown header protocol"));
    QCOMPARE(device.longestRequest(), std::max<qint64>(chunk, 1));
    QVERIFY(!reader.fill());
    QCOMPARE(reader.next(), Status::Failed);
}

void TestFrameReader::memoryFollowsTheData_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("frames");
    QTest::addColumn<qsizetype>("limit");
    const qsizetype chunk = pylon::defaultFrameChunkSize;
    const QByteArray large = frameOf(5'000'000);
    const QByteArray claims = claim(0x3FFFFFF) + QByteArray(1'000'000, '\0');
    QTest::newRow("large frames") << large + frameOf(21) + large << 3 << large.size() + chunk;
    QTest::newRow("small frames") << frameOf(10'000).repeated(300) << 300 << chunk;
    QTest::newRow("mere claim") << claims << 0 << 2 * claims.size();
}

void TestFrameReader::memoryFollowsTheData() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const int, frames);
    QFETCH(const qsizetype, limit);
    Trickle device(bytes, allAtOnce);
    FrameReader reader(device);
    int seen = 0;
    for (Status status; (status = reader.next()) == Status::Frame || !device.isDrained();) {
        seen += status == Status::Frame ? 1 : 0;
        if (status == Status::NeedsData)
            reader.fill();
    }
    QCOMPARE(seen, frames);
    QVERIFY2(reader.capacity() <= limit, QByteArray::number(reader.capacity()));
}

// What is taken out of the reader stays when it goes on.
void TestFrameReader::givesFrames() {
    const QByteArray first =
        WireFrame{.camera = 7, .extensions = extensionBlock("S", "Gate"), .payload = 9};
    Trickle device(first + WireFrame{.camera = 8, .typeByte = 0x56}, allAtOnce);
    FrameReader reader(device);
    QVERIFY(reader.headerImage().isNull() && reader.image().isNull() && reader.header().isNull());
    QCOMPARE(reader.next(), Status::NeedsData);
    QVERIFY(reader.fill() || reader.fill());
    QCOMPARE(reader.next(), Status::Frame);
    const pylon::Image image = reader.image();
    const pylon::Image headerImage = reader.headerImage();
    const pylon::ImageHeader header = reader.header();
    QCOMPARE(reader.payload().toByteArray(), QByteArray(9, 'p'));
    QCOMPARE(reader.next(), Status::Frame);
    QCOMPARE(reader.headerImage().cameraId(), 8U);
    QVERIFY(reader.header().isNewKeyRequired() && reader.payload().isEmpty());
    reader.fill();
    QVERIFY(reader.header().isNull() && reader.bytes().isEmpty());
    QCOMPARE(image.payload(), QByteArray(9, 'p'));
    QCOMPARE(image.cameraName(), QStringLiteral("Gate"));
    QCOMPARE(headerImage.cameraName(), QStringLiteral("Gate"));
    QCOMPARE(headerImage.payloadSize(), 0U);
    QCOMPARE(header.channel(), 0x10007U);
}

void TestFrameReader::failsAndGoesOn_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("limit");
    QTest::addColumn<QStringList>("expected");
    using B = QByteArray;
    const B f = frameOf(30);
    const B fff = f + f + f;
    const quint32 none = ~quint32{0};
    const auto row = [](const char* name, const B& bytes, quint32 limit,
                        const QStringList& expected) {
        QTest::newRow(name) << bytes << limit << expected;
    };
    row("nothing", {}, none, {});
    row("whole", fff, none, {"30", "30", "30"});
    row("at the limit", fff, 30, {"30", "30", "30"});
    row("beyond the limit", f + frameOf(31) + fff, 30,
        {"30", "30 claims 31 bytes, the limit is 30", "-31", "30", "30", "30"});
    row("limit of the format", claim(0x3FFFFFF) + fff, none,
        {"0 needs 67108863 bytes, 110 are left", "-20", "30", "30", "30"});
    row("junk first", "junk!" + fff, none, {"0 Unknown header protocol", "-5", "30", "30", "30"});
    row("legacy protocol", f + B(4, '\xff') + fff, none,
        {"30", "30 Protocol support dropped", "-4", "30", "30", "30"});
    row("marker alone", f + B("\x14\0\0\x84", 4) + fff, none,
        {"30", "30 Unknown header protocol", "-4", "30", "30", "30"});
    row("too small for a header", f + claim(19) + fff, none,
        {"30", "30 Size mismatch", "-20", "30", "30", "30"});
    row("extensions beyond the frame", f + claim(20).first(19) + '\x01' + fff, none,
        {"30", "30 Size mismatch", "-20", "30", "30", "30"});
    row("block of 255 bytes", "x" + claim(300).first(19) + '\xff' + B(280, '\0') + fff, none,
        {"0 Unknown header protocol", "-301", "30", "30", "30"});
    row("false header", "x" + claim(40) + fff, none,
        {"0 Unknown header protocol", "-21", "30", "30", "30"});
    row("false header with one behind it",
        "x" + claim(25) + "12345" + claim(27) + "1234567" + B(9, '?') + fff, none,
        {"0 Unknown header protocol", "-62", "30", "30", "30"});
    row("false header that claims all", "x" + claim(1'000'000) + fff, none,
        {"0 Unknown header protocol", "-21", "30", "30", "30"});
    row("one frame behind", "x" + f, none, {"0 Unknown header protocol", "-1", "30"});
    row("a frame and a cut one", "x" + f + f.first(29), none,
        {"0 Unknown header protocol", "-1", "30", "31 needs 30 bytes, 29 are left", "-29"});
    row("a frame and the start of a header", "x" + f + f.first(5), none,
        {"0 Unknown header protocol", "-1", "30", "31 needs 30 bytes, 5 are left", "-5"});
    row("a cut frame only", "x" + f.first(29), none, {"0 Unknown header protocol", "-30"});
    row("a single byte", f + "x", none,
        {"30", "30 needs 20 bytes for its header, 1 is left", "-1"});
    row("twice", "x" + fff + "yz" + fff + "!", none,
        {"0 Unknown header protocol", "-1", "30", "30", "30", "91 Unknown header protocol", "-2",
         "30", "30", "30", "183 needs 20 bytes for its header, 1 is left", "-1"});
    row("no frame anywhere", B(3000, '\x80'), none,
        {"0 needs 8421504 bytes, 3000 are left", "-3000"});
    row("small in front of large", "x" + f + frameOf(2'000'000) + f, none,
        {"0 Unknown header protocol", "-1", "30", "2000000", "30"});
    row("longer than the wait", "x" + frameOf(100) + frameOf(100), 100,
        {"0 Unknown header protocol", "-1", "100", "100"});
}

void TestFrameReader::failsAndGoesOn() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const quint32, limit);
    QFETCH(const QStringList, expected);
    for (const qint64 step : {qint64{1}, qint64{33}, allAtOnce}) {
        if (step < 33 && bytes.size() > 100'000)
            continue;
        for (const bool resynchronise : {true, false}) {
            Trickle device(bytes, step);
            FrameReader reader(device);
            reader.setFrameSizeLimit(limit);
            QVERIFY(!reader.resynchronise());
            QStringList wanted = expected;
            const qsizetype failure = wanted.indexOf(QRegularExpression(QStringLiteral(".* .*")));
            if (!resynchronise && failure >= 0)
                wanted = wanted.first(failure + 1);
            QCOMPARE(story(reader, device, resynchronise), wanted);
            QCOMPARE(reader.next(), failure < 0 || resynchronise ? Status::End : Status::Failed);
            if (resynchronise)
                QCOMPARE(reader.offset(), bytes.size());
        }
    }
}

// Frames behind a false header that claims 64 MiB are there long before these are.
void TestFrameReader::doesNotWaitForFalseHeaders() {
    const QByteArray damage = "x" + claim(0x3FFFFFF);
    Trickle device(damage + frameOf(5000).repeated(200), 4096);
    FrameReader reader(device);
    for (Status status; (status = reader.next()) != Status::Frame;) {
        if (status == Status::Failed)
            QVERIFY(reader.resynchronise());
        else
            QVERIFY(reader.fill() || !device.isDrained());
    }
    QCOMPARE(reader.offset(), damage.size());
    QVERIFY(reader.capacity() <= pylon::defaultFrameChunkSize);
}

void TestFrameReader::deviceErrorIsFinal() {
    Trickle device(frameOf(40) + frameOf(40).first(30), allAtOnce, true);
    FrameReader reader(device);
    QCOMPARE(story(reader, device, true), QStringList({"40", "40 cannot read: cable cut"}));
    QVERIFY(!reader.fill());
    reader.finish();
    QCOMPARE(reader.next(), Status::Failed);
}

QTEST_GUILESS_MAIN(TestFrameReader)
#include "tst_framereader.moc"
