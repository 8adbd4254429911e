#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QFile>

namespace pylon::inspector {

/// A new WAV file with 16-bit linear PCM, mono. Not thread-safe.
class WaveFile {
public:
    /// @param rate in samples a second.
    WaveFile(const QString& path, int rate) : file_(path), rate_(rate) {}

    /// False if there is a file of that name already, or it cannot be made.
    bool create();
    /// Appends samples in host byte order; a single last byte is left out. False if they cannot be
    /// written, or would make the file longer than the 4 GiB its format can express.
    bool append(QByteArrayView samples);
    /// The same for @p count samples of value 0.
    bool appendSilence(qint64 count);
    /// Completes the header. To be called last.
    bool finish();

    int rate() const { return rate_; }
    /// How many samples the file has.
    qint64 size() const { return size_; }
    QString path() const { return file_.fileName(); }
    QString errorText() const { return error_.isEmpty() ? file_.errorString() : error_; }

private:
    bool writeHeader();
    bool hasRoomFor(qint64 count);

    QFile file_;
    int rate_;
    qint64 size_ = 0;
    QString error_;
};

}  // namespace pylon::inspector
