#include <pylon/platform/querysysteminfo.h>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace pylon;

namespace {

constexpr int patience = 60'000;

// Absolute with the drive, too, as long as the current folder is the one it was at the start.
const QDir recordings(QFileInfo(QStringLiteral(RECORDINGS)).absoluteFilePath());
const QString standIn = QFileInfo(QStringLiteral(STANDIN_PROGRAM)).absoluteFilePath();

QString recording(const char* name) {
    QFile file(recordings.filePath(QLatin1String(name) + ".txt"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString without(const QString& text, const char* lines) {
    const QRegularExpression line(QStringLiteral("[^\n]*%1[^\n]*\n").arg(QLatin1String(lines)));
    return QString(text).remove(line);
}

QStringList values(const SystemInfo& info) {
    return {info.hostName,
            info.osName,
            info.osVersion,
            info.systemType,
            info.productId,
            info.bios,
            info.processors.join(u'|'),
            info.totalPhysicalMemory,
            info.availablePhysicalMemory};
}

QStringList values(const std::vector<NetworkInterface>& adapters) {
    QStringList all;
    for (const NetworkInterface& adapter : adapters)
        all << adapter.name << adapter.physicalAddress << adapter.ipAddress << adapter.subnetMask;
    return all;
}

const QString xeon = QStringLiteral("Intel64 Family 6 Model 85 Stepping 4 GenuineIntel ~2095 Mhz");
const QStringList desktop = {"GATE-VIEWER",
                             "Microsoft Windows 10 Pro",
                             "10.0.19045 N/A Build 19045",
                             "x64-based PC",
                             "00330-80112-18556-AA475",
                             "Dell Inc. 1.27.0, 6/6/2023",
                             "Intel64 Family 6 Model 158 Stepping 10 GenuineIntel ~3192 Mhz",
                             "16,220 MB",
                             "9,874 MB"};
const QStringList desktopAdapter = {"Ethernet adapter Ethernet", "8C-04-BA-1F-22-C3", "",
                                    "255.255.255.0"};

/// The desktop's values with those at these places missing.
QStringList desktopBut(std::initializer_list<int> missing) {
    QStringList list = desktop;
    for (const int place : missing)
        list[place] = QString();
    return list;
}

/// A folder with the answers of the tools, which the stand-ins give from now on.
struct Answers {
    Answers(const QString& system, const QString& network) {
        QFile::copy(recordings.filePath(system), path("systeminfo.txt"));
        QFile::copy(recordings.filePath(network), path("ipconfig.txt"));
        qputenv("PYLON_STANDIN", QFile::encodeName(dir.path()));
    }
    QString path(const char* name) const { return dir.filePath(QLatin1String(name)); }
    void hold() const { QVERIFY(QFile(path("hold")).open(QIODevice::WriteOnly)); }

    QTemporaryDir dir;
};

}  // namespace

class TestQuerySystemInfo : public QObject {
    Q_OBJECT

private slots:
    void init() {
        path_ = qgetenv("PATH");
        tools_.reset(new QTemporaryDir);
    }

    void cleanup() {
        qputenv("PATH", path_);
        QDir::setCurrent(QCoreApplication::applicationDirPath());
        // Programs that have just ended may be in use for a moment longer.
        QTRY_VERIFY_WITH_TIMEOUT(QDir(tools_->path()).removeRecursively(), patience);
    }

    void readsSystemInfo_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<bool>("memory");
        QTest::addColumn<bool>("processors");
        const QString text = recording("systeminfo-desktop");
        const QStringList nothing(9);
        const auto upTo = [&](const char* label) { return text.left(text.indexOf(label)); };

        QTest::newRow("desktop") << text << desktop << true << true;
        QTest::newRow("two processors") << recording("systeminfo-server")
                                        << QStringList{"RECORDER-02",
                                                       "Microsoft Windows Server 2019 Standard",
                                                       "10.0.17763 N/A Build 17763",
                                                       "x64-based PC",
                                                       "00429-00521-62775-AA801",
                                                       "HPE U30, 15/04/2021",
                                                       xeon + u'|' + xeon,
                                                       "65,233 MB",
                                                       "51,870 MB"}
                                        << true << true;
        QTest::newRow("German") << recording("systeminfo-german")
                                << QStringList{"TORWACHE",
                                               "Microsoft Windows 11 Pro",
                                               "10.0.22631 Nicht zutreffend Build 22631",
                                               "x64-based PC",
                                               "00330-51876-02934-AAOEM",
                                               "",
                                               "",
                                               "16.143 MB",
                                               "7.802 MB"}
                                << true << false;
        QTest::newRow("no memory") << without(text, " MB") << desktopBut({7, 8}) << false << true;
        QTest::newRow("no processor")
            << without(text, "~3192 Mhz") << desktopBut({5, 6}) << true << false;
        QTest::newRow("no BIOS") << without(text, "BIOS") << desktopBut({5}) << true << true;
        QTest::newRow("ends in the processors")
            << upTo("BIOS") << desktopBut({5, 7, 8}) << false << true;
        QTest::newRow("ends in the memory") << upTo("Available") << desktopBut({8}) << true << true;
        QTest::newRow("ends early")
            << upTo("Product") << desktopBut({3, 4, 5, 6, 7, 8}) << false << false;
        QTest::newRow("no line but the first")
            << QStringLiteral("16 MB:1") << nothing << false << false;
        QTest::newRow("empty") << QString() << nothing << false << false;
        for (const char* line : {"[01]: x Mhz", " [01: x Mhz", " []: x Mhz", " [1]: x MHz", " "})
            QTest::newRow(line) << u'\n' + QLatin1String(line) << nothing << false << false;
    }

    void readsSystemInfo() {
        QFETCH(QString, text);
        SystemInfo info;
        const SystemInfoFindings findings = parseSystemInfo(text, info);
        if (text.size() < 20)
            info.hostName.clear();  // whatever the line is
        QTEST(values(info), "expected");
        QTEST(findings.memory, "memory");
        QTEST(findings.processors, "processors");
    }

    void readsNetworkInfo_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        const QString text = recording("ipconfig-desktop");
        const QString head = text.left(text.indexOf("Ethernet adapter"));

        QTest::newRow("old labels") << recording("ipconfig-labels-of-xp")
                                    << QStringList{"Ethernet adapter Local Area Connection",
                                                   "00-0C-29-3E-5B-71",
                                                   "192.0.2.17",
                                                   "255.255.255.0",
                                                   "Ethernet adapter Wireless Network Connection",
                                                   "00-22-FA-91-0D-4E",
                                                   "",
                                                   ""};
        QTest::newRow("new labels") << text << desktopAdapter;
        QTest::newRow("no mask") << without(text, "Subnet")
                                 << QStringList{desktopAdapter[0], desktopAdapter[1], "", ""};
        QTest::newRow("close together")
            << head + "a:\r\nb:\r\n IP Address: 1\r\nc: x\r\n\r\n\tSubnet Mask: 2\r\nd"
            << QStringList{"a", "", "1", "", "c", "", "", "", "d", "", "", ""};
        QTest::newRow("detail right behind the heading")
            << head + "a:\n IP Address: 1\n Subnet Mask: 2" << QStringList{"a", "", "", "2"};
        QTest::newRow("no adapter") << head << QStringList();
        QTest::newRow("two lines") << QStringLiteral("a:\nb:") << QStringList();
        QTest::newRow("empty") << QString() << QStringList();
    }

    void readsNetworkInfo() {
        QFETCH(QString, text);
        QTEST(values(parseNetworkInfo(text)), "expected");
    }

    void asksBothTools() {
        useStandIns({"systeminfo", "ipconfig"});
        const Answers answers("systeminfo-desktop.txt", "ipconfig-desktop.txt");
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        QVERIFY(!query.isLoaded());
        QTRY_VERIFY_WITH_TIMEOUT(query.isLoaded(), patience);
        QCOMPARE(loaded.size(), 1);
        QCOMPARE(values(query.systemInfo()), desktop);
        QCOMPARE(values(query.network()), desktopAdapter);
    }

    void warnsOfWhatIsMissing() {
        useStandIns({"systeminfo", "ipconfig"});
        const Answers answers("none.txt", "none.txt");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find memory status");
        QTest::ignoreMessage(QtWarningMsg, "Couldn't find CPU status");
        QuerySystemInfo query;
        query.load();
        QTRY_VERIFY_WITH_TIMEOUT(query.isLoaded(), patience);
        QVERIFY(query.network().empty());
    }

    void goesOnWithoutATool() {
        useStandIns({"systeminfo"});
        // There may be another one elsewhere.
        QFile broken(tool("ipconfig"));
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write("no program") > 0);
        broken.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        broken.close();
        const Answers answers("systeminfo-desktop.txt", "ipconfig-desktop.txt");
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, patience);
        QCOMPARE(values(query.systemInfo()), desktop);
        QVERIFY(query.network().empty());
    }

    // The first query answers last, and still for itself.
    void oneQueryOvertakesAnother() {
        useStandIns({"systeminfo", "ipconfig"});
        const Answers slow("systeminfo-desktop.txt", "ipconfig-desktop.txt");
        slow.hold();
        QuerySystemInfo query;
        QSignalSpy loaded(&query, &QuerySystemInfo::loaded);
        query.load();
        const Answers quick("systeminfo-server.txt", "ipconfig-labels-of-xp.txt");
        query.load();
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 1, patience);
        QCOMPARE(query.systemInfo().hostName, "RECORDER-02");
        QCOMPARE(query.network().size(), 2u);
        QFile::remove(slow.path("hold"));
        QTRY_COMPARE_WITH_TIMEOUT(loaded.size(), 3, patience);
        QCOMPARE(query.systemInfo().hostName, "GATE-VIEWER");
        QCOMPARE(query.systemInfo().processors, QStringList({xeon, xeon, desktop[6]}));
        QCOMPARE(values(query.network()).mid(8), desktopAdapter);
    }

    void endsWhileToolsRun() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
        useStandIns({"systeminfo", "ipconfig"});
        const Answers answers("none.txt", "none.txt");
        answers.hold();
        QuerySystemInfo query;
        query.load();
        for (const char* sign : {"systeminfo.up", "ipconfig.up"})
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(answers.path(sign)), patience);
    }

    void asksTheToolsOfTheSystem() {
        if (QStandardPaths::findExecutable(QStringLiteral("ipconfig")).isEmpty())
            QSKIP("not on Windows");
        QuerySystemInfo query;
        query.load();
        QTRY_VERIFY_WITH_TIMEOUT(query.isLoaded(), patience);
        QVERIFY(!query.network().empty());
        QVERIFY(!query.network().front().name.isEmpty());
    }

    void knowsTheReleaseFile() {
        QCOMPARE(QuerySystemInfo::isMarlow(), QFile::exists("/etc/marlow-release"));
    }

private:
    QString tool(const QString& name) const {
        const QString suffix = QFileInfo(QCoreApplication::applicationFilePath()).suffix();
        return tools_->filePath(suffix.isEmpty() ? name : name + u'.' + suffix);
    }

    /// Windows looks into the current folder before its own, and only then follows the path.
    void useStandIns(const QStringList& names) {
        for (const QString& name : names)
            QVERIFY(QFile::copy(standIn, tool(name)));
        QDir::setCurrent(tools_->path());
        qputenv("PATH",
                QFile::encodeName(tools_->path()) + QDir::listSeparator().toLatin1() + path_);
    }

    QByteArray path_;
    QScopedPointer<QTemporaryDir> tools_;
};

QTEST_MAIN(TestQuerySystemInfo)
#include "tst_querysysteminfo.moc"
