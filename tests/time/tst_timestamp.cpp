#include <pylon/time/timestamp.h>
#include <QtCore/QDateTime>
#include <QtTest/QTest>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

using pylon::ptimeval;
using pylon::Timestamp;

namespace {

template <class... Values>
QByteArray printed(const char* format, Values... values) {
    char text[2048];
    return QByteArray(text, std::snprintf(text, sizeof text, format, values...));
}

constexpr long long base = 1794726000;

QByteArray reference(const ptimeval& moment) {
    const QTime time = QDateTime::fromSecsSinceEpoch(moment.tv_sec).time();
    return printed("%02d:%02d:%02d.%06u", time.hour(), time.minute(), time.second(),
                   static_cast<unsigned>(moment.tv_usec));
}

QByteArray rendered(const ptimeval& moment) {
    char text[64];
    const int length = Timestamp(moment).toDefaultString(text, sizeof text);
    return QByteArray(text, qMax(length, 0));
}

}  // namespace

class TestTimestamp : public QObject {
    Q_OBJECT

private slots:
    void rendersLocalTime() {
        for (const ptimeval moment :
             {ptimeval{base, 42}, ptimeval{base, 999'999}, ptimeval{base + 1, 0},
              ptimeval{base - 40'000'000, 500'000}, ptimeval{1, 1}, ptimeval{4'102'444'800, 7}})
            QCOMPARE(rendered(moment), reference(moment));
    }

    void boundedWriting_data() {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("result");
        QTest::addColumn<QByteArray>("buffer");
        const QByteArray text = reference({base, 123'456});
        QTest::newRow("nothing") << 0 << -1 << QByteArray(18, '#');
        QTest::newRow("one") << 1 << -1 << text.left(1) + QByteArray(17, '#');
        QTest::newRow("one short") << 14 << -1 << text.left(14) + "####";
        QTest::newRow("no terminator") << 15 << 15 << text + "###";
        QTest::newRow("terminator") << 16 << 15 << text + QByteArray(1, '\0') + "##";
    }

    void boundedWriting() {
        QFETCH(int, size);
        QByteArray buffer(18, '#');
        QTEST(Timestamp(ptimeval{base, 123'456}).toDefaultString(buffer.data(), size), "result");
        QTEST(buffer, "buffer");
    }

    void unsetStamp() {
        char text[] = "untouched";
        QCOMPARE(Timestamp(false).toDefaultString(text, sizeof text), 0);
        QCOMPARE(text, "untouched");
        QCOMPARE(Timestamp(false).elapsedSecs(), 0);
        QCOMPARE(Timestamp(false).elapsedMilliSecs(), 0);
        QCOMPARE(Timestamp(false).elapsedMicroSecs(), 0);
    }

    void noLocalTime() {
        char text[64];
        QCOMPARE(Timestamp(ptimeval{1LL << 62, 0}).toDefaultString(text, sizeof text), -1);
    }

    void cacheHoldsLastSecond() {
        rendered({base + 7, 1});
        QCOMPARE(Timestamp::last_secs_, int(base + 7));
        QCOMPARE(QByteArray(Timestamp::last_buf), reference({base + 7, 0}).left(9) + "%06u");
        // The low 32 bits decide: a second that shares them takes the text that is there.
        QCOMPARE(rendered({base + 7 + (1LL << 32), 5}), reference({base + 7, 5}));
        std::strcpy(Timestamp::last_buf, "cached %06u");
        QCOMPARE(rendered({base + 7, 12}), QByteArray("cached 000012"));
        QCOMPARE(rendered({base + 8, 12}), reference({base + 8, 12}));
        QCOMPARE(Timestamp::last_secs_, int(base + 8));
    }

    void elapsedTimesFollowTheFields() {
        const long long now = QDateTime::currentSecsSinceEpoch();
        const Timestamp hourAgo(ptimeval{now - 3600, 999'999});
        const long long secs = hourAgo.elapsedSecs();
        QVERIFY(secs >= 3600 && secs < 3700);
        const long long millis = hourAgo.elapsedMilliSecs();
        QVERIFY(millis >= 3'599'001 && millis < 3'700'000);
        const long long micros = hourAgo.elapsedMicroSecs();
        QVERIFY(micros >= 3'599'000'001 && micros < 3'700'000'000);
        QVERIFY(Timestamp::currentTimeStamp().elapsedSecs() <= 60);
        Timestamp restarted(false);
        restarted.restart();
        QCOMPARE(restarted.elapsedSecs() / 60, 0);
    }

    // Every text must be right while others render other seconds; TSan watches the cache.
    void manyThreads() {
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t, &wrong] {
                std::vector<QByteArray> expected;
                for (int second = 0; second < 3; ++second)
                    expected.push_back(reference({base + 60 * t + second, t}));
                for (int i = 0; i < 60'000; ++i) {
                    const int second = i / 7 % 3;
                    if (rendered({base + 60 * t + second, t}) !=
                        expected[static_cast<std::size_t>(second)])
                        ++wrong;
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }
};

QTEST_APPLESS_MAIN(TestTimestamp)
#include "tst_timestamp.moc"
