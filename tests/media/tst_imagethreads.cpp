#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>

#include <QtTest/QtTest>

#include <barrier>
#include <thread>
#include <vector>

using namespace pylon;

class TestImageThreads : public QObject {
    Q_OBJECT

private slots:
    void handlesCrossThreads();
    void clonesAreIndependent();
};

namespace {

constexpr std::size_t threadCount = 4;
constexpr int rounds = 2000;

template <typename Work>
void onThreads(Work work) {
    std::barrier start(threadCount);
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (std::size_t number = 0; number < threadCount; ++number) {
        threads.emplace_back([&, number] {
            start.arrive_and_wait();
            work(number);
        });
    }
}

}  // namespace

void TestImageThreads::handlesCrossThreads() {
    const QByteArray payload(64, 'p');
    int wrong[threadCount] = {};
    {
        Image frame;
        frame.setPayload(payload);
        std::vector<Image> frames(threadCount, frame);
        const ImageHeader header(frame);
        std::vector<ImageHeader> headers(threadCount, header);
        frame = Image();
        // Each thread drops the handle it was given: the last one frees the record.
        onThreads([&](std::size_t number) {
            for (int round = 0; round < rounds; ++round) {
                const Image copy = frames[number];
                const ImageHeader headerCopy = headers[number];
                wrong[number] += copy.payload() != payload || headerCopy.channel() != 0;
            }
            frames[number] = Image();
            headers[number] = ImageHeader();
        });
    }
    for (int count : wrong)
        QCOMPARE(count, 0);
    QVERIFY(payload.isDetached());
}

void TestImageThreads::clonesAreIndependent() {
    const Image frame(headerBytes("Gate", 2) + "ab");
    int wrong[threadCount] = {};
    onThreads([&](std::size_t number) {
        const auto mark = static_cast<char>('0' + static_cast<int>(number));
        for (int round = 0; round < rounds; ++round) {
            Image clone = frame.clone();
            clone.payloadData()[1] = mark;
            clone.setHiddenFlag(true);
            clone.loadFromData(headerBytes("", 1) + mark);
            wrong[number] += clone.payload().front() != mark || clone.serverName() != "Gate";
        }
    });
    for (int count : wrong)
        QCOMPARE(count, 0);
    QCOMPARE(frame.payload(), "ab");
    QVERIFY(!frame.isHidden());
}

QTEST_APPLESS_MAIN(TestImageThreads)
#include "tst_imagethreads.moc"
