#include <pylon/time/elapsedtimer.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/renderingtimings.h>
#include <pylon/time/timer.h>
#include <pylon/time/timingswitches.h>

#include <QtTest/QtTest>

#include <functional>
#include <utility>

using namespace pylon;

namespace {

// Runs @p start between the starts of two reference timers and @p read between their readings: the
// nanoseconds read must lie between theirs, give or take one unit of @p unitNSecs.
void compareWithReference(const std::function<void()>& start, const std::function<double()>& read,
                          double unitNSecs) {
    QElapsedTimer outer;
    QElapsedTimer inner;
    outer.start();
    start();
    inner.start();
    while (inner.nsecsElapsed() < 2'000'000) {
    }
    const auto least = static_cast<double>(inner.nsecsElapsed()) - unitNSecs;
    const double nsecs = read() * unitNSecs;
    const auto most = static_cast<double>(outer.nsecsElapsed()) + unitNSecs;
    QVERIFY2(nsecs >= least && nsecs <= most,
             qPrintable(QStringLiteral("%1 <= %2 <= %3").arg(least).arg(nsecs).arg(most)));
}

long long wrappingProduct(long long value, int factor) {
    return static_cast<long long>(static_cast<quint64>(value) * static_cast<quint64>(factor));
}

}  // namespace

class TestTimers : public QObject {
    Q_OBJECT

private slots:
    void nanoElapsed_data();
    void nanoElapsed();
    void nanoUnstarted_data();
    void nanoUnstarted();
    void nanoCopies();
    void elapsedTimer();
    void timerRunning();
    void timerStopped();
    void timePoints();
    void timePointsOfCopies();
    void dispatchTimeDiff();
    void switches();
};

using NanoRead = long long (*)(const NanoElapsedTimer&);
using NanoSplit = long long (*)(const NanoElapsedTimer&, int&);

void TestTimers::nanoElapsed_data() {
    QTest::addColumn<NanoRead>("read");
    QTest::addColumn<int>("unitNSecs");

    const auto row = [](const char* tag, NanoRead read, int unitNSecs) {
        QTest::newRow(tag) << read << unitNSecs;
    };
    row(
        "ms", [](const NanoElapsedTimer& t) { return t.elapsedMSecs(); }, 1'000'000);
    row(
        "elapsed", [](const NanoElapsedTimer& t) { return t.elapsed(); }, 1'000'000);
    row(
        "us", [](const NanoElapsedTimer& t) { return t.elapsedUSecs(); }, 1'000);
    row(
        "ns", [](const NanoElapsedTimer& t) { return t.elapsedNSecs(); }, 1);
}

void TestTimers::nanoElapsed() {
    QFETCH(NanoRead, read);
    QFETCH(int, unitNSecs);
    NanoElapsedTimer timer;
    compareWithReference([&] { timer.start(); }, [&] { return static_cast<double>(read(timer)); },
                         unitNSecs);
    QVERIFY(timer.resolution() >= 1 && timer.resolution() < 1'000'000);
}

void TestTimers::nanoUnstarted_data() {
    QTest::addColumn<NanoSplit>("read");
    QTest::addColumn<bool>("alsoStarted");
    QTest::addColumn<int>("factor");
    QTest::addColumn<int>("divisor");
    QTest::addColumn<int>("restPerMSec");

    const auto row = [](const char* tag, NanoSplit read, bool alsoStarted, int factor, int divisor,
                        int restPerMSec) {
        QTest::newRow(tag) << read << alsoStarted << factor << divisor << restPerMSec;
    };
    using T = const NanoElapsedTimer&;
    using N = int&;
    row(
        "ms",
        [](T t, N n) {
            n = 0;
            return t.elapsedMSecs();
        },
        false, 1, 1, 0);
    row(
        "us",
        [](T t, N n) {
            n = 0;
            return t.elapsedUSecs();
        },
        false, 1'000, 1, 0);
    row(
        "ns",
        [](T t, N n) {
            n = 0;
            return t.elapsedNSecs();
        },
        false, 1'000'000, 1, 0);
    row(
        "ms+ns", [](T t, N n) { return t.elapsedMSecsPlusNSecs(n); }, true, 1, 1, 0);
    row(
        "ms+us", [](T t, N n) { return t.elapsedMSecsPlusUSecs(n); }, true, 1, 1, 0);
    row(
        "us+ns", [](T t, N n) { return t.elapsedUSecsPlusNSecs(n); }, true, 1'000, 1, 0);
    row(
        "s+ms", [](T t, N n) { return t.elapsedSecsPlusMSecs(n); }, true, 1, 1'000, 1);
    row(
        "s+us", [](T t, N n) { return t.elapsedSecsPlusUSecs(n); }, true, 1, 1'000, 1'000);
    row(
        "s+ns", [](T t, N n) { return t.elapsedSecsPlusNSecs(n); }, true, 1, 1'000, 1'000'000);
}

void TestTimers::nanoUnstarted() {
    QFETCH(NanoSplit, read);
    QFETCH(bool, alsoStarted);
    QFETCH(int, factor);
    QFETCH(int, divisor);
    QFETCH(int, restPerMSec);
    NanoElapsedTimer timer;
    QCOMPARE(timer.resolution(), 1'000'000);
    for (int run = 0; run < (alsoStarted ? 2 : 1); ++run, timer.start()) {
        long long msecs = 0;
        long long whole = 0;
        int rest = 1;
        do {  // until no millisecond ended in between
            msecs = QElapsedTimer().elapsed();
            whole = read(timer, rest);
        } while (QElapsedTimer().elapsed() != msecs);
        QCOMPARE(whole, wrappingProduct(msecs, factor) / divisor);
        QCOMPARE(rest, static_cast<int>(msecs % 1'000) * restPerMSec);
    }
}

void TestTimers::nanoCopies() {
    NanoElapsedTimer timer;
    NanoElapsedTimer copy;
    copy.start();
    compareWithReference(
        [&] {
            timer.start();
            copy = timer;
        },
        [&] {
            timer.start();  // leaves the copy alone
            return static_cast<double>(copy.elapsedNSecs());
        },
        1);

    NanoElapsedTimer moved(std::move(copy));
    QVERIFY(moved.resolution() < 1'000'000);
    QCOMPARE(copy.resolution(), 1'000'000);
    long long usecs = 0;
    long long nsecs = 0;
    const long long msecs = copy.elapsed(usecs, nsecs);
    QCOMPARE(usecs, wrappingProduct(msecs, 1'000));
    QCOMPARE(nsecs, wrappingProduct(msecs, 1'000'000));
    const long long again = copy.elapsed(usecs);
    QCOMPARE(usecs, wrappingProduct(again, 1'000));

    moved = copy;  // from an empty state
    QCOMPARE(moved.resolution(), 1'000'000);
    copy = timer;  // into an empty state
    QVERIFY(copy.resolution() < 1'000'000);
    const NanoElapsedTimer& self = copy;
    copy = self;
    QVERIFY(copy.elapsedNSecs() <= timer.elapsedNSecs());
    moved = std::move(copy);
    copy.start();
    QVERIFY(copy.resolution() < 1'000'000);
}

void TestTimers::elapsedTimer() {
    ElapsedTimer timer;
    QVERIFY(!timer.isValid());
    compareWithReference([&] { timer.start(); },
                         [&] { return static_cast<double>(timer.nsecsElapsed()); }, 1);
    compareWithReference([&] { timer.start(); },
                         [&] { return static_cast<double>(timer.elapsed()); }, 1'000'000);
    QVERIFY(timer.isValid());
    compareWithReference([&] { timer.restart(); },
                         [&] { return static_cast<double>(timer.restart()); }, 1'000'000);

    const ElapsedTimer copy(timer);
    timer.invalidate();
    QVERIFY(!timer.isValid());
    QVERIFY(copy.isValid());
}

void TestTimers::timerRunning() {
    Timer timer;
    QCOMPARE(timer.startTime(), 0.0);
    compareWithReference([&] { timer.start(); }, [&] { return timer.getElapsedTimeInMicroSec(); },
                         1'000);
    QVERIFY(timer.startTime() > 0.0);
    const double first = timer.getElapsedTimeInMicroSec();
    while (timer.getElapsedTimeInMicroSec() <= first) {
    }
    timer.stop();
    timer.start();  // runs again
    const double restarted = timer.getElapsedTimeInMicroSec();
    while (timer.getElapsedTimeInMicroSec() <= restarted) {
    }
}

void TestTimers::timerStopped() {
    Timer timer;
    compareWithReference([&] { timer.start(); },
                         [&] {
                             timer.stop();
                             return timer.getElapsedTimeInMicroSec();
                         },
                         1'000);
    const double micros = timer.getElapsedTimeInMicroSec();
    const Timer copy(timer);
    QCOMPARE(timer.getElapsedTimeInMicroSec(), micros);
    QCOMPARE(timer.getElapsedTimeInMilliSec(), micros * 0.001);
    QCOMPARE(timer.getElapsedTimeInSec(), micros * 0.000001);
    QCOMPARE(timer.getElapsedTime(), micros * 0.000001);
    QCOMPARE(Timer(copy).getElapsedTimeInMicroSec(), micros);
}

void TestTimers::timePoints() {
    RenderingTimings timings;
    QVERIFY(!timings.isValid());
    QCOMPARE(timings.time(TimePoint4), 0.0);
    QCOMPARE(timings.time(TimePoint5), 0.0);
    for (const TimePoint point : {TimePoint4, TimePoint5})
        compareWithReference([&] { timings.start(); },
                             [&] {
                                 timings.setTime(point);
                                 return timings.time(point);
                             },
                             1'000);
    QVERIFY(timings.isValid());

    const double time4 = timings.time(TimePoint4);
    const double time5 = timings.time(TimePoint5);
    QVERIFY(time4 != time5);
    for (const int other : {0, 3, 6, -1}) {
        timings.setTime(TimePoint(other));
        QCOMPARE(timings.time(TimePoint(other)), 0.0);
    }
    QCOMPARE(timings.time(TimePoint4), time4);
    QCOMPARE(timings.time(TimePoint5), time5);
}

void TestTimers::timePointsOfCopies() {
    RenderingTimings timings;
    RenderingTimings copy(timings);
    compareWithReference([&] { timings.start(); },
                         [&] {
                             copy.setTime(TimePoint4);
                             return copy.time(TimePoint4);
                         },
                         1'000);
    QVERIFY(!copy.isValid());
    QCOMPARE(timings.time(TimePoint4), 0.0);

    const RenderingTimings moved(std::move(timings));
    QVERIFY(moved.isValid());
    timings.start();
    timings.setTime(TimePoint5);
}

void TestTimers::dispatchTimeDiff() {
    RenderingTimings timings;
    timings.start();
    QCOMPARE(timings.dispatchTimeDiff(), 0);

    timings = RenderingTimings();
    const QTime target = QTime::currentTime().addSecs(-3600);
    timings.setTargetTime(target);
    QCOMPARE(timings.dispatchTimeDiff(), 0);
    QTime before;
    QTime after;
    do {  // once more if midnight falls in between
        before = QTime::currentTime();
        timings.start();
        after = QTime::currentTime();
    } while (after < before);
    const int diff = timings.dispatchTimeDiff();
    QVERIFY(target.msecsTo(before) <= diff && diff <= target.msecsTo(after));

    timings.setTargetTime(target.addSecs(1800));
    timings.start();
    QCOMPARE(timings.dispatchTimeDiff(), diff);

    RenderingTimings early;
    early.setTargetTime(QTime(23, 59, 59, 999));
    early.start();
    QVERIFY(early.dispatchTimeDiff() <= 0);
}

void TestTimers::switches() {
    QVERIFY(!RENDER_TIMING_ENABLED);
    QVERIFY(!STREAM_TIMING_ENABLED);
    RENDER_TIMING_ENABLED = true;
    QVERIFY(RENDER_TIMING_ENABLED && !STREAM_TIMING_ENABLED);
    RENDER_TIMING_ENABLED = false;
}

QTEST_APPLESS_MAIN(TestTimers)
#include "tst_timers.moc"
