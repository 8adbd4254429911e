#include "wavefile.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <limits>

namespace pylon::inspector {

namespace {

constexpr qint64 sampleSize = 2;
constexpr qsizetype headerSize = 44;
constexpr qsizetype sizeBeforeForm = 8;  // of the chunk id and size the RIFF size does not count
constexpr qint64 maxDataSize =
    std::numeric_limits<quint32>::max() - (headerSize - sizeBeforeForm) - 1;
constexpr qint64 silenceBlock = 4096;  // samples

}  // namespace

bool WaveFile::create() {
    return file_.open(QIODevice::WriteOnly | QIODevice::NewOnly) && writeHeader();
}

// The canonical header of a RIFF file with one "fmt " chunk and one "data" chunk.
bool WaveFile::writeHeader() {
    const auto dataSize = static_cast<quint32>(size_ * sampleSize);
    const auto rate = static_cast<quint32>(rate_);
    QByteArray header = QByteArrayLiteral("RIFF....WAVEfmt ....................data....");
    Q_ASSERT(header.size() == headerSize);
    char* const bytes = header.data();
    qToLittleEndian(dataSize + quint32{headerSize - sizeBeforeForm}, bytes + 4);
    qToLittleEndian(quint32{16}, bytes + 16);  // size of the "fmt " chunk
    qToLittleEndian(quint16{1}, bytes + 20);   // linear PCM
    qToLittleEndian(quint16{1}, bytes + 22);   // channels
    qToLittleEndian(rate, bytes + 24);
    qToLittleEndian(rate * quint32{sampleSize}, bytes + 28);
    qToLittleEndian(quint16{sampleSize}, bytes + 32);
    qToLittleEndian(quint16{8 * sampleSize}, bytes + 34);
    qToLittleEndian(dataSize, bytes + 40);
    return file_.write(header) == header.size();
}

bool WaveFile::hasRoomFor(qint64 count) {
    if ((size_ + count) * sampleSize <= maxDataSize)
        return true;
    error_ = QStringLiteral("the sound does not fit a WAV file");
    return false;
}

bool WaveFile::append(QByteArrayView samples) {
    const qint64 count = samples.size() / sampleSize;
    if (count == 0)
        return true;
    if (!hasRoomFor(count))
        return false;
    QByteArray bytes(count * sampleSize, Qt::Uninitialized);
    qToLittleEndian<qint16>(samples.data(), count, bytes.data());
    size_ += count;
    return file_.write(bytes) == bytes.size();
}

bool WaveFile::appendSilence(qint64 count) {
    if (!hasRoomFor(count))
        return false;
    const QByteArray zeros(silenceBlock * sampleSize, '\0');
    size_ += count;
    while (count > 0) {
        const qint64 now = std::min(count, silenceBlock);
        if (file_.write(zeros.constData(), now * sampleSize) != now * sampleSize)
            return false;
        count -= now;
    }
    return true;
}

bool WaveFile::finish() {
    if (!file_.seek(0) || !writeHeader() || !file_.flush())
        return false;
    file_.close();
    return true;
}

}  // namespace pylon::inspector
