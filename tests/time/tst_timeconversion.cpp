#include <pylon/time/timeconversion.h>
#include <pylon/time/timezone.h>

#include <QtCore/QLocale>
#include <QtTest/QtTest>

#include <climits>
#include <utility>

using namespace pylon;

class TestTimeConversion : public QObject {
    Q_OBJECT

private slots:
    void ticks_data();
    void ticks();
    void extremes();
    void localText_data();
    void localText();
    void zoneText_data();
    void zoneText();
    void formats();
};

void TestTimeConversion::ticks_data() {
    QTest::addColumn<qint64>("time300");
    QTest::addColumn<qint64>("msecs");
    QTest::addColumn<qint64>("back");  // the milliseconds in time300 again

    const qint64 rows[][3] = {
        {0, 0, 0},           {1, 3, 0},
        {2, 6, 1},           {3, 10, 3},
        {-1, -3, 0},         {-2, -6, -1},
        {-3, -10, -3},       {-4, -13, -3},
        {300, 1000, 300},    {302, 1006, 301},
        {-599, -1996, -598}, {0xFFFF'FFFF'FFFF, 938'249'922'368'850, 0xFFFF'FFFF'FFFF}};
    for (const auto& row : rows)
        QTest::addRow("%lld", row[0]) << row[0] << row[1] << row[2];
}

void TestTimeConversion::ticks() {
    QFETCH(qint64, time300);
    QFETCH(qint64, msecs);
    QFETCH(qint64, back);
    QCOMPARE(qint64{toMSecs(time300)}, msecs);
    const QDateTime utc = time300ToDateTimeUTC(time300);
    QCOMPARE(utc.timeZone(), QTimeZone::utc());
    QCOMPARE(utc.toMSecsSinceEpoch(), msecs);
    QCOMPARE(qint64{dateTimeToTime300(utc)}, back);

    const QTimeZone zone(5 * 3600 + 1800);
    const QDateTime zoned = time300ToDateTime(time300, zone);
    QCOMPARE(zoned.timeZone(), zone);
    QCOMPARE(zoned, utc);
    QCOMPARE(qint64{dateTimeToTime300(zoned)}, back);
}

void TestTimeConversion::extremes() {
    // The largest tick count whose milliseconds fit 64 bits, and counts beyond, which wrap.
    const long long largest = LLONG_MAX / 10 * 3 + 2;
    QCOMPARE(toMSecs(largest), LLONG_MAX - 1);
    QCOMPARE(toMSecs(LLONG_MAX), static_cast<long long>(3ULL * LLONG_MAX + LLONG_MAX / 3));
    QCOMPARE(toMSecs(LLONG_MIN), static_cast<long long>(3ULL * LLONG_MIN + LLONG_MIN / 3));
    QVERIFY(!time300ToDateTime(300, QTimeZone()).isValid());
}

void TestTimeConversion::localText_data() {
    QTest::addColumn<qint64>("time300");
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("ticks");
    QTest::addColumn<QString>("text");

    const auto local = [](int msecs, const char* format) {
        return QDateTime::fromMSecsSinceEpoch(msecs).toString(QLatin1String(format));
    };
    QTest::newRow("plain") << qint64{300} << "ss.zzz" << false << "01.000";
    QTest::newRow("ticks") << qint64{301} << "ss.zzz" << true << "01.003 301";
    QTest::newRow("negative") << qint64{-300} << "ss" << true << "59 -300";
    QTest::newRow("no format") << qint64{7} << "" << true << " 7";
    QTest::newRow("local") << qint64{300} << "yyyy-MM-dd HH:mm:ss t" << false
                           << local(1000, "yyyy-MM-dd HH:mm:ss t");
}

void TestTimeConversion::localText() {
    QFETCH(qint64, time300);
    QFETCH(QString, format);
    QFETCH(bool, ticks);
    QTEST(toString(time300, format, ticks), "text");
}

void TestTimeConversion::zoneText_data() {
    QTest::addColumn<quint64>("msecs");
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<int>("quarters");
    QTest::addColumn<QString>("text");

    const quint64 wrapped = ULLONG_MAX;
    TimeZone server(4, TimeZoneAbbrevation(21));
    server.setServerTimeZone(true);
    const auto row = [](const char* tag, quint64 msecs, const TimeZone& zone, int quarters,
                        const char* text) {
        QTest::newRow(tag) << msecs << zone << quarters << QString::fromLatin1(text);
    };
    row("UTC", 0, TimeZone(), 0, "1970-01-01 00:00 UTC");
    row("east", 0, TimeZone(5, 2), 22, "1970-01-01 05:30 UTC");
    row("west, the day before", 0, TimeZone(-3, 2), -14, "1969-12-31 20:30 UTC");
    row("far east", 0, TimeZone(95, ""), 95, "1970-01-01 23:45 UTC");
    row("far west", 0, TimeZone(-95, ""), -95, "1969-12-31 00:15 UTC");
    row("offset before name", 0, TimeZone(8, "CET"), 8, "1970-01-01 02:00 UTC");
    row("by name", 0, TimeZone(127, "CET"), 4, "1970-01-01 01:00 UTC");
    row("by name, just outside", 0, TimeZone(96, "NST"), -14, "1969-12-31 20:30 UTC");
    row("ambiguous name", 0, TimeZone(127, "CST"), 0, "1970-01-01 00:00 UTC");
    row("unknown name", 0, TimeZone(-96, "XYZ"), 0, "1970-01-01 00:00 UTC");
    row("not by abbreviation", 0, TimeZone(127, TimeZoneAbbrevation(21)), 0,
        "1970-01-01 00:00 UTC");
    row("server mark ignored", 0, server, 4, "1970-01-01 01:00 UTC");
    row("largest", wrapped, TimeZone(), 0, "1969-12-31 23:59 UTC");
    row("largest, east", wrapped, TimeZone(5, 2), 22, "1970-01-01 05:29 UTC");
    row("recent", 1'700'000'000'000, TimeZone(1, 0), 4, "2023-11-14 23:13 UTC");
}

void TestTimeConversion::zoneText() {
    QFETCH(quint64, msecs);
    QFETCH(TimeZone, zone);
    QTEST(int{renderingOffset(zone)}, "quarters");
    QTEST(msecsToString(msecs, "yyyy-MM-dd HH:mm t", zone), "text");
}

void TestTimeConversion::formats() {
    const auto restore = qScopeGuard([before = QLocale()] { QLocale::setDefault(before); });
    for (const auto& [locale, date] :
         {std::pair("de_DE", "dd.MM.yy"), std::pair("en_US", "M/d/yy")}) {
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(dateFormat(), date);
        QCOMPARE(dateTimeFormat(), date + QStringLiteral(" HH:mm:ss"));
        QCOMPARE(dateTimeFormatWithMs(), date + QStringLiteral(" HH:mm:ss.zzz"));
    }
    QCOMPARE(arabicDateFormat(), "yyyy/MM/dd");
    QCOMPARE(arabicDateTimeFormat(), "ss:mm:HH yyyy/MM/dd");
    QCOMPARE(arabicDateTimeFormatWithMs(), "zzz.ss:mm:HH yyyy/MM/dd");
}

QTEST_APPLESS_MAIN(TestTimeConversion)
#include "tst_timeconversion.moc"
