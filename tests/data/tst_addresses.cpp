#include <pylon/data/compareipaddresses.h>
#include <pylon/data/lyraurl.h>
#include <pylon/data/version.h>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace pylon;

class TestAddresses : public QObject {
    Q_OBJECT

private slots:
    void urls() {
        // A text, and what is read from it: host, port, both and kind.
        const std::pair<QString, QString> rows[] = {
            {"", "|8601||other"},
            {"http://10.1.2.3", "10.1.2.3|8601|10.1.2.3:8601|v4"},
            {"https://10.1.2.3:9000", "10.1.2.3|9000|10.1.2.3:9000|v4"},
            {"10.1", "10.1|8601|10.1:8601|v4"},
            {"http://Recorder7:9000", "recorder7|9000|recorder7:9000|other"},
            {"ahttp://bhttps://C", "abc|8601|abc:8601|other"},
            {"HTTP://a", "http|8601|http:8601|other"},
            {"HTTPS://a", "https|8601|https:8601|other"},
            {"user:word@a:1/b?c#d", "a|1|a:1|other"},
            {"a:0", "a|0|a|other"},
            {"a:65536", "a|8601|a:8601|other"},
            {":80", "|80||other"},
            {"fe80::1", "fe80::1|8601|[fe80::1]:8601|v6"},
            {"[fe80::1]:81", "fe80::1|81|[fe80::1]:81|v6"},
            {"[::1]:0", "::1|0|[::1]:0|v6"},
            {"fe80::1%eth0", "fe80::1%eth0|8601|[fe80::1%eth0]:8601|v6"},
            {"[fe80::1%25eth0]:81", "fe80::1%eth0|81|[fe80::1%eth0]:81|v6"},
            {"::ffff:1.2.3.4", "::ffff:1.2.3.4|8601|[::ffff:1.2.3.4]:8601|v6"},
            {"[::1", "|8601||other"},
            {"\\\\nas\\Video", "\\\\nas\\Video|0|\\\\nas\\Video|other"},
            {"\\nas", "|8601||other"},
        };
        for (const auto& [text, expected] : rows) {
            const LyraUrl url(text), other(text, -5);
            const int type = CompareIpAddresses::ipAddressType(text);
            const QString kind = QStringList{"v4", "v6", "other"}[type];
            const QString port = QString::number(url.port());
            QCOMPARE(QStringList({url.host(), port, url.hostAndPort(), kind}).join('|'), expected);
            QVERIFY(url.isIpv4() == (type == 0) && url.isIpv6() == (type == 1));
            QCOMPARE(url.isLocalFile(), url.port() == 0);
            QCOMPARE(other.port(), url.port() == 8601 ? -5 : url.port());
            QCOMPARE(CompareIpAddresses::getHostAndPort(text, -5),
                     std::pair(other.host(), QString::number(other.port())));
        }
    }

    void existingFiles() {
        const QTemporaryDir folder;
        const LyraUrl url(folder.path(), 80);
        QVERIFY(url.isLocalFile() && url.host() == folder.path());
        QCOMPARE(url.hostAndPort(), folder.path());
        QVERIFY(!LyraUrl(folder.path() + "/none").isLocalFile());
        QTest::failOnWarning(QRegularExpression());
        QVERIFY(!LyraUrl(folder.path() + QChar::Null).isLocalFile());
    }

    void lessThan() {
        // "=" for neither, "?" for both ways round.
        for (const QString row : {
                 "10.0.0.2 < 10.0.0.10",
                 "1.2.3.4 = 1.2.3.4",
                 "192.168.1.1 < ::1",
                 "http://10.0.0.1:80 < 10.0.0.1:8080",
                 "10.0.0.1 > https://10.0.0.1:79",
                 "10.0.0.1 = 10.0.0.1:80",
                 "10.1 < 10.1.0.1",
                 "010.0.0.2 = 10.0.0.1",  // "010" and "10" end the comparison
                 "0x10.0.0.1 < 1.0.0.0",  // no decimal number
                 "[fe80::1]:81 > fe80::1",
                 "[::1]:99 < [::1]:100",
                 "::9 < 0::a",
                 "::ffff < 1::",
                 "1::8 < 1:0:0:0:0:0:0:9",
                 "1:2:3:4:5:6:7:: < [1:2:3:4:5:6:7:0]:81",
                 "fe80::1%eth0 < fe80::1",    // "1%eth0" is no number
                 "fe80::5:1%a::b = fe80::1",  // not abbreviated
                 "::ffff:1.2.3.4 < ::ffff:0:1",
                 "1:2:3:4:5:6:1.2.3.4 < 1:2:3:4:5:6:1:2",
                 "camera-host < 10.0.0.1",
                 "b ? a",
                 " ? ",
             }) {
            const QString a = row.section(' ', 0, 0), b = row.section(' ', 2);
            const bool less = CompareIpAddresses::lessThan(a, b);
            const bool greater = CompareIpAddresses::lessThan(b, a);
            const char sign = "=<>?"[(less ? 1 : 0) + (greater ? 2 : 0)];
            QCOMPARE(a + ' ' + sign + ' ' + b, row);
        }
    }

    void sorts() {
        const QStringList sorted =
            QString(
                " B a aa b 0x10.0.0.1 9.9.9.9:1 10.1 10.1.0.0:81 010.2.0.0 :: [::]:99 [::]:100 "
                "::ffff:1.2.3.4 ::1:0:0 ::ffff:0:1 1:2:3:4:5:6:1.2.3.4 fe80::1%eth0 fe80::1 "
                "fe80::a fe80::1%1:2:3:4:5:6:7:8:9")
                .split(' ');
        for (int step : {2, 5, 11, 19}) {  // prime to the length
            QStringList list;
            for (qsizetype i = 0; i < sorted.size(); ++i)
                list += sorted[i * step % sorted.size()];
            CompareIpAddresses::sort(list);
            QCOMPARE(list, sorted);
        }
        // Equal ones keep their order; so many that it is not by chance.
        const QStringList equal = QString(" 10.1.0.0:80 10.1 10.01.0.0").repeated(20).split(' ');
        QStringList list = equal;
        CompareIpAddresses::sort(list);
        QCOMPARE(list, equal);
    }

    void versions() {
        const std::pair<QStringList, QString> rows[] = {
            {{}, ""},
            {{"4.2", "4.1.7", "5.0"}, "4.1"},
            {{"4"}, ""},
            {{"3.x"}, "3.0"},
            {{"4", "10.2", "9.10"}, "9.10"},
            {{"a.1", ".."}, "0.0"},
            {{"9999.1"}, ""},
            {{"4.9999", "5.1"}, ""},
            {{"4.9999", "4.12"}, "4.12"},
            {{"4.12000"}, "4.12000"},
            {{"12000.1"}, ""},
            {{"-1.5", "0.0"}, "-1.5"},
        };
        for (const auto& [texts, lowest] : rows)
            QCOMPARE(lowestVersion(texts), lowest);

        // Numbers beyond 32 bits are compared without a sign.
        constexpr auto large = ~0ULL;
        using Version = std::tuple<unsigned long long, unsigned long long, unsigned long long>;
        const std::pair<Version, Version> rising[] = {
            {{1, 2, 9}, {1, 10, 0}}, {{1, 9, 9}, {2, 0, 0}}, {{1, 2, 3}, {1, 2, large}}};
        for (const auto& [a, b] : rising) {
            QVERIFY(versionLessThan(a, b) && !versionLessThan(b, a) && !versionLessThan(a, a));
            QVERIFY(versionLessThanEqual(a, b) && !versionLessThanEqual(b, a));
            QVERIFY(versionLessThanEqual(a, a));
        }
        QVERIFY(versionLessThan({1, 2}, {1, large}) && !versionLessThan({1, 2}, {1, 2}));
        QVERIFY(versionLessThanEqual({1, 2}, {1, 2}) && !versionLessThanEqual({2, 0}, {1, 9}));
    }
};

QTEST_GUILESS_MAIN(TestAddresses)
#include "tst_addresses.moc"
