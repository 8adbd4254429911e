#include <pylon/time/elapsedtimer.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/renderingtimings.h>
#include <pylon/time/timer.h>
#include <pylon/time/timingswitches.h>

#include <QtTest/QtTest>

#include <utility>

using namespace pylon;

class TestTimers : public QObject {
    Q_OBJECT

private slots:
    // Each time read must lie between the readings of two reference timers around it, give or
    // take a millisecond that is not whole.
    void readings() {
        NanoElapsedTimer nano;
        ElapsedTimer elapsed;
        Timer timer;
        RenderingTimings timings;
        RenderingTimings copy(timings);
        QElapsedTimer outer;
        QElapsedTimer inner;
        outer.start();
        nano.start();
        elapsed.start();
        timer.start();
        timings.start();
        inner.start();
        while (inner.elapsed() < 3) {
        }
        const auto least = static_cast<double>(inner.elapsed()) - 1;
        timings.setTime(TimePoint4);
        copy.setTime(TimePoint5);
        timer.stop();
        const struct {
            const char* name;
            double msecs;
        } readings[] = {
            {"nano ms", double(nano.elapsed())},
            {"nano us", double(nano.elapsedUSecs()) / 1e3},
            {"nano ns", double(nano.elapsedNSecs()) / 1e6},
            {"elapsed ns", double(elapsed.nsecsElapsed()) / 1e6},
            {"restart", double(elapsed.restart())},
            {"us", timer.getElapsedTimeInMicroSec() / 1e3},
            {"ms", timer.getElapsedTimeInMilliSec()},
            {"seconds", timer.getElapsedTime() * 1e3},
            {"point 4", timings.time(TimePoint4) / 1e3},
            {"point 5 of a copy", copy.time(TimePoint5) / 1e3},
        };
        const auto most = static_cast<double>(outer.elapsed()) + 1;
        for (const auto& [name, msecs] : readings)
            QVERIFY2(msecs >= least && msecs <= most, name);
        const qint64 restarted = elapsed.nsecsElapsed();
        QVERIFY(outer.nsecsElapsed() - restarted >= 3'000'000);
        elapsed.invalidate();
        QVERIFY(!elapsed.isValid());
    }

    // What an unstarted QElapsedTimer reports; functions with an output argument never see start().
    void unstartedReadings() {
        const NanoElapsedTimer unstarted;
        NanoElapsedTimer started;
        started.start();
        for (const NanoElapsedTimer& t : {unstarted, started}) {
            long long msecs;
            long long usecs;
            long long nsecs;
            QList<int> rest(6, 1);
            QList<long long> whole;
            do {  // until no millisecond ended in between
                msecs = QElapsedTimer().elapsed();
                whole = {t.elapsed(usecs, nsecs),          t.elapsedMSecsPlusNSecs(rest[0]),
                         t.elapsedMSecsPlusUSecs(rest[1]), t.elapsedUSecsPlusNSecs(rest[2]),
                         t.elapsedSecsPlusMSecs(rest[3]),  t.elapsedSecsPlusUSecs(rest[4]),
                         t.elapsedSecsPlusNSecs(rest[5]),  unstarted.elapsedMSecs(),
                         unstarted.elapsedUSecs(),         unstarted.elapsedNSecs()};
            } while (QElapsedTimer().elapsed() != msecs);
            const auto times = [msecs](quint64 factor) {  // wraps
                return static_cast<long long>(static_cast<quint64>(msecs) * factor);
            };
            const long long inUSecs = times(1'000);
            const long long inNSecs = times(1'000'000);
            const long long secs = msecs / 1'000;
            const int left = static_cast<int>(msecs % 1'000);
            QCOMPARE(whole, QList<long long>({msecs, msecs, msecs, inUSecs, secs, secs, secs, msecs,
                                              inUSecs, inNSecs}));
            QCOMPARE(rest, QList<int>({0, 0, 0, left, left * 1'000, left * 1'000'000}));
            QVERIFY(usecs == inUSecs && nsecs == inNSecs);
        }
    }

    void nanoCopies() {
        NanoElapsedTimer timer;
        QCOMPARE(timer.resolution(), 1'000'000);
        timer.start();
        NanoElapsedTimer copy(timer);
        while (timer.elapsedUSecs() < 100) {
        }
        timer.start();  // leaves the copy alone
        QVERIFY(copy.elapsedUSecs() >= 100);
        copy = timer;
        QVERIFY(copy.elapsedNSecs() <= timer.elapsedNSecs());

        const NanoElapsedTimer moved(std::move(copy));
        QVERIFY(moved.resolution() < 1'000'000);
        timer = copy;  // from an empty state
        QCOMPARE(timer.resolution(), 1'000'000);
        timer = moved;  // into an empty state
        QVERIFY(timer.elapsedNSecs() <= moved.elapsedNSecs());
    }

    void startAndStop() {
        Timer timer;
        timer.start();
        QCOMPARE(timer.startTime(), 0.0);  // before the first reading
        timer.stop();
        const double stopped = timer.getElapsedTimeInMicroSec();
        QVERIFY(timer.startTime() > 0.0);
        QCOMPARE(timer.getElapsedTimeInMicroSec(), stopped);
        timer.start();  // runs again
        const double running = timer.getElapsedTimeInMicroSec();
        while (timer.getElapsedTimeInMicroSec() <= running) {
        }
    }

    void renderingTimings() {
        constexpr int day = 86'400'000;
        const QTime before = QTime::currentTime();
        const auto sinceBefore = [&](QTime time) { return (before.msecsTo(time) + day) % day; };
        RenderingTimings late;
        QVERIFY(!late.isValid());
        const RenderingTimings moved(std::move(late));
        late.start();  // the timer is still there
        QVERIFY(late.isValid());
        QCOMPARE(late.dispatchTimeDiff(), 0);  // no target
        RenderingTimings early(late);
        late.setTargetTime(QTime(0, 0));
        early.setTargetTime(QTime(23, 59, 59, 999));
        const int diff = late.dispatchTimeDiff();
        QVERIFY(sinceBefore(QTime(0, 0).addMSecs(diff)) <= sinceBefore(QTime::currentTime()));
        QCOMPARE(early.dispatchTimeDiff(), diff - (day - 1));
        late.setTargetTime(QTime(12, 0));
        late.start();
        QCOMPARE(late.dispatchTimeDiff(), diff);  // kept for good

        late.setTime(TimePoint5);
        const double time5 = late.time(TimePoint5);
        for (const int other : {0, 3, 6, -1}) {
            late.setTime(TimePoint(other));
            QCOMPARE(late.time(TimePoint(other)), 0.0);
        }
        QVERIFY(late.time(TimePoint4) == 0.0 && late.time(TimePoint5) == time5);
    }

    void switchesAreOff() { QVERIFY(!RENDER_TIMING_ENABLED && !STREAM_TIMING_ENABLED); }
};

QTEST_APPLESS_MAIN(TestTimers)
#include "tst_timers.moc"
