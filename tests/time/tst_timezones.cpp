#include <pylon/time/timeconversion.h>
#include <pylon/time/timezone.h>
#include <pylon/time/timezones.h>
#include <QtTest/QtTest>

#include <array>
#include <climits>
#include <sstream>

using namespace pylon;

namespace {

// Offset, abbreviation index, name and server mark of each.
QString describe(std::initializer_list<TimeZone> zones) {
    QStringList texts;
    for (const TimeZone& zone : zones)
        texts += QString::asprintf("%d %d %s%s", zone.offset(), zone.abbrevation().index(),
                                   zone.name().c_str(), zone.isServerTimeZone() ? "server" : "");
    return texts.join(", ");
}

}  // namespace

class TestTimeZones : public QObject {
    Q_OBJECT

private slots:
    // A digest: servers send the index of an abbreviation, peers know each row of the catalogue,
    // and both lists are fixed, odd spellings included.
    void lists() {
        std::ostringstream lists;
        for (int index = 0; index <= UCHAR_MAX; ++index) {
            const std::string text = TimeZoneAbbrevation(index).to_string();
            TimeZoneAbbrevation set, found(7);
            set.setFromIndex(static_cast<unsigned char>(index));
            QCOMPARE(set.c_str(), text.c_str());
            QCOMPARE(found.trySetFromString(text), !text.empty());
            QCOMPARE(TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(text), found.index());
            lists << int{set.index()} << ' ' << text << ' ' << int{found.index()} << '\n';
        }
        for (auto it = TimeZones::begin(); it != TimeZones::end(); ++it)
            lists << it.key() << '\t' << int{it.index()} << '\t' << int{it.offset()} << '\t'
                  << it.fullName() << '\t' << it.continent() << '\n';
        QCOMPARE(QCryptographicHash::hash(lists.str(), QCryptographicHash::Sha1).toHex(),
                 "55a12c6d7ba3d122976b71527cd0831c1ff506cf");
        QCOMPARE(TimeZones::find("CST").fullName(), std::string("Central Standard Time"));
        for (const char* text : {"", "cet", "CE", "CET ", static_cast<const char*>(nullptr)}) {
            TimeZoneAbbrevation found(7);
            QVERIFY(!found.trySetFromString(text) && found.index() == 0);
            QVERIFY(TimeZones::find(text) == TimeZones::end());
        }
    }

    // Which constructor literals, numbers and texts choose.
    void overloads() {
        QCOMPARE(describe({{}, ServerTimeZone(), {-128, TimeZoneAbbrevation(21)}, {127, "CET"}}),
                 "0 0 UTC, 0 0 server, -128 21 , 127 0 CET");
        QCOMPARE(
            describe({{0, std::string("CET")}, {5, 0}, {5, 0L}, {"CET", "Cuba S"}, {"CET", "C"}}),
            "0 0 CET, 20 0 , 20 0 , -20 0 CET, 0 0 ");
    }

    void hoursAndQuarters() {
        const std::array<int, 3> rows[] = {
            {5, 2, 22},  {-3, 2, -14}, {0, 2, -2},    {0, -2, 2},   {23, 3, 95},    {-23, 3, -95},
            {23, 4, 96}, {24, 0, 127}, {-24, 1, 127}, {1, 300, 48}, {0, INT_MIN, 0}};
        for (const auto& [hours, quarters, offset] : rows) {
            TimeZone zone(static_cast<signed char>(hours), quarters);
            QCOMPARE(zone.offset(), offset);
            QCOMPARE(zone.isValid(), offset >= -95 && offset <= 95);
            zone.setServerTimeZone(true);
            QVERIFY(zone.isValid() && TimeZone(zone.offset(), "X").isValid());
            zone.setOffset(static_cast<signed char>(hours), quarters);
            QVERIFY(!zone.isServerTimeZone() && zone.offset() == (offset == 127 ? 0 : offset));
        }
    }

    // The catalogue is asked for the name that the zone had before.
    void setName() {
        const std::tuple<TimeZone, const char*, const char*, QString> rows[] = {
            {{}, "CET", "", "0 0 CET"},
            {{9, "CST"}, "EST", "Cuba", "-20 0 EST"},
            {{9, TimeZoneAbbrevation(7)}, "CET", "Cuba S", "-20 7 CET"},
            {{9, "CST"}, "CET", "", "9 0 CST"},  // ambiguous
            {{9, "NST"}, "", "Newfoundland", "9 0 NST"}};
        for (const auto& [before, abbrevation, fullName, description] : rows) {
            TimeZone zone = before, target;
            QCOMPARE(zone.setName(abbrevation, fullName), description != describe({before}));
            TimeZone moved(std::move(zone));
            target = std::move(moved);
            QCOMPARE(describe({target}), description);
            QVERIFY(!zone.isValidName() && !moved.isValidName());
        }
    }

    void lookUps() {
        const std::tuple<const char*, const char*, std::string> rows[] = {
            {"NST", "", "-14 Newfoundland Standard Time"},
            {"CST", "", "126 Cuba Standard Time"},
            {"", "Cuba S", "-20 Cuba Standard Time"},
            {"", "European", "127 European"}};
        for (const auto& [abbrevation, filter, result] : rows) {
            std::string fullName = filter;
            const int offset = TimeZones::timeZoneOffset(abbrevation, fullName);
            QCOMPARE(std::to_string(offset) + ' ' + fullName, result);
        }
    }

    // The flags stay set on the caller's stream, on purpose.
    void printing() {
        std::ostringstream os;
        const auto flags = os.flags();
        QVERIFY(TimeZones::list2ostream(os, "WST", "Samoa") == 0 && os.flags() == flags);
        QCOMPARE(TimeZones::list2ostream(os, "NDT", ""), 1);
        QVERIFY(os.flags() == (flags | std::ios::showpos | std::ios::left | std::ios::right));
        QCOMPARE(TimeZones::list2ostream(os, "", "West Sa"), 1);
        const QString header = " TZone     UTC+-H:MM             Time Zone Full Name Continent\n" +
                               QString(64, '-') + '\n';
        QCOMPARE(os.str().c_str(),
                 header + "   NDT     UTC -2:30      Newfoundland Daylight Time \n" + header +
                     "   WST     UTC+13:00                 West Samoa Time Pacific\n");
        TimeZones::listAll(os);
        QCOMPARE(std::ranges::count(os.str(), '\n'), 2 + 1 + 2 + 1 + 2 + 121);
    }

    void ticks() {
        const QTimeZone zone(5 * 3600 + 1800);
        const std::array<long long, 3> rows[] = {{302, 1006, 301}, {-4, -13, -3}, {6, 20, 6}};
        for (const auto& [time300, msecs, back] : rows) {
            const QDateTime utc = time300ToDateTimeUTC(time300),
                            zoned = time300ToDateTime(time300, zone);
            QVERIFY(zoned == utc && zoned.timeZone() == zone && utc.timeZone() == QTimeZone::utc());
            QCOMPARE(zoned.toMSecsSinceEpoch(), msecs);
            QCOMPARE(dateTimeToTime300(zoned), back);
        }
        // The largest tick count whose milliseconds fit 64 bits, and one beyond, which wraps.
        QCOMPARE(toMSecs(LLONG_MAX / 10 * 3 + 2), LLONG_MAX - 1);
        QCOMPARE(toMSecs(LLONG_MIN), static_cast<long long>(3ULL * LLONG_MIN + LLONG_MIN / 3));
    }

    void texts() {
        const std::tuple<quint64, TimeZone, const char*> rows[] = {
            {1'700'000'000'000, {5, 2}, "2023-11-15 03:43 UTC"},
            {0, {95, "CET"}, "1970-01-01 23:45 UTC"},  // not by name
            {0, {96, "NST"}, "1969-12-31 20:30 UTC"},
            {0, {127, "CST"}, "1970-01-01 00:00 UTC"}};  // ambiguous
        for (const auto& [msecs, zone, text] : rows)
            QCOMPARE(msecsToString(msecs, "yyyy-MM-dd HH:mm t", zone), text);
        const QString format("HH:mm:ss.zzz t");
        const QString local = QDateTime::fromMSecsSinceEpoch(-1003).toString(format);
        QCOMPARE(toString(-301, format, false) + '|' + toString(-301, format, true),
                 local + '|' + local + " -301");
        QLocale::setDefault(QLocale("de_DE"));
        QCOMPARE(
            QStringList({dateTimeFormat(), dateTimeFormatWithMs(), arabicDateTimeFormat(),
                         arabicDateTimeFormatWithMs()})
                .join('|'),
            "dd.MM.yy HH:mm:ss|dd.MM.yy HH:mm:ss.zzz|ss:mm:HH yyyy/MM/dd|zzz.ss:mm:HH yyyy/MM/dd");
    }
};

QTEST_APPLESS_MAIN(TestTimeZones)
#include "tst_timezones.moc"
