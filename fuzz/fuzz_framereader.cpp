// Frames out of a stream: the first four bytes of the input say how it is read, the rest is read.

#include "fuzz.h"

#include <pylon/media/framereader.h>

#include <QtCore/QBuffer>

#include <algorithm>
#include <random>
#include <utility>

using namespace pylon;

static void check(const FrameReader& reader, QByteArrayView input) {
    const QByteArrayView bytes = reader.bytes();
    FUZZ_CHECK(bytes.size() <= qsizetype{reader.frameSizeLimit()});
    FUZZ_CHECK(bytes == input.sliced(reader.offset(), bytes.size()));
    FUZZ_CHECK(reader.image().payload() == reader.payload());
    FUZZ_CHECK(reader.image().channel() == reader.header().channel());
    FUZZ_CHECK(reader.image().totalSize() == reader.headerImage().totalSize());
}

// Reads pieces of random sizes up to a chunk, and returns where each frame begins and what comes
// after the last one.
static QList<qint64> read(QByteArray input, bool resynchronise, quint32 limit, qsizetype chunk) {
    QBuffer device(&input);
    device.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    FrameReader reader(device);
    reader.setFrameSizeLimit(limit);
    std::minstd_rand random;
    QList<qint64> places;
    qint64 place = 0;  // that all bytes before belong to frames or were skipped
    bool skipping = false;
    for (;;) {
        const FrameReader::Status status = reader.next();
        FUZZ_CHECK(reader.capacity() <= std::max(2 * input.size(), chunk));
        FUZZ_CHECK(reader.capacity() <= reader.frameSizeLimit() + 20 + chunk);
        if (status == FrameReader::Status::NeedsData) {
            reader.setChunkSize(1 + static_cast<qsizetype>(random()) % chunk);
            if (!reader.fill())
                reader.finish();
            continue;
        }
        if (std::exchange(skipping, status == FrameReader::Status::Failed)) {
            FUZZ_CHECK(reader.skippedBytes() > 0);
            place += reader.skippedBytes();
        }
        FUZZ_CHECK(reader.offset() == place);
        places << place;
        if (status == FrameReader::Status::Frame) {
            check(reader, input);
            place += reader.bytes().size();
            continue;
        }
        FUZZ_CHECK(status == FrameReader::Status::Failed || place == input.size());
        if (status == FrameReader::Status::End || !resynchronise)
            return places;
        FUZZ_CHECK(reader.resynchronise());
    }
}

void fuzz(const QByteArray& input) {
    if (input.size() < 4)
        return;
    const QByteArray stream = input.sliced(4);
    const bool resynchronise = (input[0] & 1) != 0;
    const auto few = quint8(input[1]), size = quint8(input[2]), times = quint8(input[3]);
    const quint32 limit = size == 0 ? ~quint32{0} : 20u + size * size;
    const auto places = read(stream, resynchronise, limit, 1 + few * times);
    // Where damage ends the stream, it does not matter how the bytes come.
    FUZZ_CHECK(resynchronise || read(stream, false, limit, 4096) == places);
}
