#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace pylon;

namespace {

constexpr long long base = 1794726000;

QByteArray reference(const ptimeval& moment) {
    return QDateTime::fromSecsSinceEpoch(moment.tv_sec).toString("HH:mm:ss.").toLatin1() +
           QByteArray::number(moment.tv_usec).rightJustified(6, '0');
}

QByteArray rendered(const ptimeval& moment) {
    char text[64];
    return QByteArray(text, qMax(Timestamp(moment).toDefaultString(text, sizeof text), 0));
}

}  // namespace

class TestClocks : public QObject {
    Q_OBJECT

private slots:
    // Each time read, in microseconds, must lie between the readings of two reference timers around
    // it, give or take a millisecond that is not whole.
    void readings() {
        QElapsedTimer outer, inner;
        NanoElapsedTimer nano, assigned, moved;
        ElapsedTimer elapsed;
        Timer timer;
        RenderingTimings timings, copy(timings);
        outer.start();
        nano.start();
        elapsed.start();
        timer.start();
        timings.start();
        inner.start();
        while (inner.elapsed() < 3) {
        }
        const qint64 least = (inner.elapsed() - 1) * 1000;
        timings.setTime(TimePoint4);
        copy.setTime(TimePoint5);  // shares the timer
        timer.stop();
        assigned.start();
        assigned = nano;
        moved = NanoElapsedTimer(assigned);
        const double stopped = timer.getElapsedTimeInMicroSec();
        QList<qint64> usecs;
        usecs << moved.elapsed() * 1000 << moved.elapsedUSecs() << assigned.elapsedNSecs() / 1000
              << elapsed.nsecsElapsed() / 1000 << elapsed.elapsed() * 1000
              << elapsed.restart() * 1000 << qint64(stopped)
              << qint64(timer.getElapsedTimeInMilliSec() * 1e3)
              << qint64(timer.getElapsedTime() * 1e6) << qint64(timings.time(TimePoint4))
              << qint64(copy.time(TimePoint5));
        const qint64 most = (outer.elapsed() + 1) * 1000;
        for (const qint64 reading : usecs)
            QVERIFY2(reading >= least && reading <= most, qPrintable(QDebug::toString(usecs)));
        QVERIFY(outer.nsecsElapsed() - elapsed.nsecsElapsed() >= 3'000'000);  // started again
        QCOMPARE(timer.getElapsedTimeInMicroSec(), stopped);
        timer.start();
        QVERIFY(timer.getElapsedTimeInMicroSec() >= 0);  // no longer stopped
        elapsed.invalidate();
        QVERIFY(!elapsed.isValid() && !RENDER_TIMING_ENABLED && !STREAM_TIMING_ENABLED);
    }

    // Functions with an output argument report an unstarted QElapsedTimer, whatever start() did.
    void unstartedReadings() {
        const auto isThat = [](long long msecs) {
            return qAbs(msecs - QElapsedTimer().elapsed()) < 60'000;
        };
        NanoElapsedTimer timer;
        QVERIFY(timer.resolution() == 1'000'000 && isThat(timer.elapsedMSecs()));
        timer.start();
        int rest = 1, unit = 1;
        for (const auto read :
             {&NanoElapsedTimer::elapsedSecsPlusMSecs, &NanoElapsedTimer::elapsedSecsPlusUSecs,
              &NanoElapsedTimer::elapsedSecsPlusNSecs}) {
            QVERIFY(isThat((timer.*read)(rest)*1000 + rest / unit) && rest % unit == 0);
            unit *= 1000;
        }
        QVERIFY(isThat(timer.elapsedUSecsPlusNSecs(rest) / 1000) && rest == 0);
        long long usecs, nsecs;
        QVERIFY(isThat(timer.elapsed(usecs, nsecs)) && isThat(usecs / 1000) && nsecs % 1000 == 0);
    }

    void dispatchTimes() {
        RenderingTimings timings;
        QVERIFY(!timings.isValid());
        const QTime before = QTime::currentTime();
        timings.start();
        const QTime after = QTime::currentTime();
        QVERIFY(timings.isValid() && timings.dispatchTimeDiff() == 0);  // no target
        timings.setTargetTime(QTime(12, 0));
        const int diff = timings.dispatchTimeDiff();
        const QTime started = QTime(12, 0).addMSecs(diff);
        QVERIFY(after < before || (before <= started && started <= after));
        timings.setTargetTime(QTime(0, 0));
        QCOMPARE(timings.dispatchTimeDiff(), diff);  // kept for good
    }

    void stampsRenderLocalTime() {
        // At most so many characters, with a terminator where there is room for it.
        const QByteArray text = reference({base, 123'456});
        const std::tuple<long long, int, int, QByteArray> rows[] = {
            {0, 18, 0, ""},       {base, 0, -1, ""},           {base, 14, -1, text.left(14)},
            {base, 15, 15, text}, {base, 16, 15, text + '\0'}, {1LL << 62, 18, -1, ""}};
        for (const auto& [seconds, size, result, written] : rows) {
            QByteArray buffer(18, '#');
            const Timestamp stamp(ptimeval{seconds, 123'456});
            QCOMPARE(stamp.toDefaultString(buffer.data(), size), result);
            QCOMPARE(buffer, written + QByteArray(18 - written.size(), '#'));
        }
    }

    void cacheHoldsLastSecond() {
        rendered({base + 7, 1});
        QCOMPARE(Timestamp::last_secs_, int(base + 7));
        QCOMPARE(QByteArray(Timestamp::last_buf), reference({base + 7, 0}).left(9) + "%06u");
        qstrcpy(Timestamp::last_buf, "cached %06u");
        // The low 32 bits decide: a second that shares them takes the text that is there.
        QCOMPARE(rendered({base + 7 + (1LL << 32), 12}), "cached 000012");
        QCOMPARE(rendered({base - 40'000'000, 12}), reference({base - 40'000'000, 12}));
    }

    // Stamp and elapsed time together are the time of the reading.
    void elapsedTimes() {
        const qint64 seconds = QDateTime::currentSecsSinceEpoch() - 3600;
        Timestamp stamp(ptimeval{seconds, 999'999});
        const qint64 from = QDateTime::currentMSecsSinceEpoch();
        const qint64 sums[] = {(seconds + stamp.elapsedSecs()) * 1000 + 999,
                               seconds * 1000 + 999 + stamp.elapsedMilliSecs(),
                               (seconds * 1'000'000 + 999'999 + stamp.elapsedMicroSecs()) / 1000};
        const qint64 to = QDateTime::currentMSecsSinceEpoch();
        QVERIFY(sums[0] >= from && sums[0] <= to + 999);
        QVERIFY(sums[1] >= from && sums[1] <= to && sums[2] >= from && sums[2] <= to);
        stamp.restart();
        QVERIFY(stamp.elapsedSecs() <= 60 && Timestamp::currentTimeStamp().elapsedSecs() <= 60);
        QCOMPARE(Timestamp(false).elapsedMilliSecs(), 0);
    }

    // Every text must be right while others render other seconds; TSan watches the cache.
    void manyThreads() {
        std::atomic<int> wrong = 0;
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t, &wrong] {
                QList<QByteArray> expected;
                for (int second = 0; second < 3; ++second)
                    expected.append(reference({base + 60 * t + second, t}));
                for (int i = 0; i < 60'000; ++i)
                    wrong += rendered({base + 60 * t + i / 7 % 3, t}) != expected[i / 7 % 3];
            });
        }
        threads.clear();
        QCOMPARE(wrong.load(), 0);
    }
};

QTEST_APPLESS_MAIN(TestClocks)
#include "tst_clocks.moc"
