#include <pylon/platform/querysysteminfo.h>
#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace pylon;

constexpr int patience = 60'000;

// Absolute with the drive, too, as long as the current folder is the one it was at the start.
const QDir recordings(QFileInfo(RECORDINGS).absoluteFilePath());
const QFileInfo standIn(QFileInfo(STANDIN_PROGRAM).absoluteFilePath());

static QString recording(const QString& name) {
    QFile file(recordings.filePath(name));
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

static QString without(QString text, const char* pattern) {
    return text.remove(QRegularExpression(pattern));
}

/// The values, each with a line feed behind it.
static QString shown(const SystemInfo& info) {
    QStringList all = {info.hostName, info.osName, info.osVersion, info.systemType, info.productId};
    all << info.bios << info.processors.join(", ") << info.totalPhysicalMemory;
    return (all << info.availablePhysicalMemory << "").join('\n');
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
        const QString none(9, '\n'), one = "x Mhz" + none;
        const std::pair<QString, QString> rows[] = {
            {text, all},
            {recording("systeminfo-german.txt"), recording("systeminfo-german.expected")},
            {without(text, ".* MB\r\n"), without(all, ".* MB")},
            {without(text, ".*Mhz\r\n"), without(all, ".*Mhz|HPE.*")},
            {without(text, "BIOS.*\r\n"), without(all, "HPE.*")},
            {upTo("BIOS"), without(all, "HPE.*|.* MB")},
            {upTo("Available"), without(all, "51.* MB")},
            {upTo("Product"), without(all, "x64.*|004.*|HPE.*|.*Mhz|.* MB")},
            {"16 MB:1", none},
            {"-\n[01]:x Mhz:y", one},
            {"-\n 001]:x Mhz", one},
            {"-\n [01:x Mhz", one},
            {"-\n []:x Mhz", one}};
        for (const auto& [output, expected] : rows) {
            SystemInfo info;
            const SystemInfoFindings findings = parseSystemInfo(output, info);
            QCOMPARE(shown(info), expected);
            QCOMPARE(findings.memory, !info.totalPhysicalMemory.isEmpty());
            QCOMPARE(findings.processors, !info.processors.isEmpty());
            parseSystemInfo("no values", info);
            QCOMPARE(shown(info), expected);
        }
    }

    void readsNetworkInfo() {
        const QString text = recording("ipconfig-desktop.txt");
        const QString all = recording("ipconfig-desktop.expected");
        const QString start = text.left(text.indexOf("Ethernet"));
        const std::pair<QString, QString> rows[] = {
            {text, all},
            {recording("ipconfig-labels-of-xp.txt"), recording("ipconfig-labels-of-xp.expected")},
            {without(text, ".*Subnet.*\r\n"), without(all, "255.*")},
            {start + "a:\nb:\n IP Address: 1\nc: x\n\r\n\tSubnet Mask: 2\nd",
             "a\n\n1\n\nc\n\n\n\nd\n\n\n\n"},
            {start + "a:\n IP Address: 1\n Subnet Mask: 2", "a\n\n\n2\n"},
            {"1\n2\n3\na :\n \nb\nc", "a\n\n\n\nc\n\n\n\n"}};
        for (const auto& [output, expected] : rows)
            QCOMPARE(shown(parseNetworkInfo(output)), expected);
    }

    // Comes before there is a stand-in for ipconfig: Windows has its own, other systems have none.
    void goesOnWithoutAnswers() {
        const QTemporaryDir nothing;
        useStandIns({"systeminfo"});
        answer(nothing, "none", "none");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find memory status");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find CPU status");
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, patience);
        QCOMPARE(query.network().empty(), QStandardPaths::findExecutable("ipconfig").isEmpty());

        cleanup();
        query.load();  // now there is no stand-in at all
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, patience);
        QVERIFY(!QuerySystemInfo::isMarlow());
    }

    // The first query answers last, and still for itself; the third has no time to.
    void queriesOvertakeEachOther() {
        QTest::failOnWarning(QRegularExpression("QProcess"));
        const QTemporaryDir slow, quick;
        useStandIns({"systeminfo", "ipconfig"});
        answer(slow, "systeminfo-german", "ipconfig-desktop");
        QFile::copy(standIn.filePath(), slow.filePath("hold"));
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        answer(quick, "systeminfo-server", "ipconfig-labels-of-xp");
        query.load();
        QVERIFY(!query.isLoaded());
        QTRY_VERIFY_WITH_TIMEOUT(query.isLoaded(), patience);
        QCOMPARE(loaded.size(), 1);
        QCOMPARE(shown(query.systemInfo()), recording("systeminfo-server.expected"));
        QCOMPARE(shown(query.network()), recording("ipconfig-labels-of-xp.expected"));

        QTest::ignoreMessage(QtWarningMsg, "Couldn't find CPU status");
        QFile::rename(slow.filePath("hold"), quick.filePath("hold"));
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, patience);
        QCOMPARE(query.systemInfo().hostName, "TORWACHE");
        QCOMPARE(query.systemInfo().processors.size(), 2);
        QCOMPARE(shown(query.network()), recording("ipconfig-labels-of-xp.expected") +
                                             recording("ipconfig-desktop.expected"));

        query.load();
        QTRY_COMPARE_WITH_TIMEOUT(QDir(quick.path()).entryList({"*.up"}).size(), 2, patience);
    }

    void cleanup() {
        qputenv("PATH", path_);
        QDir::setCurrent(QCoreApplication::applicationDirPath());
    }

private:
    /// Windows looks into the current folder before its own, and only then follows the path.
    void useStandIns(const QStringList& names) {
        for (const QString& name : names)
            QFile::copy(standIn.filePath(),
                        tools_.filePath(standIn.fileName().replace("standin", name)));
        QDir::setCurrent(tools_.path());
        qputenv("PATH", QFile::encodeName(tools_.path() + QDir::listSeparator()) + path_);
    }

    /// From now on stand-ins print these recordings; none where there is none of that name.
    static void answer(const QTemporaryDir& dir, const QString& system, const QString& network) {
        QFile::copy(recordings.filePath(system + ".txt"), dir.filePath("systeminfo.txt"));
        QFile::copy(recordings.filePath(network + ".txt"), dir.filePath("ipconfig.txt"));
        qputenv("PYLON_STANDIN", QFile::encodeName(dir.path()));
    }

    const QTemporaryDir tools_;
    const QByteArray path_ = qgetenv("PATH");
};

QTEST_MAIN(TestQuerySystemInfo)
#include "tst_querysysteminfo.moc"
