#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>

#include <QtTest/QtTest>

#include <atomic>
#include <barrier>
#include <thread>
#include <vector>

using namespace pylon;

class TestImageThreads : public QObject {
    Q_OBJECT

private slots:
    // Each thread copies, clones and at last drops the handle it was given; the last one frees
    // the record, and no clone ever shows in it.
    void handlesAndClones() {
        constexpr std::size_t threadCount = 4;
        const QByteArray payload("ab");
        std::atomic<int> wrong = 0;
        {
            Image frame(headerBytes("Gate", 2) + "ab");
            frame.setPayload(payload);
            std::vector<Image> frames(threadCount, frame);
            std::vector<ImageHeader> headers(threadCount, ImageHeader(frame));
            frame = Image();
            std::barrier start(threadCount);
            std::vector<std::jthread> threads;
            for (std::size_t number = 0; number < threadCount; ++number) {
                threads.emplace_back([&, number] {
                    const auto mark = static_cast<char>('0' + static_cast<int>(number));
                    start.arrive_and_wait();
                    for (int round = 0; round < 2000; ++round) {
                        const Image copy = frames[number];
                        const ImageHeader header = headers[number];
                        Image clone = copy.clone();
                        clone.setHiddenFlag(true);
                        clone.payloadData()[1] = mark;
                        wrong += clone.payload().back() != mark || header.channel() != 3;
                        clone.loadFromData(headerBytes("", 1) + mark);
                        wrong += clone.payload().front() != mark || clone.serverName() != "Gate";
                        wrong += copy.payload() != "ab" || copy.isHidden();
                    }
                    frames[number] = Image();
                    headers[number] = ImageHeader();
                });
            }
        }
        QCOMPARE(wrong.load(), 0);
        QVERIFY(payload.isDetached());
    }
};

QTEST_APPLESS_MAIN(TestImageThreads)
#include "tst_imagethreads.moc"
