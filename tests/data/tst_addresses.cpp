#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <algorithm>
#include <random>

using namespace pylon;

class TestAddresses : public QObject {
    Q_OBJECT

private slots:
    void urls() {
        const QString path = QCoreApplication::applicationDirPath();
        // A text, and what is read from it: host, port, both and kind.
        const std::pair<QString, QString> rows[] = {
            {"", "|8601||other"},
            {"http://10.1.2.3", "10.1.2.3|8601|10.1.2.3:8601|v4"},
            {"https://10.1.2.3:9000", "10.1.2.3|9000|10.1.2.3:9000|v4"},
            {"http://Recorder7:9000", "recorder7|9000|recorder7:9000|other"},
            {"ahttp://bhttps://C", "abc|8601|abc:8601|other"},
            {"user:word@a:1/b?c#d", "a|1|a:1|other"},
            {"a:0", "a|0|a|other"},
            {":80", "|80||other"},
            {"fe80::1", "fe80::1|8601|[fe80::1]:8601|v6"},
            {"[::1]:0", "::1|0|[::1]:0|v6"},
            {"[fe80::1%25eth0]:81", "fe80::1%eth0|81|[fe80::1%eth0]:81|v6"},
            {"[::1", "|8601||other"},
            {"\\\\nas\\Video", "\\\\nas\\Video|0|\\\\nas\\Video|other"},
            {"\\nas", "|8601||other"},
            {path, path + "|0|" + path + "|other"}};
        for (const auto& [text, expected] : rows) {
            const LyraUrl url(text);
            const int type = CompareIpAddresses::ipAddressType(text);
            const QString port = QString::number(url.port());
            const QString kind = QStringList{"v4", "v6", "other"}[type];
            QCOMPARE(QStringList({url.host(), port, url.hostAndPort(), kind}).join('|'), expected);
            QVERIFY(url.isIpv4() == (type == 0) && url.isIpv6() == (type == 1));
            QCOMPARE(CompareIpAddresses::getHostAndPort(text, 5),
                     std::pair(url.host(), url.port() == 8601 ? "5" : port));
        }
        QTest::failOnWarning(QRegularExpression());
        QVERIFY(LyraUrl(path).isLocalFile() && !LyraUrl(path + QChar::Null).isLocalFile());
    }

    // Each stands before all behind it; names do so for sort() only.
    void order() {
        const QStringList names = {"", "B", "a", "aa", "b"};
        const QStringList addresses =
            QString(
                "0x10.0.0.1 1.0.0.0 https://10.0.0.2:79 10.0.0.2 http://10.0.0.2:8080 10.0.0.10 "
                "10.1 10.1.0.0:81 :: [::]:99 [::]:100 ::9 0::a ::ffff:1.2.3.4 ::ffff:0:1 1::8 "
                "1:0:0:0:0:0:0:9 1:2:3:4:5:6:1.2.3.4 1:2:3:4:5:6:7:: [1:2:3:4:5:6:7:0]:81 "
                "fe80::1%eth0 fe80::1 [fe80::1]:81 fe80::a fe81::1%1:2:3:4:5:6:7:8:9")
                .split(' ');
        const auto less = &CompareIpAddresses::lessThan;
        for (qsizetype j = 0; j < addresses.size(); ++j) {
            const QString& b = addresses[j];
            for (const QString& a : addresses.first(j))
                QVERIFY2(less(a, b) && !less(b, a), qPrintable(a + " < " + b));
            QVERIFY(!less(b, b) && less("name", b) && !less(b, "name"));
        }
        QVERIFY(less("b", "a") && less("a", "b"));
        // Spelt in another way, "010" is not equal and ends the comparison.
        QVERIFY(!less("010.0.0.1", "10.0.0.2") && !less("10.0.0.1", "010.0.0.2"));

        std::mt19937 random;
        for (int round = 0; round < 20; ++round) {
            QStringList list = names + addresses;
            std::ranges::shuffle(list, random);
            CompareIpAddresses::sort(list);
            QCOMPARE(list, names + addresses);
        }
        // Equal ones keep their order; so many that it is not by chance.
        const QStringList equal = QString(" 10.1.0.0:80 10.1 10.01.0.0").repeated(20).split(' ');
        QStringList list = equal;
        CompareIpAddresses::sort(list);
        QCOMPARE(list, equal);
    }

    void versions() {
        const std::pair<QStringList, QString> rows[] = {{{}, ""},
                                                        {{"4.2", "4.1.7", "5.0"}, "4.1"},
                                                        {{"4"}, ""},
                                                        {{"3.x"}, "3.0"},
                                                        {{"4", "10.2", "9.10"}, "9.10"},
                                                        {{"9999.1"}, ""},
                                                        {{"4.9999", "5.1"}, ""}};
        for (const auto& [texts, lowest] : rows)
            QCOMPARE(lowestVersion(texts), lowest);

        QVERIFY(versionLessThan({1, 2}, {1, 10}) && !versionLessThan({2, 0, 0}, {1, 9, 9}));
        QVERIFY(versionLessThanEqual({1, 2}, {1, 2}) && !versionLessThanEqual({2, 0}, {1, 9}));
        QVERIFY(!versionLessThan({1, 2}, {1, 2}) && versionLessThanEqual({1, 2, 3}, {1, 2, 3}));
    }
};

QTEST_GUILESS_MAIN(TestAddresses)
#include "tst_addresses.moc"
