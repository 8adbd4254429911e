#pragma once

#include <pylon/log/logfile.h>
#include <pylon/log/logmanager.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

/// A run of this test program in a process of its own, which may end as it likes.
struct ChildRun {
    bool endedByItself = false;
    QByteArray log;

    /// Starts the program with "--child", @p what and the path of a log file.
    static ChildRun of(const QString& what) {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("child.log"));
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--child"), what, path});
        process.waitForFinished(60'000);
        QFile log(path);
        return {process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
                log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray("<no log>")};
    }

    /// Runs @p body in such a process with a log file that gathers lines in memory.
    template <class Body>
    static int child(int argc, char** argv, Body body) {
        const QCoreApplication application(argc, argv);
        auto file = QSharedPointer<pylon::plog::LogFile>::create(QString::fromLocal8Bit(argv[3]),
                                                                 QIODevice::Truncate, false);
        pylon::plog::LogManager::instance()->addLogDevice(file);
        body(QByteArray(argv[2]));
        return 0;
    }

    static bool isChild(int argc, char** argv) {
        return argc == 4 && QByteArray(argv[1]) == "--child";
    }
};
