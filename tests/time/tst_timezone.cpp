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
    return QStringLiteral("%1 %2 %3 %4")
        .arg(zone.offset())
        .arg(zone.abbrevation().index())
        .arg(QString::fromStdString(zone.name()))
        .arg(zone.isServerTimeZone() ? QStringLiteral("server") : QString())
        .simplified();
}

}  // namespace

class TestTimeZone : public QObject {
    Q_OBJECT

private slots:
    void abbrevationList();
    void abbrevationText_data();
    void abbrevationText();
    void constructors_data();
    void constructors();
    void validity();
    void setOffset();
    void setName_data();
    void setName();
    void copyAndMove();
};

void TestTimeZone::abbrevationList() {
    QByteArray texts;
    TimeZoneAbbrevation abbrevation;
    for (int index = 0; index <= UCHAR_MAX; ++index) {
        const int valid = index <= TimeZoneAbbrevation::max_index ? index : 0;
        const auto byte = static_cast<unsigned char>(index);
        abbrevation.setFromIndex(byte);
        QCOMPARE(int{abbrevation.index()}, valid);
        QCOMPARE(abbrevation, TimeZoneAbbrevation(index));
        QCOMPARE(TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(byte), abbrevation.c_str());
        if (index == valid)
            texts += abbrevation.to_string() + '\n';
    }
    // Digest of all texts: servers send the index, so the list is fixed.
    QCOMPARE(QCryptographicHash::hash(texts, QCryptographicHash::Sha1).toHex(),
             "009e06eb65e52a2334d6185594bc284abe93487a");
    for (const long long outside : {256LL + 21, -1LL, LLONG_MAX})
        QCOMPARE(TimeZoneAbbrevation(outside), TimeZoneAbbrevation());
    QVERIFY(TimeZoneAbbrevation(29) != TimeZoneAbbrevation(32));
    const int& exported = TimeZoneAbbrevation::max_index;
    QCOMPARE(exported, 111);
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
}

void TestTimeZone::abbrevationText() {
    QFETCH(std::string, text);
    QFETCH(int, index);
    QCOMPARE(int{TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(text)}, index);
    QCOMPARE(int{TimeZoneAbbrevation(text).index()}, index);
    TimeZoneAbbrevation abbrevation(21);
    QCOMPARE(abbrevation.trySetFromString(text), index != 0);
    QCOMPARE(int{abbrevation.index()}, index);

    const char* const pointer = text.empty() ? nullptr : text.c_str();
    QCOMPARE(int{TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(pointer)}, index);
    QCOMPARE(int{TimeZoneAbbrevation(pointer).index()}, index);
    abbrevation.setFromIndex(21);
    QCOMPARE(abbrevation.trySetFromString(pointer), index != 0);
    QCOMPARE(int{abbrevation.index()}, index);
}

void TestTimeZone::constructors_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<QString>("description");

    const auto row = [](const char* tag, const TimeZone& zone, const char* description) {
        QTest::newRow(tag) << zone << QString::fromLatin1(description);
    };
    const signed char small = 5;
    const int number = 2;
    const std::string text = "CET";
    const char* const pointer = "CET";
    const char* const null = nullptr;

    row("default", TimeZone(), "0 0 UTC");
    row("server", TimeZone(ServerTimeZone()), "0 0 server");
    row("offset, literal", TimeZone(127, "CET"), "127 0 CET");
    row("0, literal", TimeZone(0, "CET"), "0 0 CET");
    row("offset, pointer", TimeZone(small, pointer), "5 0 CET");
    row("offset, string", TimeZone(small, text), "5 0 CET");
    row("0, string", TimeZone(0, text), "0 0 CET");
    row("offset, null pointer", TimeZone(small, null), "5 0");
    row("offset, nullptr", TimeZone(small, nullptr), "5 0");
    row("offset not validated", TimeZone(-128, ""), "-128 0");
    row("offset, abbreviation", TimeZone(4, TimeZoneAbbrevation(21)), "4 21");

    row("hours, quarters", TimeZone(5, 2), "22 0");
    row("variables", TimeZone(small, number), "22 0");
    row("small variables", TimeZone(small, small), "25 0");
    row("west", TimeZone(-3, 2), "-14 0");
    row("below one hour", TimeZone(0, 2), "-2 0");
    row("negative quarters", TimeZone(0, -2), "2 0");
    row("literal 0", TimeZone(5, 0), "20 0");
    row("unsigned 0", TimeZone(5, 0U), "20 0");
    row("long 0", TimeZone(5, 0L), "20 0");
    row("0, 0", TimeZone(0, 0), "0 0");
    row("east end", TimeZone(23, 3), "95 0");
    row("west end", TimeZone(-23, 3), "-95 0");
    row("too far east", TimeZone(24, 0), "127 0");
    row("too far west", TimeZone(-24, 0), "127 0");
    row("cut to eight bits", TimeZone(1, 300), "48 0");
    row("most quarters", TimeZone(1, INT_MAX), "3 0");
    row("most quarters, west", TimeZone(-1, INT_MAX), "-3 0");
    row("fewest quarters", TimeZone(0, INT_MIN), "0 0");

    row("full name", TimeZone("CET", "Central European S"), "8 0 CET");
    row("full name, strings", TimeZone(text, std::string("Newfoundland D")), "-10 0 CET");
    row("ambiguous full name", TimeZone("CET", "Central"), "0 0");
    row("unknown full name", TimeZone("CET", "X"), "0 0");
    row("no abbreviation", TimeZone("", "Central European S"), "0 0");
}

void TestTimeZone::constructors() {
    QFETCH(TimeZone, zone);
    QTEST(describe(zone), "description");
}

void TestTimeZone::validity() {
    TimeZone unknownServer(127, "");
    unknownServer.setServerTimeZone(true);
    const struct {
        TimeZone zone;
        bool offset;
        bool name;
        bool valid;
    } rows[] = {
        {TimeZone(), true, true, true},
        {TimeZone(-95, ""), true, false, true},
        {TimeZone(95, ""), true, false, true},
        {TimeZone(-96, ""), false, false, false},
        {TimeZone(96, ""), false, false, false},
        {TimeZone(127, "CET"), false, true, true},
        {TimeZone(127, TimeZoneAbbrevation(21)), false, false, false},
        {unknownServer, false, false, true},
    };
    for (const auto& row : rows) {
        QCOMPARE(row.zone.isValidOffset(), row.offset);
        QCOMPARE(row.zone.isValidName(), row.name);
        QCOMPARE(row.zone.isValid(), row.valid);
    }
}

void TestTimeZone::setOffset() {
    const signed char rows[][3] = {{5, 2, 22}, {-3, 2, -14}, {0, 2, -2}, {30, 0, 0}, {-24, 1, 0}};
    for (const auto& [hours, quarters, offset] : rows) {
        TimeZone zone(127, "CET");
        zone.setServerTimeZone(true);
        zone.setOffset(hours, quarters);
        QCOMPARE(zone, TimeZone(offset, "CET"));
    }
}

void TestTimeZone::setName_data() {
    QTest::addColumn<TimeZone>("zone");
    QTest::addColumn<std::string>("abbrevation");
    QTest::addColumn<std::string>("fullName");
    QTest::addColumn<QString>("description");  // null if the look-up fails

    const auto row = [](const char* tag, const TimeZone& zone, const char* abbrevation,
                        const char* fullName, const char* description = nullptr) {
        QTest::newRow(tag) << zone << std::string(abbrevation) << std::string(fullName)
                           << QString::fromLatin1(description);
    };
    row("looks up the old name", TimeZone(), "CET", "", "0 0 CET server");
    row("new name need not exist", TimeZone(9, "NST"), "XYZ", "", "-14 0 XYZ server");
    row("old name narrowed", TimeZone(9, "CST"), "EST", "Cuba", "-20 0 EST server");
    row("any zone", TimeZone(9, ""), "CET", "Central European T", "4 0 CET server");
    row("abbreviation stays", TimeZone(9, TimeZoneAbbrevation(7)), "CET", "Cuba S",
        "-20 7 CET server");
    row("old name ambiguous", TimeZone(9, "CST"), "CET", "");
    row("old name unknown", TimeZone(9, "XYZ"), "CET", "");
    row("full name of another zone", TimeZone(), "CET", "Central");
    row("no abbreviation", TimeZone(9, "NST"), "", "Newfoundland");
}

void TestTimeZone::setName() {
    QFETCH(TimeZone, zone);
    QFETCH(std::string, abbrevation);
    QFETCH(std::string, fullName);
    QFETCH(QString, description);
    zone.setServerTimeZone(true);
    const TimeZone before = zone;
    QCOMPARE(zone.setName(abbrevation, fullName), !description.isNull());
    QCOMPARE(describe(zone), description.isNull() ? describe(before) : description);
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
