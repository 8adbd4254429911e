#include <pylon/time/timeconversion.h>
#include <pylon/time/timezone.h>

#include <QtCore/QLocale>
#include <QtTest/QtTest>

#include <climits>

using namespace pylon;

class TestTimeConversion : public QObject {
    Q_OBJECT

private slots:
    void ticks() {
        const struct {
            qint64 time300;
            qint64 msecs;
            qint64 back;  // the milliseconds in time300 again
        } rows[] = {{0, 0, 0},           {1, 3, 0},
                    {2, 6, 1},           {3, 10, 3},
                    {-1, -3, 0},         {-2, -6, -1},
                    {-4, -13, -3},       {302, 1006, 301},
                    {-599, -1996, -598}, {0xFFFF'FFFF'FFFF, 938'249'922'368'850, 0xFFFF'FFFF'FFFF}};
        const QTimeZone zone(5 * 3600 + 1800);
        for (const auto& [time300, msecs, back] : rows) {
            const QDateTime utc = time300ToDateTimeUTC(time300);
            const QDateTime zoned = time300ToDateTime(time300, zone);
            QCOMPARE(qint64{toMSecs(time300)}, msecs);
            QCOMPARE(utc.toMSecsSinceEpoch(), msecs);
            QCOMPARE(utc.timeZone(), QTimeZone::utc());
            QCOMPARE(zoned, utc);
            QCOMPARE(zoned.timeZone(), zone);
            QCOMPARE(qint64{dateTimeToTime300(zoned)}, back);
        }
    }

    // The largest tick count whose milliseconds fit 64 bits, and counts beyond, which wrap.
    void extremes() {
        QCOMPARE(toMSecs(LLONG_MAX / 10 * 3 + 2), LLONG_MAX - 1);
        QCOMPARE(toMSecs(LLONG_MAX), static_cast<long long>(3ULL * LLONG_MAX + LLONG_MAX / 3));
        QCOMPARE(toMSecs(LLONG_MIN), static_cast<long long>(3ULL * LLONG_MIN + LLONG_MIN / 3));
    }

    void localText() {
        const QString format("yyyy-MM-dd HH:mm:ss.zzz t");
        const QString local = QDateTime::fromMSecsSinceEpoch(-1003).toString(format);
        QCOMPARE(toString(-301, format, false), local);
        QCOMPARE(toString(-301, format, true), local + " -301");
    }

    void zoneText() {
        TimeZone server(4, TimeZoneAbbrevation(69));
        server.setServerTimeZone(true);
        const struct {
            quint64 msecs;
            TimeZone zone;
            const char* text;
        } rows[] = {
            {1'700'000'000'000, TimeZone(5, 2), "2023-11-15 03:43 UTC"},
            {ULLONG_MAX, TimeZone(5, 2), "1970-01-01 05:29 UTC"},
            {0, TimeZone(-95, ""), "1969-12-31 00:15 UTC"},
            {0, TimeZone(95, "CET"), "1970-01-01 23:45 UTC"},  // not by name
            {0, TimeZone(96, "NST"), "1969-12-31 20:30 UTC"},
            {0, TimeZone(127, "CST"), "1970-01-01 00:00 UTC"},  // ambiguous
            {0, TimeZone(-96, "XYZ"), "1970-01-01 00:00 UTC"},
            {0, TimeZone(127, TimeZoneAbbrevation(21)), "1970-01-01 00:00 UTC"},
            {0, server, "1970-01-01 01:00 UTC"},
        };
        for (const auto& [msecs, zone, text] : rows)
            QCOMPARE(msecsToString(msecs, "yyyy-MM-dd HH:mm t", zone), text);
    }

    void formats() {
        const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
        QLocale::setDefault(QLocale("de_DE"));
        QCOMPARE(dateFormat(), "dd.MM.yy");
        QCOMPARE(dateTimeFormat(), "dd.MM.yy HH:mm:ss");
        QCOMPARE(dateTimeFormatWithMs(), "dd.MM.yy HH:mm:ss.zzz");
        QCOMPARE(arabicDateFormat(), "yyyy/MM/dd");
        QCOMPARE(arabicDateTimeFormat(), "ss:mm:HH yyyy/MM/dd");
        QCOMPARE(arabicDateTimeFormatWithMs(), "zzz.ss:mm:HH yyyy/MM/dd");
    }
};

QTEST_APPLESS_MAIN(TestTimeConversion)
#include "tst_timeconversion.moc"
