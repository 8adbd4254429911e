#include <pylon/platform/internal/file.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <windows.h>

namespace pylon::platform {

static std::wstring nativePath(const QString& path) {
    return QDir::toNativeSeparators(path).toStdWString();
}

qint64 appendToFile(QFile& file, const char* data, qint64 size) {
    // The position is our own: it does not follow when somebody else writes or cuts.
    if (file.pos() != file.size())
        file.seek(file.size());
    return file.write(data, size);
}

qint64 openFileSize(const QFile& file) {
    return file.size();
}

bool isLinked(const QFile&) {
    // QFile opens without sharing for deletion, so nobody can delete the file meanwhile.
    return true;
}

bool replaceFile(const QString& from, const QString& to) {
    return MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING) != 0;
}

}  // namespace pylon::platform
