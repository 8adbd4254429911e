#include <pylon/time/timezones.h>

#include <QtTest/QtTest>

#include <sstream>
#include <string>

using namespace pylon;

class TestTimeZones : public QObject {
    Q_OBJECT

private slots:
    void catalogue() {
        std::ostringstream rows;
        for (auto it = TimeZones::begin(); it != TimeZones::end(); ++it) {
            rows << it.key() << '\t' << int{it.index()} << '\t' << int{it.offset()} << '\t'
                 << it.fullName() << '\t' << it.continent() << '\n';
        }
        // Digest of all 121 rows: the catalogue is fixed, odd spellings included.
        const auto digest = QCryptographicHash::hash(QByteArray::fromStdString(rows.str()),
                                                     QCryptographicHash::Sha1);
        QCOMPARE(digest.toHex(), "fcf11f90dc9b0698d671ec2020260d5bb1012606");
    }

    void find() {
        QCOMPARE(TimeZones::find("CST").fullName(), std::string("Central Standard Time"));
        for (const char* unknown : {"", "cet", "CETX", "ZZZ", static_cast<const char*>(nullptr)})
            QVERIFY(TimeZones::find(unknown) == TimeZones::end());
    }

    void offset() {
        const struct {
            const char* abbrevation;
            const char* fullName;
            const char* result;
        } rows[] = {
            {"UTC", "", "0 Universal Time Coordinate"},
            {"CHADT", "", "55 Chatham Island Daylight Time"},
            {"BRT", "Bras\xc3\xadlia time", "-12 Bras\xc3\xadlia time"},
            {"IST", "I", "126 India Standard Time"},
            {"IST", "Is", "8 Israel Standard Time"},
            {"CST", "", "126 Cuba Standard Time"},
            {"CST", "China", "32 China Standard Time"},
            {"LHST", "", "126 Lord Howe Standard Time"},
            {"", "", "126 Yekaterinburg Time"},
            {"", "Cuba S", "-20 Cuba Standard Time"},
            {"", "European", "127 European"},
            {"cet", "", "127 "},
            {"CET", "central", "127 central"},
            {"CET", "Cuba", "127 Cuba"},
            {"CET", "Central European Time ", "127 Central European Time "},
        };
        for (const auto& [abbrevation, filter, result] : rows) {
            std::string fullName = filter;
            const int offset = TimeZones::timeZoneOffset(abbrevation, fullName);
            QCOMPARE(std::to_string(offset) + ' ' + fullName, std::string(result));
        }
        QCOMPARE(int{TimeZones::timeZoneOffset("NST")}, -14);
        for (const int offset : {-95, -94, 94, 95, 126, 127})
            QCOMPARE(TimeZones::isFound(static_cast<signed char>(offset)), qAbs(offset) == 94);
    }

    void list() {
        std::ostringstream os;
        auto flags = os.flags();
        QCOMPARE(TimeZones::list2ostream(os, "WST", "Samoa"), 0);
        QVERIFY(os.str().empty() && os.flags() == flags);

        QCOMPARE(TimeZones::list2ostream(os, "WST", ""), 2);
        flags |= std::ios::showpos | std::ios::left | std::ios::right;
        QVERIFY(os.flags() == flags);
        QCOMPARE(TimeZones::list2ostream(os, "", "Newfoundland D"), 1);
        QCOMPARE(TimeZones::list2ostream(os, "CHAST", "Chat"), 1);
        const QByteArray header =
            " TZone     UTC+-H:MM             Time Zone Full Name Continent\n" +
            QByteArray(64, '-') + '\n';
        QCOMPARE(QByteArray::fromStdString(os.str()),
                 header +
                     "   WST     UTC +1:00      Western Sahara Summer Time Africa\n"
                     "   WST     UTC+13:00                 West Samoa Time Pacific\n" +
                     header + "   NDT     UTC -2:30      Newfoundland Daylight Time \n" + header +
                     " CHAST     UTC+12:45    Chatham Island Standard Time \n");

        os.str("");
        TimeZones::listAll(os);
        QCOMPARE(QByteArray::fromStdString(os.str()).count('\n'), 2 + 121);
    }
};

QTEST_APPLESS_MAIN(TestTimeZones)
#include "tst_timezones.moc"
