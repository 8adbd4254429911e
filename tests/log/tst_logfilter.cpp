#include <pylon/log/logfilter.h>
#include <pylon/log/logmanager.h>
#include <QtTest/QTest>

#include <bit>

using namespace pylon::plog;

class TestLogFilter : public QObject {
    Q_OBJECT

private slots:
    void registeredModules() {
        const LogManager* manager = LogManager::instance();
        QCOMPARE(manager->logModules().size(), 19);
        QCOMPARE(std::popcount(manager->enabledModules()), 19);
        int subModules = 0;
        for (const auto& module : manager->logModules()) {
            QCOMPARE(manager->enabledSubmodules(module->module()), 0xFFFFFF00u);
            QCOMPARE(QString::fromLatin1(module->name_cstr()), module->name());
            QVERIFY(module->subModuleName(256).isEmpty());
            subModules += int(module->subModules().size());
        }
        QCOMPARE(subModules, 14);
        QVERIFY(!manager->logModule(Module(0x10000)));
        QVERIFY(!manager->logModule(Module(Network | Config)));
        const auto network = manager->logModule(Network);
        QCOMPARE(network->subModule(QStringLiteral("Stream")), 2048u);
        QCOMPARE(network->subModule(QStringLiteral("stream")), 0u);
        QCOMPARE(network->subModuleName(8192), QStringLiteral("Login"));
        QCOMPARE(manager->logModule(Config)->subModules(), QList<unsigned>{1024});
        QCOMPARE(manager->logModule(MainUI)->name(), QStringLiteral("MainUI"));
    }

    void terms_data() {
        QTest::addColumn<QString>("text");
        // Each term as its name, "=" or "!" for valid or not, and what it resolved to: the module
        // and the sub-modules, hexadecimal.
        QTest::addColumn<QStringList>("terms");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* text, const QStringList& terms, const char* error) {
            QTest::newRow(text) << QString::fromUtf8(text) << terms << QString::fromUtf8(error);
        };
        row("", {}, "");
        row("Network{Request, Login} Playback,Config",
            {"Network=2:2200", "Playback=10:3e00", "Config=4:400"}, "");
        row("Network {Request}", {"Network=2:200"}, "");
        row("Network\t{Request}Gui", {"Network=2:200", "Gui=40000:0"}, "");
        row("Playback{Stream,Audio}", {"Playback=10:1800"}, "");
        row("Playback{,, Stream ,}", {"Playback=10:800"}, "");
        row("Playback{}", {"Playback=10:3e00"}, "");
        row("Network{Request,Login", {"Network=2:2200"}, "");
        row("Network{", {"Network=2:7e00"}, "");
        row("Network{Request ", {"Network=2:200"}, "");
        row("Network\tConfig", {"Network=2:7e00", "Config=4:400"}, "");
        row("Network,\tConfig", {"Network=2:7e00", "!0:0", "Config=4:400"}, "");
        row(" ", {"!0:0"}, "");
        row(" , ", {"!0:0"}, "");
        row("{Request}", {"!0:0"}, "");
        row("Network;Config", {"Network;Config!0:0"}, "Network;Config");
        row("network", {"network!0:0"}, "network");
        row("Network{Foo}, Bogus{X}", {"Network!2:0", "Bogus!0:0"}, "Network{Foo}, Bogus");
        row("Network{Foo,Request,Bar}", {"Network!2:200"}, "Network{Foo}, Network{Bar}");
        row("}Network", {"}Network!0:0"}, "}Network");
    }

    void terms() {
        QFETCH(QString, text);
        QFETCH(QString, error);
        LogFilter filter(LogManager::instance()->logModules());
        QString found;
        QStringList terms;
        const auto items = filter.parseFilterString(text, &found);
        for (const LogFilterItem& item : items)
            terms.append(QStringLiteral("%1%2%3:%4")
                             .arg(item.moduleStr(), item.isValid() ? u"=" : u"!")
                             .arg(item.module(), 0, 16)
                             .arg(item.subModules(), 0, 16));
        QTEST(terms, "terms");
        QCOMPARE(found, error);
        const bool valid = std::all_of(items.cbegin(), items.cend(),
                                       [](const LogFilterItem& item) { return item.isValid(); });
        QCOMPARE(filter.isValid(text, nullptr), valid);
    }

    void errorsAreAppended() {
        LogFilter filter(LogManager::instance()->logModules());
        QString error = QStringLiteral("before");
        QVERIFY(!filter.isValid(QStringLiteral(" , "), &error));
        QCOMPARE(error, QStringLiteral("before, "));
        const LogFilterItem item(QStringLiteral("Network"),
                                 {QStringLiteral("X"), QStringLiteral("Login")});
        QVERIFY(!filter.isValid(item, &error));
        QCOMPARE(error, QStringLiteral("before, , Network{X}"));
        QCOMPARE(item.subModules(), 8192u);
    }

    void overlongNames() {
        const QString fits(255, u'x');
        QVERIFY(!LogFilter::hasOverlongName(fits + u'{' + fits + u',' + fits));
        QVERIFY(LogFilter::hasOverlongName(fits + u'x'));
        QVERIFY(LogFilter::hasOverlongName(QStringLiteral("Gui Network{a,") + fits + u'x'));
        QVERIFY(LogFilter::hasOverlongName(QString(128, u'ä')));
        QString error;
        QVERIFY(!LogFilter(LogManager::instance()->logModules()).isValid(fits, &error));
        QCOMPARE(error, fits);
    }
};

QTEST_APPLESS_MAIN(TestLogFilter)
#include "tst_logfilter.moc"
