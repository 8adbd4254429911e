#include <pylon/time/timezone.h>

#include <QtTest/QtTest>

#include <climits>
#include <string>
#include <type_traits>
#include <utility>

using namespace pylon;

static_assert(std::is_trivially_copyable_v<TimeZoneAbbrevation>);
static_assert(sizeof(TimeZoneAbbrevation) == 1);

namespace {

// Offset, abbreviation index, name, server mark.
QString describe(const TimeZone& zone) {
    return QString::asprintf("%d %d %s %s", zone.offset(), zone.abbrevation().index(),
                             zone.name().c_str(), zone.isServerTimeZone() ? "server" : "")
        .simplified();
}

}  // namespace

class TestTimeZone : public QObject {
    Q_OBJECT

private slots:
    void abbrevationList() {
        QByteArray texts;
        for (int index = 0; index <= UCHAR_MAX; ++index) {
            const auto byte = static_cast<unsigned char>(index);
            TimeZoneAbbrevation abbrevation;
            abbrevation.setFromIndex(byte);
            QCOMPARE(int{abbrevation.index()}, index <= 111 ? index : 0);
            QCOMPARE(abbrevation, TimeZoneAbbrevation(index));
            QCOMPARE(TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(byte), abbrevation.c_str());
            if (index <= 111)
                texts += abbrevation.to_string() + '\n';
        }
        // Digest of all texts: servers send the index, so the list is fixed.
        QCOMPARE(QCryptographicHash::hash(texts, QCryptographicHash::Sha1).toHex(),
                 "009e06eb65e52a2334d6185594bc284abe93487a");
        for (const long long outside : {256LL + 21, -1LL, LLONG_MAX})
            QCOMPARE(TimeZoneAbbrevation(outside), TimeZoneAbbrevation());
        const int& exported = TimeZoneAbbrevation::max_index;
        QCOMPARE(exported, 111);
    }

    void abbrevationText() {
        const std::pair<const char*, int> rows[] = {
            {"GMT", 1}, {"CET", 21}, {"WST", 111}, {"CST", 29}, {"ST", 105}, {"", 0},
            {"UTC", 0}, {"cet", 0},  {"CE", 0},    {"CET ", 0}, {nullptr, 0}};
        const auto check = [](const auto& text, int index) {
            QCOMPARE(int{TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(text)}, index);
            QCOMPARE(int{TimeZoneAbbrevation(text).index()}, index);
            TimeZoneAbbrevation abbrevation(7);
            QCOMPARE(abbrevation.trySetFromString(text), index != 0);
            QCOMPARE(int{abbrevation.index()}, index);
        };
        for (const auto& [text, index] : rows) {
            check(text, index);
            check(std::string(text ? text : ""), index);
        }
    }

    void overloads_data() {
        QTest::addColumn<TimeZone>("zone");
        QTest::addColumn<QString>("description");

        const signed char small = 5;
        const std::string text = "CET";
        const char* const null = nullptr;
        QTest::newRow("default") << TimeZone() << "0 0 UTC";
        QTest::newRow("server") << TimeZone(ServerTimeZone()) << "0 0 server";
        QTest::newRow("literal") << TimeZone(127, "CET") << "127 0 CET";
        QTest::newRow("0, literal") << TimeZone(0, "CET") << "0 0 CET";
        QTest::newRow("pointer") << TimeZone(small, text.c_str()) << "5 0 CET";
        QTest::newRow("0, string") << TimeZone(0, text) << "0 0 CET";
        QTest::newRow("null pointer") << TimeZone(small, null) << "5 0";
        QTest::newRow("nullptr") << TimeZone(small, nullptr) << "5 0";
        QTest::newRow("abbreviation") << TimeZone(-128, TimeZoneAbbrevation(21)) << "-128 21";
        QTest::newRow("quarters") << TimeZone(5, 2) << "22 0";
        QTest::newRow("small quarters") << TimeZone(small, small) << "25 0";
        QTest::newRow("literal 0") << TimeZone(5, 0) << "20 0";
        QTest::newRow("long 0") << TimeZone(5, 0L) << "20 0";
        QTest::newRow("names") << TimeZone("CET", "Central European S") << "8 0 CET";
        QTest::newRow("strings") << TimeZone(text, std::string("Newfoundland D")) << "-10 0 CET";
        QTest::newRow("ambiguous name") << TimeZone("CET", "Central") << "0 0";
    }

    void overloads() {
        QFETCH(TimeZone, zone);
        QTEST(describe(zone), "description");
    }

    void hoursAndQuarters() {
        const struct {
            signed char hours;
            int quarters;
            signed char offset;
            bool valid;
        } rows[] = {{5, 2, 22, true},        {-3, 2, -14, true},   {0, 2, -2, true},
                    {0, -2, 2, true},        {23, 3, 95, true},    {-23, 3, -95, true},
                    {23, 4, 96, false},      {-23, 4, -96, false}, {24, 0, 127, false},
                    {-24, 1, 127, false},    {1, 300, 48, true},   {1, INT_MAX, 3, true},
                    {-1, INT_MAX, -3, true}, {0, INT_MIN, 0, true}};
        for (const auto& [hours, quarters, offset, valid] : rows) {
            TimeZone zone(hours, quarters);
            QCOMPARE(zone.offset(), offset);
            QCOMPARE(zone.isValidOffset(), valid);
            QCOMPARE(zone.isValid(), valid);
            zone.setServerTimeZone(true);
            QVERIFY(zone.isValid());
            zone.setOffset(hours, quarters);
            QVERIFY(!zone.isServerTimeZone());
            QCOMPARE(zone.offset(), offset == 127 ? 0 : offset);
            QVERIFY(TimeZone(offset, "X").isValid());
        }
    }

    void setName() {
        const struct {
            TimeZone zone;
            const char* abbrevation;
            const char* fullName;
            const char* description;
        } rows[] = {
            {TimeZone(), "CET", "", "0 0 CET server"},  // looks up the old name
            {TimeZone(9, "NST"), "XYZ", "", "-14 0 XYZ server"},
            {TimeZone(9, "CST"), "EST", "Cuba", "-20 0 EST server"},
            {TimeZone(9, TimeZoneAbbrevation(7)), "CET", "Cuba S", "-20 7 CET server"},
            {TimeZone(9, "CST"), "CET", "", nullptr},  // ambiguous
            {TimeZone(9, "XYZ"), "CET", "", nullptr},
            {TimeZone(9, "NST"), "CET", "Central", nullptr},
            {TimeZone(9, "NST"), "", "Newfoundland", nullptr},
        };
        for (const auto& [before, abbrevation, fullName, description] : rows) {
            TimeZone zone = before;
            zone.setServerTimeZone(true);
            const QString unchanged = describe(zone);
            QCOMPARE(zone.setName(abbrevation, fullName), description != nullptr);
            QCOMPARE(describe(zone), description ? description : unchanged);
        }
    }

    void moves() {
        TimeZone zone(0, TimeZoneAbbrevation(69));
        QVERIFY(zone.setName(std::string(100, 'x'), "Newfoundland D"));
        zone.setServerTimeZone(true);
        TimeZone copy(zone);
        const TimeZone moved(std::move(zone));
        QCOMPARE(moved, copy);
        TimeZone target;
        target = std::move(copy);
        QCOMPARE(target, moved);
        QVERIFY(!zone.isValidName() && !copy.isValidName());
        TimeZone& self = target;
        target = std::move(self);
        QCOMPARE(target, moved);
    }
};

QTEST_APPLESS_MAIN(TestTimeZone)
#include "tst_timezone.moc"
