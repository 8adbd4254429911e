#include <pylon/time/timezoneabbrevation.h>
#include <pylon/time/timezones.h>

#include <QtTest/QtTest>

#include <sstream>
#include <string>

using namespace pylon;

class TestTimeZones : public QObject {
    Q_OBJECT

private slots:
    void catalogue();
    void find();
    void offset_data();
    void offset();
    void list_data();
    void list();
    void listAll();
};

void TestTimeZones::catalogue() {
    std::ostringstream rows;
    std::string previous;
    int count = 0;
    for (auto it = TimeZones::begin(); it != TimeZones::end(); ++it, ++count) {
        QVERIFY(previous <= it.key());
        previous = it.key();
        if (it.index() == 0)
            QCOMPARE(it.key(), std::string("UTC"));
        else
            QCOMPARE(it.key(), TimeZoneAbbrevation(it.index()).to_string());
        rows << it.key() << '\t' << int{it.index()} << '\t' << int{it.offset()} << '\t'
             << it.fullName() << '\t' << it.continent() << '\n';
    }
    QCOMPARE(count, 121);
    QCOMPARE(TimeZones::begin().key(), std::string("ADT"));
    QCOMPARE(previous, std::string("YEKT"));
    // Digest of all rows: the catalogue is fixed, odd spellings included.
    const auto digest =
        QCryptographicHash::hash(QByteArray::fromStdString(rows.str()), QCryptographicHash::Sha1);
    QCOMPARE(digest.toHex(), "fcf11f90dc9b0698d671ec2020260d5bb1012606");
}

void TestTimeZones::find() {
    const auto utc = TimeZones::find("UTC");
    QCOMPARE(int{utc.index()}, 0);
    QCOMPARE(utc.fullName(), std::string("Universal Time Coordinate"));
    QVERIFY(utc.continent().empty());
    for (const char* unknown : {"", "cet", "CE", "CETX", "ZZZ", static_cast<const char*>(nullptr)})
        QVERIFY(TimeZones::find(unknown) == TimeZones::end());

    auto walking = utc;
    ++walking;
    QVERIFY(walking != utc);
    QVERIFY(utc == TimeZones::find("UTC"));
}

void TestTimeZones::offset_data() {
    QTest::addColumn<std::string>("abbrevation");
    QTest::addColumn<std::string>("fullName");
    QTest::addColumn<int>("offset");
    QTest::addColumn<std::string>("completed");

    const struct {
        const char* abbrevation;
        const char* fullName;
        int offset;
        const char* completed;
    } rows[] = {
        {"GMT", "", 0, "Greenwich Mean Time"},
        {"UTC", "", 0, "Universal Time Coordinate"},
        {"NST", "", -14, "Newfoundland Standard Time"},
        {"CHADT", "", 55, "Chatham Island Daylight Time"},
        {"BRT", "Bras\xc3\xadlia t", -12, "Bras\xc3\xadlia time"},
        {"BST", "", 126, "Bangladesh Standard Time"},
        {"BST", "Bangl", 24, "Bangladesh Standard Time"},
        {"IST", "I", 126, "India Standard Time"},
        {"IST", "Is", 8, "Israel Standard Time"},
        {"CST", "", 126, "Cuba Standard Time"},
        {"CST", "China", 32, "China Standard Time"},
        {"CST", "Cuba", -20, "Cuba Standard Time"},
        {"EDT", "Eastern Daylight Time", 126, "Eastern Daylight Time"},
        {"LHST", "", 126, "Lord Howe Standard Time"},
        {"ST", "", 126, "Standard Time"},
        {"", "", 126, "Yekaterinburg Time"},
        {"", "Cuba S", -20, "Cuba Standard Time"},
        {"", "Central European S", 8, "Central European Summer Time"},
        {"", "Central", 126, "Central Standard Time"},
        {"", "European", 127, "European"},
        {"XYZ", "", 127, ""},
        {"cet", "", 127, ""},
        {"CET", "central", 127, "central"},
        {"CET", "Cuba", 127, "Cuba"},
        {"CET", "Central European Time ", 127, "Central European Time "},
    };
    for (const auto& row : rows)
        QTest::addRow("%s/%s", row.abbrevation, row.fullName)
            << std::string(row.abbrevation) << std::string(row.fullName) << row.offset
            << std::string(row.completed);
}

void TestTimeZones::offset() {
    QFETCH(std::string, abbrevation);
    QFETCH(std::string, fullName);
    QFETCH(int, offset);
    const bool withoutFilter = fullName.empty();
    QCOMPARE(int{TimeZones::timeZoneOffset(abbrevation, fullName)}, offset);
    QTEST(fullName, "completed");
    QCOMPARE(TimeZones::isFound(static_cast<signed char>(offset)), offset < 126);
    if (withoutFilter)
        QCOMPARE(int{TimeZones::timeZoneOffset(abbrevation)}, offset);
}

void TestTimeZones::list_data() {
    QTest::addColumn<std::string>("abbrevation");
    QTest::addColumn<std::string>("fullName");
    QTest::addColumn<QStringList>("rows");

    const auto row = [](const char* abbrevation, const char* fullName, const QStringList& rows) {
        QTest::addRow("%s/%s", abbrevation, fullName)
            << std::string(abbrevation) << std::string(fullName) << rows;
    };
    row("WST", "",
        {"   WST     UTC +1:00      Western Sahara Summer Time Africa",
         "   WST     UTC+13:00                 West Samoa Time Pacific"});
    row("NDT", "", {"   NDT     UTC -2:30      Newfoundland Daylight Time "});
    row("CHAST", "Chat", {" CHAST     UTC+12:45    Chatham Island Standard Time "});
    row("", "Greenwich", {"   GMT     UTC +0:00             Greenwich Mean Time Europe"});
    row("WST", "X", {});
}

void TestTimeZones::list() {
    QFETCH(std::string, abbrevation);
    QFETCH(std::string, fullName);
    QFETCH(QStringList, rows);
    std::ostringstream os;
    auto flags = os.flags();
    QCOMPARE(TimeZones::list2ostream(os, abbrevation, fullName), rows.size());

    if (!rows.isEmpty()) {
        flags |= std::ios::showpos | std::ios::left | std::ios::right;
        rows.prepend(QString(64, u'-'));
        rows.prepend(" TZone     UTC+-H:MM             Time Zone Full Name Continent");
        rows.append(QString());
    }
    QCOMPARE(QString::fromStdString(os.str()), rows.join(u'\n'));
    QVERIFY(os.flags() == flags);
}

void TestTimeZones::listAll() {
    std::ostringstream os;
    TimeZones::listAll(os);
    const QStringList lines = QString::fromStdString(os.str()).split(u'\n');
    QCOMPARE(lines.size(), 2 + 121 + 1);
    QCOMPARE(lines.at(2), "   ADT     UTC -3:00          Atlantic Daylight Time Atlantic");
}

QTEST_APPLESS_MAIN(TestTimeZones)
#include "tst_timezones.moc"
