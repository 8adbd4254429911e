#include "../files.h"

#include <pylon/platform/querysysteminfo.h>
#include <QtTest/QtTest>

using namespace pylon;

// Absolute with the drive, too, as long as the current folder is the one it was at the start.
const QDir recordings(QFileInfo(RECORDINGS).absoluteFilePath());
const QFileInfo standIn(QFileInfo(STANDIN_PROGRAM).absoluteFilePath());

static QString recording(const QString& name) {
    return QString::fromUtf8(readAll(recordings.filePath(name)));
}

static QString without(QString text, const char* pattern) {
    return text.remove(QRegularExpression(pattern));
}

/// The values, each with a line feed behind it.
static QString shown(const SystemInfo& info) {
    return QStringList({info.hostName, info.osName, info.osVersion, info.systemType, info.productId,
                        info.bios, info.processors.join(", "), info.totalPhysicalMemory,
                        info.availablePhysicalMemory, ""})
        .join('\n');
}

static QString shown(const std::vector<NetworkInterface>& adapters) {
    QString all;
    for (const auto& [name, physicalAddress, ipAddress, subnetMask] : adapters)
        all += QStringList({name, physicalAddress, ipAddress, subnetMask, ""}).join('\n');
    return all;
}

class TestQuerySystemInfo : public QObject {
    Q_OBJECT

private slots:
    void readsSystemInfo() {
        const QString text = recording("systeminfo-server.txt");
        const QString all = recording("systeminfo-server.expected");
        const auto upTo = [&](const char* label) { return text.left(text.indexOf(label)); };
        const std::pair<QString, QString> rows[] = {
            {recording("systeminfo-german.txt"), recording("systeminfo-german.expected")},
            {without(text, ".* MB\r\n"), without(all, ".* MB")},
            {without(text, ".*Mhz\r\n"), without(all, ".*Mhz|HPE.*")},
            {without(text, "BIOS.*\r\n"), without(all, "HPE.*")},
            {upTo("BIOS"), without(all, "HPE.*|.* MB")},
            {upTo("Available"), without(all, "51.* MB")},
            {upTo("Product"), without(all, "x64.*|004.*|HPE.*|.*Mhz|.* MB")}};
        for (const auto& [output, expected] : rows) {
            SystemInfo info;
            parseSystemInfo(output, info);
            QCOMPARE(shown(info), expected);
        }
    }

    void readsNetworkInfo() {
        const QString text = recording("ipconfig-desktop.txt");
        const QString all = recording("ipconfig-desktop.expected");
        QCOMPARE(shown(parseNetworkInfo(without(text, ".*Subnet.*\r\n"))), without(all, "255.*"));
        // The line behind a heading is passed over, also if it looks like one.
        QCOMPARE(shown(parseNetworkInfo("1\n2\n3\na:\nb:\n IP Address: 1:9\nc\n\tIP Address: 2")),
                 "a\n\n1\n\nc\n\n\n\n");
    }

    void goesOnWithoutAnswers() {
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        cleanup();
        query.load();  // no stand-ins; Windows has programs of its own
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, 60'000);

        init();
        answer("none", "none");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find memory status");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find CPU status");
        query.load();
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, 60'000);
    }

    // The first query answers last, and still for itself; the third has no time to.
    void queriesOvertakeEachOther() {
        QTest::failOnWarning(QRegularExpression());
        QTemporaryFile hold;
        QVERIFY(hold.open());
        qputenv("PYLON_STANDIN_HOLD", QFile::encodeName(hold.fileName()));
        answer("systeminfo-german", "ipconfig-desktop");
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        qunsetenv("PYLON_STANDIN_HOLD");
        answer("systeminfo-server", "ipconfig-labels-of-xp");
        query.load();
        QVERIFY(!query.isLoaded() && !QuerySystemInfo::isMarlow());
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, 60'000);
        QCOMPARE(shown(query.systemInfo()), recording("systeminfo-server.expected"));
        QCOMPARE(shown(query.network()), recording("ipconfig-labels-of-xp.expected"));

        QTest::ignoreMessage(QtWarningMsg, "Couldn't find CPU status");
        hold.remove();
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, 60'000);
        QVERIFY(query.systemInfo().hostName == "TORWACHE" &&
                query.systemInfo().processors.size() == 2);
        QCOMPARE(shown(query.network()), recording("ipconfig-labels-of-xp.expected") +
                                             recording("ipconfig-desktop.expected"));

        qputenv("PYLON_STANDIN_HOLD", QFile::encodeName(tools_.path()));
        query.load();
    }

    /// Windows looks into the current folder before its own, and only then follows the path.
    void init() {
        for (const char* name : {"systeminfo", "ipconfig"})
            QFile::copy(standIn.filePath(),
                        tools_.filePath(standIn.fileName().replace("standin", name)));
        QDir::setCurrent(tools_.path());
        qputenv("PATH", QFile::encodeName(tools_.path() + QDir::listSeparator()) + path_);
    }

    void cleanup() {
        qputenv("PATH", path_);
        QDir::setCurrent(QCoreApplication::applicationDirPath());
    }

private:
    /// From now on stand-ins print these recordings; nothing where there is none of that name.
    static void answer(const QString& system, const QString& network) {
        qputenv("systeminfo", QFile::encodeName(recordings.filePath(system + ".txt")));
        qputenv("ipconfig", QFile::encodeName(recordings.filePath(network + ".txt")));
    }

    const QTemporaryDir tools_;
    const QByteArray path_ = qgetenv("PATH");
};

QTEST_MAIN(TestQuerySystemInfo)
#include "tst_querysysteminfo.moc"
