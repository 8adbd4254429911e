#include <pylon/log/internal/devicewritescope.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logmanager.h>
#include <pylon/platform/internal/file.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace pylon::plog {

namespace {

constexpr int flushIntervalMs = 500;
constexpr int retryIntervalMs = 500;
constexpr qsizetype batchSize = 501;
constexpr qsizetype maxBacklog = qsizetype{1024} * 1024;

QString join(const QString& dir, const QString& name) {
    return dir + QDir::separator() + name;
}

/// "dir/app-1.log" for "dir/app.log".
QString olderFileName(const QString& fileName) {
    const QFileInfo file(fileName);
    return join(file.absolutePath(),
                file.baseName() + QStringLiteral("-1.") + file.completeSuffix());
}

void moveFile(const QString& from, const QString& to) {
    if (platform::replaceFile(from, to))
        return;
    // Another volume.
    QFile::remove(to);
    QFile::rename(from, to);
}

bool isSameFile(const QString& one, const QString& other) {
    const QString path = QFileInfo(one).canonicalFilePath();
    return !path.isEmpty() && path == QFileInfo(other).canonicalFilePath();
}

bool isTooSoon(const QElapsedTimer& sinceFailure) {
    return sinceFailure.isValid() && !sinceFailure.hasExpired(retryIntervalMs);
}

}  // namespace

// Programs that take a constant by reference import it from here.
constexpr qint64 LogFile::minMaxFileSize;
constexpr qint64 LogFile::maxMaxFileSize;
constexpr qint64 LogFile::defaultMaxFileSize;

/// Ticks for a device as long as there is one: the device may end on one thread while the timer's
/// thread is about to call it.
class LogFile::FlushTimer : public QTimer {
public:
    explicit FlushTimer(LogFile* file) : file_(file) {
        connect(this, &QTimer::timeout, this, [this] {
            const QMutexLocker lock(&mutex_);
            if (file_)
                file_->timeout();
        });
        // The event loop may only come to be later; started without one, Qt's timer would never
        // fire.
        QMetaObject::invokeMethod(
            this, [this] { start(flushIntervalMs); }, Qt::QueuedConnection);
    }

    /// Ends the ticking and, in its own thread, the timer.
    void release() {
        {
            const QMutexLocker lock(&mutex_);
            file_ = nullptr;
        }
        const QThread* owner = thread();
        if (!owner || owner == QThread::currentThread() || owner->isFinished())
            delete this;
        else
            deleteLater();
    }

private:
    QMutex mutex_;
    LogFile* file_;
};

LogFile::LogFile(const QString& fileName, QIODevice::OpenMode mode, bool flushEachLine)
    : LogDevice(nullptr), fileName_(fileName), file_(fileName), flushEachLine_(flushEachLine) {
    const bool keepsContent = mode & (QIODevice::Append | QIODevice::ReadOnly);
    open(keepsContent ? mode : mode | QIODevice::Truncate);
    timer_ = new FlushTimer(this);
}

LogFile::~LogFile() {
    timer_->release();
    // A thread that the exiting process ended inside write() never gives the lock back.
    if (!mutex_.tryLock(1000))
        return;
    if (file_.isOpen()) {
        writeBuffer();
        file_.write(LogManager::logShutdownHeader().toUtf8());
        file_.close();
    }
    mutex_.unlock();
}

void LogFile::write(const LogItem& item) {
    const QMutexLocker lock(&mutex_);
    if (!ensureOpen())
        return;
    if (rotate_ && !midLine_ && platform::openFileSize(file_) > maxFileSize_)
        rotateFile();
    const qsizetype before = buffer_.size();
    item.appendTo(buffer_);
    buffer_.append('\n');
    const qsizetype lineSize = buffer_.size() - before;
    if (!flushEachLine_ && buffer_.size() < batchSize)
        return;
    if (flushEachLine_ || isLinkCheckDue(item.timestamp()))
        reopenIfDeleted();
    writeBuffer();
    // What goes, goes from the front: the line is either whole at the end or partly on the disk.
    if (buffer_.size() > maxBacklog && buffer_.size() >= lineSize)
        buffer_.chop(lineSize);
}

bool LogFile::isOpen() const {
    const QMutexLocker lock(&mutex_);
    return file_.isWritable();
}

void LogFile::flush() {
    if (DeviceWriteScope::isInside(*this))
        return;
    const QMutexLocker lock(&mutex_);
    if (buffer_.isEmpty() || !ensureOpen())
        return;
    reopenIfDeleted();
    writeBuffer();
}

void LogFile::timeout() {
    flush();
}

QString LogFile::fileName() const {
    const QMutexLocker lock(&mutex_);
    return fileName_;
}

qint64 LogFile::fileSize() const {
    const QMutexLocker lock(&mutex_);
    return file_.size();
}

qint64 LogFile::maxFileSize() const {
    const QMutexLocker lock(&mutex_);
    return maxFileSize_;
}

void LogFile::setMaxFileSize(qint64 size) {
    const QMutexLocker lock(&mutex_);
    maxFileSize_ = std::clamp(size, minMaxFileSize, maxMaxFileSize);
}

bool LogFile::isRotateEnabled() const {
    const QMutexLocker lock(&mutex_);
    return rotate_;
}

void LogFile::setRotateFile(bool rotate) {
    const QMutexLocker lock(&mutex_);
    rotate_ = rotate;
}

// Here and below, a warning that Qt has about the file must not come back to it: see
// DeviceWriteScope.

void LogFile::changeLogDir(const QString& dir) {
    const QFileInfo folder(dir);
    if (!folder.isDir() || !folder.isWritable())
        return;
    const QMutexLocker lock(&mutex_);
    const DeviceWriteScope scope(*this);
    const QFileInfo file(fileName_);
    if (isSameFile(dir, file.absolutePath()))
        return;
    const QString target = join(dir, file.fileName());
    file_.close();
    // By way of links, the file there may be the log itself.
    if (!isSameFile(fileName_, target))
        moveFile(fileName_, target);
    fileName_ = target;
    open(QIODevice::Append);
}

bool LogFile::open(QIODevice::OpenMode mode) {
    const DeviceWriteScope scope(*this);
    // Appending makes the end of the file the place to write even if somebody else cuts it, and
    // without a buffer of its own the file takes what it can and leaves the rest to us.
    file_.setFileName(fileName_);
    const bool opened =
        file_.open(mode | QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    if (opened)
        sinceFailedOpen_.invalidate();
    else
        sinceFailedOpen_.start();
    return opened;
}

bool LogFile::ensureOpen() {
    return file_.isWritable() || (!isTooSoon(sinceFailedOpen_) && open(QIODevice::Append));
}

bool LogFile::isLinkCheckDue(const Timestamp& now) {
    const ptimeval moment = now.moment();
    const long long milliseconds = moment.tv_sec * 1000 + moment.tv_usec / 1000;
    if (std::abs(milliseconds - lastLinkCheck_) < retryIntervalMs)
        return false;
    lastLinkCheck_ = milliseconds;
    return true;
}

void LogFile::reopenIfDeleted() {
    if (!file_.isWritable() || platform::isLinked(file_))
        return;
    file_.close();
    open(QIODevice::Append);
    if (!midLine_)
        return;
    // The beginning of that line is gone.
    buffer_.remove(0, buffer_.indexOf('\n') + 1);
    midLine_ = false;
}

void LogFile::rotateFile() {
    if (isTooSoon(sinceFailedRotation_))
        return;
    const DeviceWriteScope scope(*this);
    // Windows renames no file that is open.
    file_.close();
    if (!platform::replaceFile(fileName_, olderFileName(fileName_))) {
        sinceFailedRotation_.start();
        open(QIODevice::Append);
        return;
    }
    sinceFailedRotation_.invalidate();
    if (open(QIODevice::Truncate))
        file_.write(LogManager::instance()->logStartupHeader().toUtf8());
}

void LogFile::writeBuffer() {
    if (buffer_.isEmpty() || !file_.isWritable())
        return;
    const DeviceWriteScope scope(*this);
    const qsizetype written =
        qMax(platform::appendToFile(file_, buffer_.constData(), buffer_.size()), qint64{0});
    if (written > 0)
        midLine_ = buffer_[written - 1] != '\n';
    if (written == buffer_.size())
        buffer_.truncate(0);  // unlike clear(), keeps the memory
    else
        buffer_.remove(0, written);
}

namespace {

using Devices = QList<QSharedPointer<LogDevice>>;

void forEachLogFile(const Devices& devices, const std::function<void(LogFile&)>& action) {
    for (const QSharedPointer<LogDevice>& device : devices) {
        if (auto* file = qobject_cast<LogFile*>(device.data()))
            action(*file);
    }
}

}  // namespace

void setFileDevicePath(const QString& dir) {
    forEachLogFile(LogManager::instance()->logDevices(),
                   [&](LogFile& file) { file.changeLogDir(dir); });
}

void setMaxFileSize(qint64 size) {
    forEachLogFile(LogManager::instance()->logDevices(),
                   [&](LogFile& file) { file.setMaxFileSize(size); });
}

void flushFileDevices() {
    const LogManager* manager = LogManager::instance();
    forEachLogFile(manager->logDevices() + manager->rawDevices(),
                   [](LogFile& file) { file.flush(); });
}

}  // namespace pylon::plog
