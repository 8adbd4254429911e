#include <pylon/log/logfile.h>
#include <pylon/log/logmanager.h>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <memory>

using namespace pylon::plog;

namespace {

constexpr auto rotationLimit = LogFile::minMaxFileSize;

LogItem item(const QByteArray& message) {
    return LogItem(Info, Network, 256, "Network", "f", "f", nullptr, {}, message);
}

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<no file>");
}

void create(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

/// The messages of the whole lines of a log, in order; "?" for a line that is none.
QList<QByteArray> messages(const QByteArray& log) {
    QList<QByteArray> result;
    QList<QByteArray> lines = log.split('\n');
    lines.removeLast();
    for (const QByteArray& line : std::as_const(lines)) {
        const qsizetype at = line.indexOf(": ");
        result.append(line.contains("[ INFO][   Network]") ? line.mid(at + 2) : QByteArray("?"));
    }
    return result;
}

}  // namespace

class TestLogFile : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir;
    QString path;

    std::unique_ptr<LogFile> open(QIODevice::OpenMode mode = QIODevice::Append,
                                  bool flushEach = true) {
        auto file = std::make_unique<LogFile>(path, mode, flushEach);
        file->setMaxFileSize(0);
        return file;
    }

private slots:
    void init() {
        dir = std::make_unique<QTemporaryDir>();
        path = dir->filePath(QStringLiteral("app.log"));
    }

    void linesGoOutInBatches() {
        const auto file = open(QIODevice::Truncate, false);
        const qsizetype prefix = item("").toCString().size() + 1;
        file->write(item(QByteArray(500 - prefix, 'x')));
        QCOMPARE(file->fileSize(), 0);
        file->flush();
        QCOMPARE(file->fileSize(), 500);
        file->write(item(QByteArray(501 - prefix, 'y')));
        QCOMPARE(file->fileSize(), 1001);
        file->write(item("z"));
        QTRY_VERIFY_WITH_TIMEOUT(content(path).endsWith(": z\n"), 30'000);
        file->write(item("flushed"));
        file->flush();
        QVERIFY(content(path).endsWith(": flushed\n"));
    }

    void openModes() {
        create(path, "before\n");
        open(QIODevice::Append)->write(item("appended"));
        const QByteArray appended = content(path);
        QVERIFY(appended.startsWith("before\n["));
        QVERIFY(
            appended.contains(": appended\n################################## PylonSDK {6.52.2}"));
        QVERIFY(appended.endsWith(" ###############################"));
        open(QIODevice::WriteOnly)->write(item("new"));
        QVERIFY(content(path).startsWith('['));
    }

    void limitsAreClamped() {
        const auto file = QSharedPointer<LogFile>::create(path, QIODevice::Append, true);
        QCOMPARE(file->maxFileSize(), 104'857'600);
        QVERIFY(file->isRotateEnabled());
        LogManager::instance()->addLogDevice(file);
        for (const auto& [size, kept] : {std::pair<qint64, qint64>{0, 1'048'576},
                                         {2'000'000'000, 1'048'576'000},
                                         {2'000'000, 2'000'000}}) {
            file->setMaxFileSize(5'000'000);
            setMaxFileSize(size);
            QCOMPARE(file->maxFileSize(), kept);
        }
        QVERIFY(content(path).startsWith("\n########"));
        const QString other = dir->filePath(QStringLiteral("other"));
        setFileDevicePath(other);
        QCOMPARE(file->fileName(), path);
        QVERIFY(QDir().mkdir(other));
        setFileDevicePath(other);
        QCOMPARE(QFileInfo(file->fileName()).absolutePath(), other);
        LogManager::instance()->clearLogDevices();
    }

    void rotation_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("older");
        QTest::newRow("plain") << "app.log"
                               << "app-1.log";
        QTest::newRow("first dot counts") << "app.2024.log"
                                          << "app-1.2024.log";
        if (QDir::separator() == u'/')  // Windows drops a dot at the end
            QTest::newRow("no suffix") << "app"
                                       << "app-1.";
    }

    void rotation() {
        QFETCH(QString, name);
        QFETCH(QString, older);
        path = dir->filePath(name);
        const QString olderPath = dir->filePath(older);
        create(olderPath, "oldest");
        create(path, QByteArray(rotationLimit, 'a'));
        const auto file = open();
        file->write(item("fits the limit exactly"));
        QCOMPARE(content(olderPath), "oldest");
        file->write(item("in the new file"));
        QVERIFY(content(olderPath).startsWith("aaa"));
        QVERIFY(content(olderPath).endsWith(": fits the limit exactly\n"));
        const QByteArray banner = LogManager::instance()->logStartupHeader().toUtf8();
        QVERIFY(content(path).startsWith(banner + '['));
        QVERIFY(content(path).endsWith(": in the new file\n"));
        file->write(item(QByteArray(rotationLimit, 'b')));
        file->write(item("third"));
        QVERIFY(content(olderPath).startsWith(banner));
        QCOMPARE(QDir(dir->path()).entryList(QDir::Files).size(), 2);
        file->setRotateFile(false);
        file->write(item(QByteArray(rotationLimit, 'c')));
        file->write(item("not rotated"));
        QVERIFY(content(path).contains(": third\n"));
    }

    // With batches, what waits in memory goes behind the banner of the new file.
    void noGapWhenRotating() {
        const auto file = open(QIODevice::Truncate, false);
        const int lines = 20'000;
        for (int i = 0; i < lines; ++i)
            file->write(item(QByteArray::number(i)));
        file->flush();
        const QByteArray banner = LogManager::instance()->logStartupHeader().toUtf8();
        const QByteArray newer = content(path);
        QVERIFY(newer.startsWith(banner));
        const auto kept =
            messages(content(dir->filePath(QStringLiteral("app-1.log"))).replace(banner, "") +
                     newer.mid(banner.size()));
        QVERIFY(kept.size() > 5000);
        for (int i = 0; i < kept.size(); ++i)
            QCOMPARE(kept[i].toInt(), lines - kept.size() + i);
    }

    void changeOfFolder() {
        const QString other = dir->filePath(QStringLiteral("other"));
        const auto file = open();
        file->write(item("first"));
        const QStringList useless = {dir->path(), dir->path() + QStringLiteral("/./"), other, path,
                                     QString()};
        for (const QString& folder : useless) {
            file->changeLogDir(folder);
            QCOMPARE(file->fileName(), path);
        }
        QVERIFY(QDir().mkdir(other));
        create(other + QStringLiteral("/app.log"), "in the way");
        file->changeLogDir(other);
        QCOMPARE(file->fileName(), other + QDir::separator() + QStringLiteral("app.log"));
        file->write(item("second"));
        QCOMPARE(messages(content(file->fileName())), (QList<QByteArray>{"first", "second"}));
        QVERIFY(!QFile::exists(path));
    }

    // By way of links the file at the new place may be the log itself.
    void logIsNotDeletedByLinks() {
        const QString other = dir->filePath(QStringLiteral("other"));
        QVERIFY(QDir().mkdir(other));
        create(other + QStringLiteral("/app.log"), "");
        if (QDir::separator() != u'/' || !QFile::link(other + QStringLiteral("/app.log"), path))
            QSKIP("no symbolic links here");
        const auto file = open();
        file->write(item("first"));
        file->changeLogDir(other);
        file->write(item("second"));
        QCOMPARE(messages(content(other + QStringLiteral("/app.log"))),
                 (QList<QByteArray>{"first", "second"}));
    }

    void fileIsCutByOthers() {
        const auto file = open();
        file->write(item("lost"));
        QVERIFY(QFile::resize(path, 0));
        file->write(item("whole"));
        QCOMPARE(messages(content(path)), QList<QByteArray>{"whole"});
    }

    void fileAndFolderAreDeleted() {
        const QString folder = dir->filePath(QStringLiteral("folder"));
        QVERIFY(QDir().mkdir(folder));
        path = folder + QStringLiteral("/app.log");
        const auto file = open();
        file->write(item("lost"));
        if (!QFile::remove(path))
            QSKIP("nobody can delete a file that is open here");
        file->write(item("second"));
        QCOMPARE(messages(content(path)), QList<QByteArray>{"second"});
        QVERIFY(QDir(folder).removeRecursively());
        file->write(item("waits"));
        file->write(item("dropped"));
        QVERIFY(QDir().mkdir(folder));
        QTRY_VERIFY_WITH_TIMEOUT((file->write(item("back")), QFile::exists(path)), 30'000);
        QCOMPARE(messages(content(path)).mid(0, 2), (QList<QByteArray>{"waits", "back"}));
    }

    void olderFileCannotBeReplaced() {
        const QString older = dir->filePath(QStringLiteral("app-1.log"));
        QVERIFY(QDir().mkpath(older + QStringLiteral("/occupied")));
        create(path, QByteArray(rotationLimit + 1, 'a') + '\n');
        const auto file = open();
        for (int i = 0; i < 3; ++i)
            file->write(item(QByteArray::number(i)));
        QCOMPARE(messages(content(path)), (QList<QByteArray>{"?", "0", "1", "2"}));
        QVERIFY(QDir(older).removeRecursively());
        QTRY_VERIFY_WITH_TIMEOUT((file->write(item("later")), QFileInfo(older).isFile()), 30'000);
        QVERIFY(content(path).endsWith(": later\n"));
    }

    void diskIsFull() {
        path = QStringLiteral("/dev/full");
        if (!QFile::exists(path))
            QSKIP("no device that is always full");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("sequential device")));
        const auto file = open(QIODevice::Append, false);
        const LogItem large = item(QByteArray(100'000, 'x'));
        for (int i = 0; i < 100; ++i)
            file->write(large);
        file->flush();
    }

    // Wants a small volume of its own: PYLON_SMALL_DISK names a folder on one of a few MiB.
    void diskFillsAndEmpties() {
        const QString disk = qEnvironmentVariable("PYLON_SMALL_DISK");
        if (disk.isEmpty())
            QSKIP("PYLON_SMALL_DISK is not set");
        path = disk + QStringLiteral("/app.log");
        const QString ballast = disk + QStringLiteral("/ballast");
        const auto file = open(QIODevice::Truncate);
        file->write(item("0"));
        QFile filler(ballast);
        QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (filler.write(QByteArray(1000, 'x')) > 0) {
        }
        for (int i = 1; i < 1000; ++i)
            file->write(item(QByteArray::number(i)));
        for (int i = 0; i < 100; ++i)
            file->write(item("too much to keep" + QByteArray(100'000, ' ')));
        filler.close();
        QVERIFY(QFile::remove(ballast));
        file->write(item("last"));
        const auto kept = messages(content(path));
        for (int i = 0; i < 1000; ++i)
            QCOMPARE(kept[i].toInt(), i);
        for (qsizetype i = 1000; i < kept.size() - 1; ++i)
            QVERIFY(kept[i].startsWith("too much"));
        QVERIFY(kept.size() < 1100);
        QCOMPARE(kept.constLast(), "last");
    }

    void fileCannotBeOpened() {
        path = dir->filePath(QStringLiteral("missing/app.log"));
        const auto file = open();
        file->write(item("dropped"));
        file->flush();
        QCOMPARE(file->fileSize(), 0);
        file->changeLogDir(dir->path());
        file->write(item("kept"));
        QCOMPARE(messages(content(dir->filePath(QStringLiteral("app.log")))),
                 QList<QByteArray>{"kept"});
    }
};

QTEST_GUILESS_MAIN(TestLogFile)
#include "tst_logfile.moc"
