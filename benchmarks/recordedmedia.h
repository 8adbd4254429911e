#pragma once

#include <pylon/media/image.h>
#include <QtCore/QFile>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

/// @file
/// The sample recording as material for benchmarks, and libavcodec as peer and as decoder of its
/// pictures.

constexpr int samplesPerSecond = 8000;

inline void require(bool condition, const char* what) {
    if (!condition)
        throw std::runtime_error(what);
}

// One of libavcodec's coders with its buffers, set up for speech.
class Avcodec {
public:
    explicit Avcodec(const AVCodec* codec) : context_(avcodec_alloc_context3(codec)) {
        context_->sample_rate = samplesPerSecond;
        context_->sample_fmt = AV_SAMPLE_FMT_S16;
        context_->ch_layout = AV_CHANNEL_LAYOUT_MONO;
        context_->time_base = {1, samplesPerSecond};
        require(avcodec_open2(context_.get(), codec, nullptr) == 0, "libavcodec");
    }

    // The frame is valid until the next call.
    const AVFrame& decode(const QByteArray& bytes) {
        packet_->data = reinterpret_cast<uint8_t*>(const_cast<char*>(bytes.constData()));
        packet_->size = static_cast<int>(bytes.size());
        require(avcodec_send_packet(context_.get(), packet_.get()) == 0, "libavcodec");
        require(avcodec_receive_frame(context_.get(), frame_.get()) == 0, "libavcodec");
        return *frame_;
    }

    // The samples are handed over without a copy.
    const AVPacket& encode(const QByteArray& pcm) {
        frame_->format = AV_SAMPLE_FMT_S16;
        frame_->ch_layout = AV_CHANNEL_LAYOUT_MONO;
        frame_->sample_rate = samplesPerSecond;
        frame_->nb_samples = static_cast<int>(pcm.size() / 2);
        const auto bytes = reinterpret_cast<uint8_t*>(const_cast<char*>(pcm.constData()));
        AVBufferRef* const buffer = av_buffer_create(
            bytes, static_cast<std::size_t>(pcm.size()), [](void*, uint8_t*) {}, nullptr,
            AV_BUFFER_FLAG_READONLY);
        frame_->buf[0] = buffer;
        frame_->data[0] = bytes;
        frame_->linesize[0] = static_cast<int>(pcm.size());
        require(avcodec_send_frame(context_.get(), frame_.get()) == 0, "libavcodec");
        av_frame_unref(frame_.get());
        require(avcodec_receive_packet(context_.get(), packet_.get()) == 0, "libavcodec");
        return *packet_;
    }

private:
    struct Free {
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    };

    std::unique_ptr<AVCodecContext, Free> context_;
    std::unique_ptr<AVFrame, Free> frame_{av_frame_alloc()};
    std::unique_ptr<AVPacket, Free> packet_{av_packet_alloc()};
};

inline std::vector<pylon::Image> recordedFrames() {
    QFile file(QStringLiteral(SAMPLE_RECORDING));
    require(file.open(QIODevice::ReadOnly), "sample recording");
    std::vector<pylon::Image> frames;
    while (!file.atEnd()) {
        quint32 size = 0;
        pylon::Image().determineSizeFromFile(file, size);
        frames.emplace_back(file.read(size));
    }
    return frames;
}
