#include <pylon/media/image.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

// Building frames from received bytes, beside the least such a frame can cost: allocating memory
// for the same bytes and copying them.

namespace {

constexpr qsizetype largeFrameSize = 64 * 1024;
constexpr qsizetype smallPayloadSize = 1024;

const QByteArray serverName("Recorder 7");
const QByteArray cameraName("Gate");
const QByteArray linkedAudio("\7");

QByteArray frameHeader() {
    pylon::ImageHeaderBase header;
    header.type = 'V';
    header.extensions[0] = serverName;
    header.extensions[1] = cameraName;
    header.extensions[2] = linkedAudio;
    QByteArray bytes;
    pylon::LyraImageHeaderParserV4().writeHeader(header, bytes);
    return bytes;
}

QByteArray networkFrame(qsizetype payloadSize) {
    QByteArray bytes = frameHeader() + QByteArray(payloadSize, 'p');
    pylon::LyraImageHeaderParserV4().patchSize(bytes);
    return bytes;
}

QByteArray largeFrame() {
    return networkFrame(largeFrameSize - frameHeader().size());
}

QByteArray deepCopy(const QByteArray& bytes) {
    return QByteArray(bytes.constData(), bytes.size());
}

void FrameFrom64KiB(benchmark::State& state) {
    const QByteArray bytes = largeFrame();
    for (auto _ : state) {
        pylon::Image frame(bytes);
        benchmark::DoNotOptimize(frame);
    }
}
BENCHMARK(FrameFrom64KiB)->Name("Frame64KiB/Image");

void Peer_AllocAndCopy64KiB(benchmark::State& state) {
    const QByteArray bytes = largeFrame();
    const auto size = static_cast<std::size_t>(bytes.size());
    for (auto _ : state) {
        const std::unique_ptr<char[]> copy(new char[size]);
        std::memcpy(copy.get(), bytes.constData(), size);
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Peer_AllocAndCopy64KiB)->Name("Frame64KiB/Peer_AllocAndCopy");

void SmallFrame(benchmark::State& state) {
    const QByteArray bytes = networkFrame(smallPayloadSize);
    for (auto _ : state) {
        pylon::Image frame(bytes);
        benchmark::DoNotOptimize(frame);
    }
}
BENCHMARK(SmallFrame)->Name("SmallFrame/Image");

void Peer_FiveByteArrays(benchmark::State& state) {
    const QByteArray header = frameHeader();
    const QByteArray payload(smallPayloadSize, 'p');
    for (auto _ : state) {
        QByteArray copies[] = {deepCopy(header), deepCopy(serverName), deepCopy(cameraName),
                               deepCopy(linkedAudio), deepCopy(payload)};
        benchmark::DoNotOptimize(copies);
    }
}
BENCHMARK(Peer_FiveByteArrays)->Name("SmallFrame/Peer_FiveByteArrays");

}  // namespace
