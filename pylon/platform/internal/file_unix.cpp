#include <pylon/platform/internal/file.h>

#include <QtCore/QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace pylon::platform {

qint64 appendToFile(QFile& file, const char* data, qint64 size) {
    return ::write(file.handle(), data, static_cast<std::size_t>(size));
}

qint64 openFileSize(const QFile& file) {
    // Half as dear as fstat; the position does not matter to a file that is appended to.
    return std::max(lseek(file.handle(), 0, SEEK_END), off_t{0});
}

bool isLinked(const QFile& file) {
    struct stat status {};
    return fstat(file.handle(), &status) == 0 && status.st_nlink > 0;
}

bool replaceFile(const QString& from, const QString& to) {
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

}  // namespace pylon::platform
