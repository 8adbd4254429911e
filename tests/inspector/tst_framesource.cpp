#include <QtTest/qtest.h>
#include <inspector/framesource.h>

#include <algorithm>

#include "wireframe.h"

using pylon::inspector::FrameSource;

namespace {

// A device that gives a few bytes a read, and nothing every second time, like a slow connection.
class Trickle : public QIODevice {
public:
    Trickle(const QByteArray& bytes, qint64 step) : bytes_(bytes), step_(step) {
        open(ReadOnly | Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool isDrained() const { return position_ == bytes_.size(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        silent_ = !silent_;
        const qint64 count = silent_ ? 0 : std::min({maxSize, step_, bytes_.size() - position_});
        std::copy_n(bytes_.constData() + position_, count, data);
        position_ += count;
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray bytes_;
    qint64 step_;
    qint64 position_ = 0;
    bool silent_ = false;
};

}  // namespace

class TestFrameSource : public QObject {
    Q_OBJECT

private slots:
    void waitsForTheRest_data();
    void waitsForTheRest();
    void memoryFollowsTheData_data();
    void memoryFollowsTheData();
};

void TestFrameSource::waitsForTheRest_data() {
    QTest::addColumn<int>("step");
    for (const int step : {1, 19, 4096, 1 << 20})
        QTest::addRow("%d bytes a read", step) << step;
}

void TestFrameSource::waitsForTheRest() {
    QFETCH(const int, step);
    QByteArray bytes;
    for (const int payload : {0, 5000, 1, 900'000})
        bytes += WireFrame{.extensions = extensionBlock("S", "Gate"), .payload = payload};
    Trickle device(bytes + "junk", step);
    FrameSource source(device);
    QByteArray seen;
    FrameSource::Status status;
    while ((status = source.next()) != FrameSource::Status::Failed) {
        if (status == FrameSource::Status::NeedsData)
            source.fill();
        else {
            QCOMPARE(source.offset(), seen.size());
            QCOMPARE(source.image().totalSize(), quint32(source.bytes().size()));
            seen += source.bytes();
        }
    }
    QVERIFY(seen == bytes);
    QCOMPARE(source.offset(), bytes.size());
    QCOMPARE(source.reason(), QStringLiteral("Unknown header protocol"));
    QVERIFY(!source.finish() && !source.fill());
    QCOMPARE(source.next(), FrameSource::Status::Failed);
}

void TestFrameSource::memoryFollowsTheData_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<qsizetype>>("sizes");
    QTest::addColumn<qsizetype>("limit");
    const QByteArray large = WireFrame{.payload = 5'000'000};
    const QByteArray claims64MiB = QByteArray("\xff\xff\xff\x83", 4) + QByteArray(1'000'000, '\0');
    QTest::newRow("large frames") << large + WireFrame{.payload = 1} + large
                                  << QList<qsizetype>{5'000'020, 21, 5'000'020}
                                  << large.size() + FrameSource::chunkSize;
    QTest::newRow("small frames") << QByteArray(WireFrame{.payload = 9'980}).repeated(300)
                                  << QList<qsizetype>(300, 10'000) << FrameSource::chunkSize;
    QTest::newRow("mere claim") << claims64MiB << QList<qsizetype>() << 2 * claims64MiB.size();
}

void TestFrameSource::memoryFollowsTheData() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const QList<qsizetype>, sizes);
    QFETCH(const qsizetype, limit);
    Trickle device(bytes, 1 << 30);
    FrameSource source(device);
    QList<qsizetype> seen;
    while (source.next() == FrameSource::Status::Frame || !device.isDrained()) {
        if (!source.bytes().isEmpty())
            seen += source.bytes().size();
        else
            source.fill();
    }
    QCOMPARE(seen, sizes);
    QVERIFY2(source.capacity() <= limit, QByteArray::number(source.capacity()));
}

QTEST_GUILESS_MAIN(TestFrameSource)
#include "tst_framesource.moc"
