#include <pylon/platform/internal/file.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <windows.h>

namespace pylon::platform {

static std::wstring nativePath(const QString& path) {
    return QDir::toNativeSeparators(path).toStdWString();
}

OpenFileStatus openFileStatus(const QFile& file) {
    // QFile opens without sharing for deletion, so nobody can delete the file meanwhile.
    return {file.size(), true};
}

bool replaceFile(const QString& from, const QString& to) {
    return MoveFileExW(nativePath(from).c_str(), nativePath(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING) != 0;
}

}  // namespace pylon::platform
