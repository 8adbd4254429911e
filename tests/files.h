#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>

/// Helpers for the files of tests.

/// What is in a file; null if it cannot be opened.
inline QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeAll(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}
