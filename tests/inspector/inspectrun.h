#pragma once

#include "../files.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QProcess>
#include <QtCore/QStringList>

#include <algorithm>

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

// The first of the texts that the output does not have: "=text" is all of it, "!text" must not be
// in it, "3*text" must be three times, any other at least once. Nothing if the output is as wanted.
inline QByteArray missingIn(const QByteArray& output, const QByteArrayList& texts) {
    for (const QByteArray& text : texts) {
        bool isCounted = false;
        const qsizetype star = std::max<qsizetype>(text.indexOf('*'), 0);
        const qsizetype count = text.first(star).toLongLong(&isCounted);
        const bool fits = text.startsWith('=')   ? output == text.sliced(1)
                          : text.startsWith('!') ? !output.contains(text.sliced(1))
                          : isCounted            ? output.count(text.sliced(star + 1)) == count
                                                 : output.contains(text);
        if (!fits)
            return "wanted: " + text + "\nfound: " + output;
    }
    return {};
}
