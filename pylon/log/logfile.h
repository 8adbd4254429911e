#pragma once

#include <pylon/log/logdevice.h>
#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QMutex>

namespace pylon::plog {

/// Writes the byte form of each item into a file, in batches, and keeps the file from growing
/// without end.
///
/// Lines gather in memory and go out when 501 bytes are there and every 500 ms; the latter needs
/// the event loop of the thread that made the device. When the file is larger than maxFileSize() it
/// becomes the older file, "app-1.log" beside "app.log" ("app-1." beside "app"), and a new one
/// begins with the start-up banner; only one older file is kept. The shut-down banner ends the file
/// when the device is destroyed.
///
/// Trouble with the file is never reported and never ends the log. While the file cannot be opened,
/// lines are dropped; opening is tried again every 500 ms. While the disk is full, lines wait in
/// memory, up to 1 MiB, before new ones are dropped. A file that someone deletes is made anew, at
/// the next line or, where lines are gathered, within half a second. While the older file cannot be
/// replaced, the log goes on in the file it has. Whatever happens, a later line is a whole line.
///
/// Thread-safety: every member may be called on any thread. The device is to be destroyed while no
/// thread logs to it.
class PYLON_EXPORT LogFile : public LogDevice {
    Q_OBJECT

public:
    /// Limits of setMaxFileSize() and the limit of a new device, in bytes.
    static constexpr qint64 minMaxFileSize = 1'048'576;        ///< 1 MiB.
    static constexpr qint64 maxMaxFileSize = 1'048'576'000;    ///< 1000 MiB.
    static constexpr qint64 defaultMaxFileSize = 104'857'600;  ///< 100 MiB.

    /// Opens the file.
    /// @param mode how to open it besides for writing: QIODevice::Append or QIODevice::Truncate.
    /// @param flushEachLine whether each line goes to the file at once, so that a crash of the
    ///        process loses none.
    LogFile(const QString& fileName, QIODevice::OpenMode mode, bool flushEachLine);
    /// Writes what is left and the shut-down banner.
    ~LogFile() override;

    void write(const LogItem& item) override;
    /// Always File.
    DeviceType type() const override { return File; }

    /// Whether the file is open; if not, lines are dropped for now.
    bool isOpen() const;

    /// Writes the lines in memory to the file now. Does nothing when called from inside the device.
    void flush();

    /// Present path of the file.
    QString fileName() const;
    /// Bytes of the file on disk, without the lines in memory.
    qint64 fileSize() const;

    /// Size above which the file is rotated, in bytes.
    qint64 maxFileSize() const;
    /// Sets that size, clamped to minMaxFileSize .. maxMaxFileSize.
    void setMaxFileSize(qint64 size);

    /// Whether the file is rotated when it is too large; on at first.
    bool isRotateEnabled() const;
    /// Switches rotation; without it the file grows without limit.
    void setRotateFile(bool rotate);

    /// Moves the file to another folder, replacing a file of its name there, and goes on in it. A
    /// folder that does not exist, cannot be written or holds the file already changes nothing.
    void changeLogDir(const QString& dir);

private slots:
    void timeout();

private:
    bool open(QIODevice::OpenMode mode);
    bool ensureOpen();
    bool isLinkCheckDue(const Timestamp& now);
    void reopenIfDeleted();
    void rotateFile();
    void writeBuffer();

    class FlushTimer;

    // Owned; lives in the thread that made the device and is destroyed there.
    FlushTimer* timer_ = nullptr;
    QString fileName_;
    QFile file_;
    qint64 maxFileSize_ = defaultMaxFileSize;
    bool rotate_ = true;
    bool flushEachLine_;
    QByteArray buffer_;
    // Whether the disk took only the beginning of the line that the buffer goes on with.
    bool midLine_ = false;
    // Guards everything above.
    mutable QMutex mutex_;
    // Since the last attempt that failed; invalid when there was none.
    QElapsedTimer sinceFailedOpen_;
    QElapsedTimer sinceFailedRotation_;
    // Milliseconds since the epoch.
    long long lastLinkCheck_ = 0;
};

/// Moves the files of all file devices of the log manager to a folder; see LogFile::changeLogDir().
/// Nothing happens when the folder does not exist.
PYLON_EXPORT void setFileDevicePath(const QString& dir);

/// Sets the size limit of all file devices of the log manager; see LogFile::setMaxFileSize().
PYLON_EXPORT void setMaxFileSize(qint64 size);

/// Writes the lines that all file devices of the log manager, raw ones included, hold in memory.
/// For the moments before a process ends against its will; see LogFile::flush().
PYLON_EXPORT void flushFileDevices();

}  // namespace pylon::plog
