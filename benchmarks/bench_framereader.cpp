// Cutting a recording of 256 MiB into frames, beside reading the same file through one buffer of
// the same size. The file is in the page cache, so the disk does not count.

#include <benchmark/benchmark.h>
#include <pylon/media/framereader.h>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

using pylon::FrameReader;

namespace {

constexpr qint64 recordingSize = qint64{256} * 1024 * 1024;

// The sample, repeated.
QString writeRecording(const QTemporaryDir& folder) {
    QFile sample(QStringLiteral(SAMPLE_RECORDING));
    QFile recording(folder.filePath(QStringLiteral("large.frames")));
    if (!sample.open(QIODevice::ReadOnly) || !recording.open(QIODevice::WriteOnly))
        return {};
    const QByteArray bytes = sample.readAll();
    while (!bytes.isEmpty() && recording.size() < recordingSize) {
        if (recording.write(bytes) != bytes.size())
            return {};
        recording.flush();
    }
    return recording.fileName();
}

bool openRecording(QFile& file) {
    static const QTemporaryDir folder;
    static const QString name = writeRecording(folder);
    file.setFileName(name);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

// Calls use(reader) for each frame of a whole recording.
template <typename Use>
void readFrames(benchmark::State& state, Use use) {
    QFile file;
    if (!openRecording(file))
        return state.SkipWithError("no recording");
    for (auto _ : state) {
        file.seek(0);
        FrameReader reader(file);
        FrameReader::Status status;
        while ((status = reader.next()) != FrameReader::Status::End) {
            if (status == FrameReader::Status::Failed)
                return state.SkipWithError("damaged recording");
            if (status == FrameReader::Status::Frame)
                use(reader);
            else if (!reader.fill())
                reader.finish();
        }
    }
    state.SetBytesProcessed(state.iterations() * file.size());
}

void cut(benchmark::State& state) {
    readFrames(state,
               [](const FrameReader& reader) { benchmark::DoNotOptimize(reader.bytes().data()); });
}
BENCHMARK(cut)->Name("FrameReader/Cut");

void headers(benchmark::State& state) {
    readFrames(state, [](const FrameReader& reader) {
        benchmark::DoNotOptimize(reader.headerImage().time());
    });
}
BENCHMARK(headers)->Name("FrameReader/CutAndParseHeaders");

void readIntoBuffer(benchmark::State& state) {
    QFile file;
    if (!openRecording(file))
        return state.SkipWithError("no recording");
    QByteArray buffer(pylon::defaultFrameChunkSize, Qt::Uninitialized);
    for (auto _ : state) {
        file.seek(0);
        while (file.read(buffer.data(), buffer.size()) > 0)
            benchmark::DoNotOptimize(buffer.data());
    }
    state.SetBytesProcessed(state.iterations() * file.size());
}
BENCHMARK(readIntoBuffer)->Name("FrameReader/Peer_ReadIntoBuffer");

}  // namespace
