#include <pylon/time/elapsedtimer.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/renderingtimings.h>
#include <pylon/time/timer.h>
#include <pylon/time/timingswitches.h>

#include <QtTest/QtTest>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

using namespace pylon;

using Start = std::function<void()>;
using ReadNSecs = std::function<double()>;
using NanoSplit = long long (*)(const NanoElapsedTimer&, int&);

namespace {

constexpr long long notStarted = 1'000'000;  // resolution()

long long wrappingProduct(long long value, int factor) {
    return static_cast<long long>(static_cast<quint64>(value) * static_cast<quint64>(factor));
}

struct SharedTimings {
    RenderingTimings original;
    RenderingTimings copy{original};
    void start() { original.start(); }
};

template <typename T, typename Read>
void addReading(const char* tag, double unitNSecs, Read read) {
    const auto timer = std::make_shared<T>();
    QTest::newRow(tag) << Start([=] { timer->start(); })
                       << ReadNSecs([=] { return static_cast<double>(read(*timer)) * unitNSecs; })
                       << (std::is_integral_v<decltype(read(*timer))> ? unitNSecs : 1'000.0);
}

}  // namespace

class TestTimers : public QObject {
    Q_OBJECT

private slots:
    void readings_data();
    void readings();
    void nanoUnstarted_data();
    void nanoUnstarted();
    void nanoCopies();
    void elapsedTimer();
    void timer();
    void timePoints();
    void dispatchTimeDiff();
    void switches();
};

void TestTimers::readings_data() {
    QTest::addColumn<Start>("start");
    QTest::addColumn<ReadNSecs>("readNSecs");
    QTest::addColumn<double>("slack");

    using Nano = NanoElapsedTimer;
    addReading<Nano>("nano ms", 1e6, [](Nano& t) { return t.elapsedMSecs(); });
    addReading<Nano>("nano", 1e6, [](Nano& t) { return t.elapsed(); });
    addReading<Nano>("nano us", 1e3, [](Nano& t) { return t.elapsedUSecs(); });
    addReading<Nano>("nano ns", 1, [](Nano& t) { return t.elapsedNSecs(); });
    addReading<ElapsedTimer>("elapsed", 1e6, [](ElapsedTimer& t) { return t.elapsed(); });
    addReading<ElapsedTimer>("elapsed ns", 1, [](ElapsedTimer& t) { return t.nsecsElapsed(); });
    addReading<ElapsedTimer>("restart", 1e6, [](ElapsedTimer& t) { return t.restart(); });
    addReading<Timer>("us", 1e3, [](Timer& t) { return t.getElapsedTimeInMicroSec(); });
    addReading<Timer>("ms", 1e6, [](Timer& t) { return t.getElapsedTimeInMilliSec(); });
    addReading<Timer>("seconds", 1e9, [](Timer& t) { return t.getElapsedTimeInSec(); });
    addReading<Timer>("timer", 1e9, [](Timer& t) { return t.getElapsedTime(); });
    addReading<Timer>("stopped", 1e6, [](Timer& t) {
        t.stop();
        return t.getElapsedTimeInMilliSec();
    });
    addReading<RenderingTimings>("point 4", 1e3, [](RenderingTimings& t) {
        t.setTime(TimePoint4);
        return t.time(TimePoint4);
    });
    addReading<SharedTimings>("point 5 of a copy", 1e3, [](SharedTimings& t) {
        t.copy.setTime(TimePoint5);
        return t.copy.time(TimePoint5);
    });
}

// The time read must lie between the readings of two reference timers around it.
void TestTimers::readings() {
    QFETCH(Start, start);
    QFETCH(ReadNSecs, readNSecs);
    QFETCH(double, slack);
    QElapsedTimer outer;
    QElapsedTimer inner;
    outer.start();
    start();
    inner.start();
    while (inner.nsecsElapsed() < 2'000'000) {
    }
    const auto least = static_cast<double>(inner.nsecsElapsed()) - slack;
    const double nsecs = readNSecs();
    const auto most = static_cast<double>(outer.nsecsElapsed()) + slack;
    QVERIFY2(nsecs >= least && nsecs <= most,
             qPrintable(QStringLiteral("%1 <= %2 <= %3").arg(least).arg(nsecs).arg(most)));
}

void TestTimers::nanoUnstarted_data() {
    QTest::addColumn<NanoSplit>("read");
    QTest::addColumn<bool>("alsoStarted");
    QTest::addColumn<int>("factor");
    QTest::addColumn<int>("divisor");
    QTest::addColumn<int>("restPerMSec");

    using T = const NanoElapsedTimer&;
    const struct {
        const char* tag;
        NanoSplit read;
        bool alsoStarted;
        int factor;
        int divisor;
        int restPerMSec;
    } rows[] = {
        {"ms", [](T t, int& n) { return n = 0, t.elapsedMSecs(); }, false, 1, 1, 0},
        {"us", [](T t, int& n) { return n = 0, t.elapsedUSecs(); }, false, 1'000, 1, 0},
        {"ns", [](T t, int& n) { return n = 0, t.elapsedNSecs(); }, false, 1'000'000, 1, 0},
        {"ms+ns", [](T t, int& n) { return t.elapsedMSecsPlusNSecs(n); }, true, 1, 1, 0},
        {"ms+us", [](T t, int& n) { return t.elapsedMSecsPlusUSecs(n); }, true, 1, 1, 0},
        {"us+ns", [](T t, int& n) { return t.elapsedUSecsPlusNSecs(n); }, true, 1'000, 1, 0},
        {"s+ms", [](T t, int& n) { return t.elapsedSecsPlusMSecs(n); }, true, 1, 1'000, 1},
        {"s+us", [](T t, int& n) { return t.elapsedSecsPlusUSecs(n); }, true, 1, 1'000, 1'000},
        {"s+ns", [](T t, int& n) { return t.elapsedSecsPlusNSecs(n); }, true, 1, 1'000, 1'000'000},
    };
    for (const auto& row : rows)
        QTest::newRow(row.tag) << row.read << row.alsoStarted << row.factor << row.divisor
                               << row.restPerMSec;
}

void TestTimers::nanoUnstarted() {
    QFETCH(NanoSplit, read);
    QFETCH(bool, alsoStarted);
    QFETCH(int, factor);
    QFETCH(int, divisor);
    QFETCH(int, restPerMSec);
    NanoElapsedTimer timer;
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
    long long usecs = 0;
    long long nsecs = 0;
    const long long msecs = timer.elapsed(usecs, nsecs);
    QCOMPARE(usecs, wrappingProduct(msecs, 1'000));
    QCOMPARE(nsecs, wrappingProduct(msecs, 1'000'000));
    const long long again = timer.elapsed(usecs);
    QCOMPARE(usecs, wrappingProduct(again, 1'000));
}

void TestTimers::nanoCopies() {
    NanoElapsedTimer timer;
    QCOMPARE(timer.resolution(), notStarted);
    timer.start();
    NanoElapsedTimer older(timer);
    while (timer.elapsedUSecs() < 100) {
    }
    timer.start();  // leaves the copy alone
    QVERIFY(older.elapsedUSecs() >= 100);
    older = timer;
    QVERIFY(older.elapsedNSecs() <= timer.elapsedNSecs());

    NanoElapsedTimer moved(std::move(older));
    QVERIFY(moved.resolution() < notStarted);
    QCOMPARE(older.resolution(), notStarted);
    moved = older;  // from an empty state
    QCOMPARE(moved.resolution(), notStarted);
    moved = timer;  // into an empty state
    QVERIFY(moved.elapsedNSecs() <= timer.elapsedNSecs());
    older.start();
    QVERIFY(older.resolution() < notStarted);
}

void TestTimers::elapsedTimer() {
    ElapsedTimer timer;
    QVERIFY(!timer.isValid());
    timer.start();
    const ElapsedTimer copy(timer);
    while (copy.nsecsElapsed() < 100'000) {
    }
    timer.restart();
    const qint64 restarted = timer.nsecsElapsed();
    QVERIFY(copy.nsecsElapsed() - restarted >= 100'000);
    timer.invalidate();
    QVERIFY(!timer.isValid());
    QVERIFY(copy.isValid());
}

void TestTimers::timer() {
    Timer timer;
    timer.start();
    QCOMPARE(timer.startTime(), 0.0);
    const double running = timer.getElapsedTimeInMicroSec();
    QVERIFY(timer.startTime() > 0.0);
    while (timer.getElapsedTimeInMicroSec() <= running) {
    }
    timer.stop();
    const double stopped = timer.getElapsedTimeInMicroSec();
    QVERIFY(stopped > running);
    QCOMPARE(timer.getElapsedTimeInMicroSec(), stopped);
    timer.start();  // runs again
    const double restarted = timer.getElapsedTimeInMicroSec();
    while (timer.getElapsedTimeInMicroSec() <= restarted) {
    }
}

void TestTimers::timePoints() {
    RenderingTimings timings;
    QVERIFY(!timings.isValid());
    RenderingTimings moved(std::move(timings));
    timings.start();  // the timer is still there
    QVERIFY(timings.isValid());
    timings.setTime(TimePoint4);
    QVERIFY(timings.time(TimePoint4) > 0.0);
    QCOMPARE(timings.time(TimePoint5), 0.0);
    const double time4 = timings.time(TimePoint4);
    for (const int other : {0, 3, 6, -1}) {
        timings.setTime(TimePoint(other));
        QCOMPARE(timings.time(TimePoint(other)), 0.0);
    }
    QCOMPARE(timings.time(TimePoint4), time4);
    QCOMPARE(timings.time(TimePoint5), 0.0);
}

void TestTimers::dispatchTimeDiff() {
    const QTime target = QTime::currentTime().addSecs(-3600);
    RenderingTimings timings;
    QTime before;
    QTime after;
    do {  // once more if midnight falls in between
        before = QTime::currentTime();
        timings.start();
        after = QTime::currentTime();
    } while (after < before);
    QCOMPARE(timings.dispatchTimeDiff(), 0);  // no target
    timings.setTargetTime(target);
    const int diff = timings.dispatchTimeDiff();
    QVERIFY(target.msecsTo(before) <= diff && diff <= target.msecsTo(after));

    timings.setTargetTime(target.addSecs(1800));
    timings.start();
    QCOMPARE(timings.dispatchTimeDiff(), diff);

    RenderingTimings early;
    early.setTargetTime(QTime(23, 59, 59, 999));
    QCOMPARE(early.dispatchTimeDiff(), 0);  // not started
    early.start();
    QVERIFY(early.dispatchTimeDiff() <= 0);
}

void TestTimers::switches() {
    QVERIFY(!RENDER_TIMING_ENABLED && !STREAM_TIMING_ENABLED);
    RENDER_TIMING_ENABLED = true;
    QVERIFY(!STREAM_TIMING_ENABLED);
}

QTEST_APPLESS_MAIN(TestTimers)
#include "tst_timers.moc"
