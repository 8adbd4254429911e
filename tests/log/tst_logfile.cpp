#include "../files.h"
#include "recorder.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <thread>

using namespace pylon::plog;

namespace {

constexpr auto limit = LogFile::minMaxFileSize;

void write(LogFile& file, const Messages& messages) {
    for (const QByteArray& message : messages)
        file.write(LogItem(Info, Network, 256, "Network", "f", "f", nullptr, {}, message));
}

/// The messages of the whole lines of a log, in order; "?" for a line that is none.
Messages messages(const QString& path) {
    Messages result;
    for (const QByteArray& line : readAll(path).split('\n'))
        result += line.contains("[ INFO][   Network]") ? line.mid(line.indexOf(": ") + 2) : "?";
    return result.mid(0, result.size() - 1);
}

/// What is in the log after these were written to it.
Messages logged(LogFile& file, const Messages& added) {
    write(file, added);
    return messages(file.fileName());
}

Messages numbers(int from, int to) {
    Messages result;
    for (; from < to; ++from)
        result += QByteArray::number(from).leftJustified(300);
    return result;
}

}  // namespace

class TestLogFile : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> dir;
    QString path, older, other;
    const QByteArray banner = LogManager::instance()->logStartupHeader().toUtf8();

    std::unique_ptr<LogFile> open(QIODevice::OpenMode mode = QIODevice::Append, bool flush = true) {
        auto file = std::make_unique<LogFile>(path, mode, flush);
        file->setMaxFileSize(0);
        return file;
    }

private slots:
    void init() {
        dir = std::make_unique<QTemporaryDir>();
        path = dir->filePath("app.log");
        older = dir->filePath("app-1.log");
        other = dir->filePath("other");
        QDir().mkdir(other);
    }

    void linesGoOutInBatches() {
        const auto file = open(QIODevice::Truncate, false);
        write(*file, {""});
        file->flush();
        const qint64 shortest = file->fileSize();
        write(*file, {QByteArray(500 - shortest, 'x')});
        QCOMPARE(file->fileSize(), shortest);
        file->flush();
        write(*file, {QByteArray(501 - shortest, 'y')});
        QCOMPARE(file->fileSize(), shortest + 1001);
        write(*file, {"z"});
        QTRY_COMPARE_WITH_TIMEOUT(messages(path).constLast(), "z", 30'000);
    }

    void openModesAndLimits() {
        QVERIFY(writeAll(path, "before\n"));
        write(*open(QIODevice::Append), {"appended"});
        const QRegularExpression whole(
            "^before\n\\[.*: appended\n#{34} PylonSDK .* Shutdown .* #{31}$");
        QVERIFY(whole.match(readAll(path)).hasMatch());
        LogFile file(path, QIODevice::WriteOnly, true);
        QVERIFY(file.fileSize() == 0 && file.maxFileSize() == 104'857'600);
        file.setMaxFileSize(2'000'000'000);
        QVERIFY(file.maxFileSize() == 1'048'576'000 && limit == 1'048'576);
    }

    // With batches, what waits in memory goes behind the banner of the new file.
    void rotation() {
        QMap<QString, QString> names = {{"app.log", "app-1.log"}, {"a.2024.log", "a-1.2024.log"}};
        if (QDir::separator() == u'/')  // Windows drops a dot at the end
            names["app"] = "app-1.";
        for (auto name = names.cbegin(); name != names.cend(); ++name) {
            init();
            path = dir->filePath(name.key());
            older = dir->filePath(name.value());
            QVERIFY(writeAll(older, "oldest"));
            QVERIFY(writeAll(path, QByteArray(limit, 'a')));
            const auto file = open(QIODevice::Append, false);
            write(*file, numbers(0, 1));
            file->flush();
            QCOMPARE(readAll(older), "oldest");
            write(*file, numbers(1, 2));
            QCOMPARE(messages(older), numbers(0, 1));
            write(*file, numbers(2, 6000));
            file->flush();
            Messages kept = messages(older) + messages(path);
            kept.removeAll("?");
            QVERIFY(kept.size() > 2600);
            QCOMPARE(kept, numbers(6000 - int(kept.size()), 6000));
            QVERIFY(readAll(path).startsWith(banner + '['));
            QCOMPARE(QDir(dir->path()).entryList(QDir::Files).size(), 2);
            file->setRotateFile(false);
            QVERIFY(logged(*file, numbers(0, 3000)).size() > 3000);
        }
    }

    // What is in the way at the new place is deleted, unless, by way of a link, it is the log.
    void changeOfFolder() {
        for (const bool isLink : {false, true}) {
            init();
            QVERIFY(writeAll(other + "/app.log", "in the way"));
            if (isLink && (QDir::separator() != u'/' || !QFile::link(other + "/app.log", path)))
                return;  // no symbolic links here
            const auto file = QSharedPointer<LogFile>::create(path, QIODevice::Append, true);
            LogManager::instance()->addLogDevice(file);
            setMaxFileSize(2'000'000);
            QCOMPARE(file->maxFileSize(), 2'000'000);
            write(*file, {"first"});
            for (const QString& folder : {dir->path(), dir->path() + "/./", older, path, QString()})
                setFileDevicePath(folder);
            QCOMPARE(file->fileName(), path);
            setFileDevicePath(other);
            QCOMPARE(logged(*file, {"second"}).last(2), Messages({"first", "second"}));
            QCOMPARE(file->fileName(), other + QDir::separator() + "app.log");
            QCOMPARE(QFile::exists(path), isLink);
            LogManager::instance()->clearLogDevices();
        }
    }

    void othersCutAndDelete() {
        path = dir->filePath("missing/app.log");
        const auto file = open();
        write(*file, {"dropped"});
        file->changeLogDir(other);
        QCOMPARE(logged(*file, {"first"}), Messages{"first"});
        path = file->fileName();
        QVERIFY(QFile::resize(path, 0));
        QCOMPARE(logged(*file, {"whole"}), Messages{"whole"});
        if (!QFile::remove(path))
            QSKIP("nobody can delete a file that is open here");
        QCOMPARE(logged(*file, {"second"}), Messages{"second"});
        QVERIFY(QDir(other).removeRecursively());
        write(*file, {"waits", "dropped"});
        QDir().mkdir(other);
        QTRY_VERIFY_WITH_TIMEOUT((write(*file, {"back"}), QFile::exists(path)), 30'000);
        QCOMPARE(messages(path).mid(0, 2), Messages({"waits", "back"}));
    }

    void olderFileCannotBeReplaced() {
        QVERIFY(QDir().mkpath(older + "/occupied"));
        QVERIFY(writeAll(path, QByteArray(limit + 1, 'a') + '\n'));
        const auto file = open();
        QCOMPARE(logged(*file, {"0"}), Messages({"?", "0"}));
        QVERIFY(QDir(older).removeRecursively());
        QTRY_VERIFY_WITH_TIMEOUT((write(*file, {"later"}), QFileInfo(older).isFile()), 30'000);
        QCOMPARE(messages(path).constLast(), "later");
    }

    // Warnings of Qt about the file neither come back to the device nor wait for it.
    void warnsFromInside() {
        const QtMessageHandler handlerOfQtTest =
            qInstallMessageHandler([](auto, auto&, auto&) { flushFileDevices(); });
        installQtMessageHandler();
        const auto file = QSharedPointer<LogFile>::create("", QIODevice::Append, true);
        LogManager::instance()->addLogDevice(file);
        setFileDevicePath(other);
        QVERIFY(!file->isOpen());
        LogManager::instance()->clearLogDevices();
        removeQtMessageHandler();
        qInstallMessageHandler(handlerOfQtTest);
    }

    // The timer stays in the thread that made the device.
    void endsOnAnotherThread() {
        auto file = open(QIODevice::Truncate, false);
        write(*file, {"first"});
        std::thread([&] { file = open(QIODevice::Append, false); }).join();
        write(*file, {"second"});
        file.reset();
        QCOMPARE(messages(path), Messages({"first", "second"}));
    }

    // Wants a small volume of its own: PYLON_SMALL_DISK names a folder on one of a few MiB.
    void diskFillsAndEmpties() {
        const QString disk = qEnvironmentVariable("PYLON_SMALL_DISK");
        if (disk.isEmpty())
            QSKIP("PYLON_SMALL_DISK is not set");
        path = disk + "/app.log";
        const auto file = open(QIODevice::Truncate);
        write(*file, numbers(0, 1));
        QFile ballast(disk + "/ballast");
        QVERIFY(ballast.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        while (ballast.write(QByteArray(1000, 'x')) > 0) {
        }
        const QByteArray large = "too much to keep" + QByteArray(100'000, ' ');
        write(*file, numbers(1, 1000) + Messages(100, large));
        QVERIFY(ballast.remove());
        const Messages kept = logged(*file, {"last"});
        QVERIFY(kept.size() < 1100);
        QCOMPARE(kept, numbers(0, 1000) + Messages(kept.size() - 1001, large) + Messages{"last"});
    }
};

QTEST_GUILESS_MAIN(TestLogFile)
#include "tst_logfile.moc"
