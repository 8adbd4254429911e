// The laws of speech beside libavcodec, on the speech of the sample recording.

#include "recordedmedia.h"

#include <benchmark/benchmark.h>
#include <pylon/media/audioutils.h>

#include <string>

using namespace pylon;

namespace {

// Speech of this duration: that of the recording, over and over.
QByteArray speech(AudioSubTypes subType, int seconds) {
    QByteArray recorded;
    for (const Image& frame : recordedFrames()) {
        if (frame.type() == 'a' && (frame.flags() & 0x0F) == subType)
            recorded += frame.payload();
    }
    require(!recorded.isEmpty(), "speech in the recording");
    const qsizetype size = qsizetype{seconds} * samplesPerSecond;
    return recorded.repeated(size / recorded.size() + 1).first(size);
}

struct Law {
    const char* name;
    AudioSubTypes subType;
    AVCodecID codec;
};

constexpr Law laws[] = {{"MuLaw", AudioG711U, AV_CODEC_ID_PCM_MULAW},
                        {"ALaw", AudioG711A, AV_CODEC_ID_PCM_ALAW}};

void registerExpansion(const Law& law, const std::string& group, int seconds) {
    benchmark::RegisterBenchmark((group + "/AudioUtils").c_str(), [=](benchmark::State& state) {
        Image frame;
        frame.setType('a');
        frame.setFlags(static_cast<quint8>(law.subType));
        frame.setPayload(speech(law.subType, seconds));
        for (auto _ : state)
            benchmark::DoNotOptimize(AudioUtils::decode(frame).payload().constData());
    });
    benchmark::RegisterBenchmark((group + "/Peer_Libavcodec").c_str(),
                                 [=](benchmark::State& state) {
                                     const QByteArray codes = speech(law.subType, seconds);
                                     Avcodec decoder(avcodec_find_decoder(law.codec));
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(decoder.decode(codes).data[0]);
                                 });
}

void registerCompression(const Law& law, const std::string& group, int seconds) {
    const auto pcm = [=] {
        Image frame;
        frame.setType('a');
        frame.setFlags(static_cast<quint8>(law.subType));
        frame.setPayload(speech(law.subType, seconds));
        return AudioUtils::decode(frame).payload();
    };
    benchmark::RegisterBenchmark((group + "/AudioUtils").c_str(), [=](benchmark::State& state) {
        const QByteArray samples = pcm();
        for (auto _ : state)
            benchmark::DoNotOptimize(AudioUtils::encode(law.subType, samples).constData());
    });
    benchmark::RegisterBenchmark((group + "/Peer_Libavcodec").c_str(),
                                 [=](benchmark::State& state) {
                                     const QByteArray samples = pcm();
                                     Avcodec encoder(avcodec_find_encoder(law.codec));
                                     for (auto _ : state)
                                         benchmark::DoNotOptimize(encoder.encode(samples).data);
                                 });
}

}  // namespace

int main(int argc, char** argv) {
    for (const Law& law : laws) {
        for (const int seconds : {1, 10, 60, 600}) {
            const std::string of = std::string(law.name) + std::to_string(seconds) + "s";
            registerExpansion(law, "Expand" + of, seconds);
            registerCompression(law, "Compress" + of, seconds);
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
