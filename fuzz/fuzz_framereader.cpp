// Frames out of a stream: the first four bytes of the input say how it is read, the rest is read.

#include "fuzz.h"

#include <pylon/media/framereader.h>

#include <QtCore/QIODevice>

#include <algorithm>
#include <utility>
#include <vector>

using namespace pylon;

namespace {

// Gives 0 to 63 bytes a read, or all that is wanted.
class Stream : public QIODevice {
public:
    Stream(QByteArrayView bytes, unsigned rhythm) : rest_(bytes), rhythm_(rhythm) {
        open(ReadOnly | Unbuffered);
    }
    bool isSequential() const override { return true; }
    bool isDrained() const { return rest_.isEmpty(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override {
        if (rhythm_ != 0) {
            rhythm_ = rhythm_ * 69069 + 1;
            maxSize = std::min<qint64>(maxSize, rhythm_ >> 16 & 63);
        }
        const qsizetype count = std::min<qsizetype>(maxSize, rest_.size());
        std::copy_n(rest_.data(), count, data);
        rest_ = rest_.sliced(count);
        return count;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArrayView rest_;
    unsigned rhythm_;
};

// Offset and size of each frame.
using Frames = std::vector<std::pair<qint64, qsizetype>>;

void check(const FrameReader& reader, QByteArrayView input) {
    const QByteArrayView bytes = reader.bytes();
    FUZZ_CHECK(bytes.size() <= qsizetype{reader.frameSizeLimit()});
    FUZZ_CHECK(bytes == input.sliced(reader.offset(), bytes.size()));
    FUZZ_CHECK(reader.image().payload() == reader.payload());
    FUZZ_CHECK(reader.image().channel() == reader.header().channel());
    FUZZ_CHECK(reader.image().totalSize() == reader.headerImage().totalSize());
}

Frames read(QByteArrayView input, bool resynchronise, quint32 limit, qsizetype chunk,
            unsigned rhythm) {
    Stream stream(input, rhythm);
    FrameReader reader(stream);
    reader.setChunkSize(chunk);
    reader.setFrameSizeLimit(limit);
    const qsizetype mostNeeded = std::min(reader.frameSizeLimit() + qsizetype{20} + chunk,
                                          std::max(2 * input.size(), chunk));
    Frames frames;
    qint64 place = 0;  // that all bytes before belong to frames or were skipped
    bool skipping = false;
    for (;;) {
        const FrameReader::Status status = reader.next();
        FUZZ_CHECK(reader.capacity() <= mostNeeded);
        if (status == FrameReader::Status::NeedsData) {
            if (!reader.fill() && stream.isDrained())
                reader.finish();
            continue;
        }
        if (std::exchange(skipping, status == FrameReader::Status::Failed)) {
            FUZZ_CHECK(reader.skippedBytes() > 0);
            place += reader.skippedBytes();
        }
        FUZZ_CHECK(reader.offset() == place);
        if (status == FrameReader::Status::Frame) {
            check(reader, input);
            frames.emplace_back(place, reader.bytes().size());
            place += reader.bytes().size();
        } else if (status == FrameReader::Status::End) {
            FUZZ_CHECK(place == input.size());
            return frames;
        } else if (!resynchronise) {
            return frames;
        } else {
            FUZZ_CHECK(reader.resynchronise());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t settingsSize = 4;
    if (size < settingsSize)
        return 0;
    const bool resynchronise = (data[0] & 1) != 0;
    const quint32 limit = data[2] == 0 ? ~quint32{0} : 20 + quint32{data[2]} * data[2];
    const QByteArray input = bytesOf(data + settingsSize, size - settingsSize);
    const Frames frames = read(input, resynchronise, limit, 1 + data[1] * data[1], data[3]);
    // Where damage ends the stream, it does not matter how the bytes come.
    if (!resynchronise)
        FUZZ_CHECK(read(input, false, limit, 4096, 0) == frames);
    return 0;
}
