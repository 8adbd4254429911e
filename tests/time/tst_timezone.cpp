#include <pylon/time/timezone.h>

#include <QtTest/QtTest>

#include <climits>
#include <string>
#include <type_traits>
#include <utility>

using namespace pylon;

static_assert(std::is_trivially_copyable_v<TimeZoneAbbrevation>);
static_assert(sizeof(TimeZoneAbbrevation) == 1);

class TestTimeZone : public QObject {
    Q_OBJECT

private slots:
    void abbrevationList();
    void abbrevationIndex();
    void abbrevationText_data();
    void abbrevationText();
    void constructors_data();
    void constructors();
    void validity_data();
    void validity();
    void setOffset_data();
    void setOffset();
    void setName_data();
    void setName();
    void copyAndMove();
};

void TestTimeZone::abbrevationList() {
    QByteArray texts;
    for (int index = 0; index <= TimeZoneAbbrevation::max_index; ++index) {
        const TimeZoneAbbrevation abbrevation(index);
        QCOMPARE(int{abbrevation.index()}, index);
        QCOMPARE(abbrevation.to_string(), std::string(abbrevation.c_str()));
        texts += abbrevation.c_str();
        texts += '\n';
    }
    // Digest of all texts: servers send the index, so the list is fixed.
    QCOMPARE(QCryptographicHash::hash(texts, QCryptographicHash::Sha1).toHex(),
             "009e06eb65e52a2334d6185594bc284abe93487a");
    const int& exported = TimeZoneAbbrevation::max_index;
    QCOMPARE(exported, 111);
}

void TestTimeZone::abbrevationIndex() {
    QCOMPARE(int{TimeZoneAbbrevation().index()}, 0);
    QCOMPARE(int{TimeZoneAbbrevation(0).index()}, 0);
    for (const long long outside : {112LL, 255LL, 256LL + 21, -1LL, LLONG_MAX})
        QCOMPARE(int{TimeZoneAbbrevation(outside).index()}, 0);

    TimeZoneAbbrevation abbrevation;
    for (int index = 0; index <= UCHAR_MAX; ++index) {
        const auto byte = static_cast<unsigned char>(index);
        abbrevation.setFromIndex(byte);
        QCOMPARE(int{abbrevation.index()}, index <= 111 ? index : 0);
        QCOMPARE(TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(byte), abbrevation.c_str());
    }
    QCOMPARE(TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(111), "WST");
    QCOMPARE(TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(200), "");
    QVERIFY(TimeZoneAbbrevation(29) != TimeZoneAbbrevation(32));
}

void TestTimeZone::abbrevationText_data() {
    QTest::addColumn<std::string>("text");
    QTest::addColumn<int>("index");

    const struct {
        const char* text;
        int index;
    } rows[] = {{"GMT", 1},  {"CET", 21},  {"WST", 111}, {"CST", 29}, {"EST", 37},
                {"IST", 51}, {"LHST", 57}, {"ST", 105},  {"", 0},     {"UTC", 0},
                {"XYZ", 0},  {"cet", 0},   {"CE", 0},    {"CET ", 0}};
    for (const auto& row : rows)
        QTest::addRow("'%s'", row.text) << std::string(row.text) << row.index;
    QTest::newRow("embedded null") << std::string("CET\0", 4) << 0;
}

void TestTimeZone::abbrevationText() {
    QFETCH(std::string, text);
    QFETCH(int, index);
    QCOMPARE(int{TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(text)}, index);
    QCOMPARE(int{TimeZoneAbbrevation(text).index()}, index);
    TimeZoneAbbrevation abbrevation(21);
    QCOMPARE(abbrevation.trySetFromString(text), index != 0);
    QCOMPARE(int{abbrevation.index()}, index);

    const bool hasNull = text.find('\0') != std::string::npos;
    const char* const pointer = text.empty() || hasNull ? nullptr : text.c_str();
    QCOMPARE(int{TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(pointer)}, index);
    QCOMPARE(int{TimeZoneAbbrevation(pointer).index()}, index);
    abbrevation.setFromIndex(21);
    QCOMPARE(abbrevation.trySetFromString(pointer), index != 0);
    QCOMPARE(int{abbrevation.index()}, index);
}

void TestTimeZone::constructors_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<int>("offset");
    QTest::addColumn<std::string>("name");
    QTest::addColumn<int>("abbrevation");
    QTest::addColumn<bool>("server");

    const auto row = [](const char* tag, const TimeZone& zone, int offset, const char* name = "",
                        int abbrevation = 0, bool server = false) {
        QTest::newRow(tag) << zone << offset << std::string(name) << abbrevation << server;
    };
    const signed char small = 5;
    const int number = 2;
    const std::string text = "CET";
    const char* const pointer = "CET";
    const char* const null = nullptr;

    row("default", TimeZone(), 0, "UTC");
    row("server", TimeZone(ServerTimeZone()), 0, "", 0, true);
    row("offset, literal", TimeZone(127, "CET"), 127, "CET");
    row("0, literal", TimeZone(0, "CET"), 0, "CET");
    row("offset, pointer", TimeZone(small, pointer), 5, "CET");
    row("offset, string", TimeZone(small, text), 5, "CET");
    row("0, string", TimeZone(0, text), 0, "CET");
    row("offset, null pointer", TimeZone(small, null), 5);
    row("offset, nullptr", TimeZone(small, nullptr), 5);
    row("offset not validated", TimeZone(-128, ""), -128);
    row("offset, abbreviation", TimeZone(4, TimeZoneAbbrevation(21)), 4, "", 21);

    row("hours, quarters", TimeZone(5, 2), 22);
    row("variables", TimeZone(small, number), 22);
    row("small variables", TimeZone(small, small), 25);
    row("west", TimeZone(-3, 2), -14);
    row("below one hour", TimeZone(0, 2), -2);
    row("negative quarters", TimeZone(0, -2), 2);
    row("literal 0", TimeZone(5, 0), 20);
    row("unsigned 0", TimeZone(5, 0U), 20);
    row("long 0", TimeZone(5, 0L), 20);
    row("0, 0", TimeZone(0, 0), 0);
    row("east end", TimeZone(23, 3), 95);
    row("west end", TimeZone(-23, 3), -95);
    row("too far east", TimeZone(24, 0), 127);
    row("too far west", TimeZone(-24, 0), 127);
    row("cut to eight bits", TimeZone(1, 300), 48);
    row("most quarters", TimeZone(1, INT_MAX), 3);
    row("most quarters, west", TimeZone(-1, INT_MAX), -3);
    row("fewest quarters", TimeZone(0, INT_MIN), 0);

    row("full name", TimeZone("CET", "Central European S"), 8, "CET");
    row("full name, strings", TimeZone(text, std::string("Newfoundland D")), -10, "CET");
    row("ambiguous full name", TimeZone("CET", "Central"), 0);
    row("unknown full name", TimeZone("CET", "X"), 0);
    row("no abbreviation", TimeZone("", "Central European S"), 0);
}

void TestTimeZone::constructors() {
    QFETCH(TimeZone, zone);
    QTEST(int{zone.offset()}, "offset");
    QTEST(zone.name(), "name");
    QTEST(int{zone.abbrevation().index()}, "abbrevation");
    QTEST(zone.isServerTimeZone(), "server");
}

void TestTimeZone::validity_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<bool>("validOffset");
    QTest::addColumn<bool>("validName");
    QTest::addColumn<bool>("valid");

    TimeZone unknownServer(127, "");
    unknownServer.setServerTimeZone(true);
    QTest::newRow("default") << TimeZone() << true << true << true;
    QTest::newRow("-95") << TimeZone(-95, "") << true << false << true;
    QTest::newRow("95") << TimeZone(95, "") << true << false << true;
    QTest::newRow("-96") << TimeZone(-96, "") << false << false << false;
    QTest::newRow("96") << TimeZone(96, "") << false << false << false;
    QTest::newRow("unknown") << TimeZone(127, "") << false << false << false;
    QTest::newRow("by name") << TimeZone(127, "CET") << false << true << true;
    QTest::newRow("by server") << unknownServer << false << false << true;
    QTest::newRow("not by abbreviation")
        << TimeZone(127, TimeZoneAbbrevation(21)) << false << false << false;
}

void TestTimeZone::validity() {
    QFETCH(TimeZone, zone);
    QTEST(zone.isValidOffset(), "validOffset");
    QTEST(zone.isValidName(), "validName");
    QTEST(zone.isValid(), "valid");
}

void TestTimeZone::setOffset_data() {
    QTest::addColumn<int>("hours");
    QTest::addColumn<int>("quarters");
    QTest::addColumn<int>("offset");

    QTest::newRow("east") << 5 << 2 << 22;
    QTest::newRow("west") << -3 << 2 << -14;
    QTest::newRow("below one hour") << 0 << 2 << -2;
    QTest::newRow("too far") << 30 << 0 << 0;
    QTest::newRow("too far west") << -24 << 1 << 0;
}

void TestTimeZone::setOffset() {
    QFETCH(int, hours);
    QFETCH(int, quarters);
    TimeZone zone(127, "CET");
    zone.setServerTimeZone(true);
    zone.setOffset(static_cast<signed char>(hours), quarters);
    QTEST(int{zone.offset()}, "offset");
    QCOMPARE(zone, TimeZone(zone.offset(), "CET"));
}

void TestTimeZone::setName_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<std::string>("abbrevation");
    QTest::addColumn<std::string>("fullName");
    QTest::addColumn<bool>("found");
    QTest::addColumn<int>("offset");
    QTest::addColumn<std::string>("name");

    const auto row = [](const char* tag, const TimeZone& zone, const char* abbrevation,
                        const char* fullName, bool found, int offset, const char* name) {
        QTest::newRow(tag) << zone << std::string(abbrevation) << std::string(fullName) << found
                           << offset << std::string(name);
    };
    row("looks up the old name", TimeZone(), "CET", "", true, 0, "CET");
    row("new name need not exist", TimeZone(9, "NST"), "XYZ", "", true, -14, "XYZ");
    row("old name narrowed", TimeZone(9, "CST"), "EST", "Cuba", true, -20, "EST");
    row("old name ambiguous", TimeZone(9, "CST"), "CET", "", false, 9, "CST");
    row("old name unknown", TimeZone(9, "XYZ"), "CET", "", false, 9, "XYZ");
    row("full name of another zone", TimeZone(), "CET", "Central", false, 0, "UTC");
    row("any zone", TimeZone(9, ""), "CET", "Central European T", true, 4, "CET");
    row("no abbreviation", TimeZone(9, "NST"), "", "Newfoundland", false, 9, "NST");
}

void TestTimeZone::setName() {
    QFETCH(TimeZone, zone);
    QFETCH(std::string, abbrevation);
    QFETCH(std::string, fullName);
    zone.setServerTimeZone(true);
    const auto index = zone.abbrevation();
    QTEST(zone.setName(abbrevation, fullName), "found");
    QTEST(int{zone.offset()}, "offset");
    QTEST(zone.name(), "name");
    QCOMPARE(zone.abbrevation(), index);
    QVERIFY(zone.isServerTimeZone());
}

void TestTimeZone::copyAndMove() {
    const std::string longName(100, 'x');
    for (const std::string& name : {std::string("CET"), longName}) {
        TimeZone zone(-14, name);
        TimeZone copy(zone);
        const TimeZone moved(std::move(zone));
        QCOMPARE(moved, copy);
        QCOMPARE(zone.name(), std::string());

        TimeZone target;
        target = std::move(copy);
        QCOMPARE(target, moved);
        QCOMPARE(copy.name(), std::string());
        TimeZone& self = target;
        target = std::move(self);
        QCOMPARE(target, moved);
    }
}

QTEST_APPLESS_MAIN(TestTimeZone)
#include "tst_timezone.moc"
