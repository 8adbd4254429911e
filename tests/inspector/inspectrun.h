#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStringList>

struct Run {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

// Runs the program to its end; status -1 if it crashed.
inline Run inspect(const QStringList& arguments, const QByteArray& input = {}) {
    QProcess process;
    process.start(QStringLiteral(INSPECT_PROGRAM), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

inline QByteArray readAll(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
