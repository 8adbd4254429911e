#include <pylon/log/logitem.h>
#include <pylon/time/elapsedtimer.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/renderingtimings.h>
#include <pylon/time/timer.h>
#include <pylon/time/timestamp.h>
#include <pylon/time/timingswitches.h>
#include <QtCore/QDateTime>
#include <QtTest/QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace pylon;

namespace {

constexpr long long base = 1794726000;

QByteArray reference(const ptimeval& moment) {
    const QTime time = QDateTime::fromSecsSinceEpoch(moment.tv_sec).time();
    return QString::asprintf("%s.%06u", qPrintable(time.toString("HH:mm:ss")),
                             unsigned(moment.tv_usec))
        .toLatin1();
}

QByteArray rendered(const ptimeval& moment) {
    char text[64];
    return QByteArray(text, qMax(Timestamp(moment).toDefaultString(text, sizeof text), 0));
}

}  // namespace

class TestClocks : public QObject {
    Q_OBJECT

private slots:
    // Each time read must lie between the readings of two reference timers around it, give or
    // take a millisecond that is not whole.
    void readings() {
        QElapsedTimer outer, inner;
        NanoElapsedTimer nano, moved;
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
        const auto least = double(inner.elapsed()) - 1;
        timings.setTime(TimePoint4);
        copy.setTime(TimePoint5);
        timer.stop();
        const NanoElapsedTimer nanoCopy(nano);
        moved.start();
        moved = nanoCopy;
        moved = NanoElapsedTimer(std::move(nano));
        const double msecs[] = {double(moved.elapsed()),
                                double(moved.elapsedUSecs()) / 1e3,
                                double(nanoCopy.elapsedNSecs()) / 1e6,
                                double(elapsed.nsecsElapsed()) / 1e6,
                                double(elapsed.restart()),
                                timer.getElapsedTimeInMicroSec() / 1e3,
                                timer.getElapsedTimeInMilliSec(),
                                timer.getElapsedTime() * 1e3,
                                timings.time(TimePoint4) / 1e3,
                                copy.time(TimePoint5) / 1e3};
        const auto most = double(outer.elapsed()) + 1;
        for (const double& reading : msecs)
            QVERIFY2(reading >= least && reading <= most, QByteArray::number(&reading - msecs));
        QVERIFY(outer.nsecsElapsed() - elapsed.nsecsElapsed() >= 3'000'000);  // started again
        QVERIFY(timer.getElapsedTimeInMilliSec() == msecs[6] && copy.time(TimePoint(3)) == 0);
        timer.start();
        QVERIFY(timer.getElapsedTimeInMicroSec() >= 0);  // no longer stopped
        elapsed.invalidate();
        QVERIFY(!elapsed.isValid());
        QVERIFY(!RENDER_TIMING_ENABLED && !STREAM_TIMING_ENABLED);
    }

    // Functions with an output argument report an unstarted QElapsedTimer, whatever start() did.
    void unstartedReadings() {
        using Nano = NanoElapsedTimer;
        const auto isThat = [](long long msecs) {
            return qAbs(msecs - QElapsedTimer().elapsed()) < 60'000;
        };
        Nano timer;
        timer.start();
        int rest = 1, unit = 1;
        for (const auto read : {&Nano::elapsedSecsPlusMSecs, &Nano::elapsedSecsPlusUSecs,
                                &Nano::elapsedSecsPlusNSecs}) {
            QVERIFY(isThat((timer.*read)(rest)*1000 + rest / unit) && rest % unit == 0);
            unit *= 1000;
        }
        QVERIFY(isThat(timer.elapsedMSecsPlusUSecs(rest)) && rest == 0);
        QVERIFY(isThat(timer.elapsedUSecsPlusNSecs(rest = 1) / 1000) && rest == 0);
        long long usecs, nsecs;
        QVERIFY(isThat(timer.elapsed(usecs, nsecs)) && isThat(usecs / 1000) && nsecs % 1000 == 0);
        timer = Nano();
        QVERIFY(timer.resolution() == 1'000'000 && isThat(timer.elapsedMSecs()));
    }

    void dispatchTimes() {
        RenderingTimings timings;
        const RenderingTimings moved(std::move(timings));
        QVERIFY(!timings.isValid());
        const QTime before = QTime::currentTime();
        timings.start();                                                // the timer is still there
        QVERIFY(timings.isValid() && timings.dispatchTimeDiff() == 0);  // no target
        timings.setTargetTime(QTime(12, 0));
        const int diff = timings.dispatchTimeDiff();
        const QTime started = QTime(12, 0).addMSecs(diff), after = QTime::currentTime();
        QVERIFY((before <= started && started <= after) || after < before);
        timings.setTargetTime(QTime(0, 0));
        QCOMPARE(timings.dispatchTimeDiff(), diff);  // kept for good
        timings.setTime(TimePoint(3));
        QVERIFY(timings.time(TimePoint4) + timings.time(TimePoint5) == 0);
    }

    void stampsRenderLocalTime() {
        for (const ptimeval moment : {ptimeval{base, 42}, ptimeval{base, -1},
                                      ptimeval{base - 40'000'000, 500'000}, ptimeval{1, 1}})
            QCOMPARE(rendered(moment), reference(moment));
        // At most so many characters, with a terminator where there is room for it.
        const QByteArray text = reference({base, 123'456});
        const std::tuple<int, int, QByteArray> rows[] = {
            {0, -1, ""}, {14, -1, text.left(14)}, {15, 15, text}, {16, 15, text + '\0'}};
        for (const auto& [size, result, written] : rows) {
            QByteArray buffer(18, '#');
            QCOMPARE(Timestamp(ptimeval{base, 123'456}).toDefaultString(buffer.data(), size),
                     result);
            QCOMPARE(buffer, written + QByteArray(18 - written.size(), '#'));
        }
        char untouched[64] = "untouched";
        QCOMPARE(Timestamp(false).toDefaultString(untouched, 64), 0);
        QCOMPARE(untouched, "untouched");
        QCOMPARE(Timestamp(ptimeval{1LL << 62, 0}).toDefaultString(untouched, 64), -1);
        // Without an application there is no number of a thread.
        QVERIFY(plog::LogItem(plog::Info, plog::Gui, 256, "", "", "", nullptr, {}, {})
                    .toCString()
                    .contains("][T:0000]["));
    }

    void cacheHoldsLastSecond() {
        rendered({base + 7, 1});
        QCOMPARE(Timestamp::last_secs_, int(base + 7));
        QCOMPARE(QByteArray(Timestamp::last_buf), reference({base + 7, 0}).left(9) + "%06u");
        qstrcpy(Timestamp::last_buf, "cached %06u");
        // The low 32 bits decide: a second that shares them takes the text that is there.
        QCOMPARE(rendered({base + 7 + (1LL << 32), 12}), "cached 000012");
        QCOMPARE(rendered({base + 8, 12}), reference({base + 8, 12}));
    }

    void elapsedTimesFollowTheFields() {
        const Timestamp hourAgo(ptimeval{QDateTime::currentSecsSinceEpoch() - 3600, 999'999});
        const long long elapsed[] = {hourAgo.elapsedSecs() * 1'000'000,
                                     hourAgo.elapsedMilliSecs() * 1000, hourAgo.elapsedMicroSecs()};
        for (const long long usecs : elapsed)
            QVERIFY(usecs >= 3'599'000'001 && usecs < 3'700'000'000);
        Timestamp stamp(false);
        QCOMPARE(stamp.elapsedSecs() + stamp.elapsedMilliSecs() + stamp.elapsedMicroSecs(), 0);
        stamp.restart();
        QVERIFY(stamp.elapsedSecs() <= 60 && Timestamp::currentTimeStamp().elapsedSecs() <= 60);
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
