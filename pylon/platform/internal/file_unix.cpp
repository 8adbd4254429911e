#include <pylon/platform/internal/file.h>

#include <QtCore/QFile>

#include <sys/stat.h>

#include <cstdio>

namespace pylon::platform {

OpenFileStatus openFileStatus(const QFile& file) {
    struct stat status {};
    if (fstat(file.handle(), &status) != 0)
        return {-1, false};
    return {status.st_size, status.st_nlink > 0};
}

bool replaceFile(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

}  // namespace pylon::platform
