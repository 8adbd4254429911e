#include "audiotrack.h"

#include <pylon/media/audioutils.h>

#include <algorithm>
#include <cstring>

namespace pylon::inspector {

namespace {

constexpr int ticksPerSecond = 300;
constexpr qsizetype sampleSize = 2;
constexpr int jitterTicks = 9;  // 30 ms

AudioSubTypes subTypeOf(const Image& frame) {
    return static_cast<AudioSubTypes>(frame.flags() & 0x0F);
}

int rateOf(AudioSubTypes subType) {
    return subType == Audio16B16KHZ ? 16000 : 8000;
}

// Means of two samples each.
QByteArray atHalfRate(const QByteArray& samples) {
    QByteArray result(samples.size() / (2 * sampleSize) * sampleSize, Qt::Uninitialized);
    for (qsizetype at = 0; at < result.size(); at += sampleSize) {
        qint16 pair[2];
        std::memcpy(pair, samples.constData() + 2 * at, sizeof pair);
        const auto mean = static_cast<qint16>((pair[0] + pair[1]) / 2);
        std::memcpy(result.data() + at, &mean, sizeof mean);
    }
    return result;
}

QByteArray samplesAt(int rate, const Image& frame) {
    const AudioSubTypes target = rate == rateOf(Audio16B16KHZ) ? Audio16B16KHZ : Audio16B8KHZ;
    const QByteArray samples = AudioUtils::decode(target, frame).payload();
    return rateOf(subTypeOf(frame)) > rate ? atHalfRate(samples) : samples;
}

}  // namespace

bool AudioTrack::canDecode(const Image& frame) {
    const AudioSubTypes subType = subTypeOf(frame);
    return frame.type() == 'a' && !frame.isEncrypted() && subType != AudioUnknown &&
           subType <= AudioUtils::maxSubType();
}

AudioTrack::AudioTrack(const QString& path, const Image& first)
    : file_(path, rateOf(subTypeOf(first))), origin_(first.time()) {}

bool AudioTrack::add(const Image& frame, qint64& silenceLeft) {
    const QByteArray samples = samplesAt(file_.rate(), frame);
    const qint64 rate = file_.rate();
    const qint64 place =
        originSample_ + (frame.time() - origin_) * rate / ticksPerSecond;  // 48 bits times 14
    const qint64 distance = place - file_.size();
    const qint64 jitter = jitterTicks * rate / ticksPerSecond;

    qint64 silence = 0;
    qint64 known = 0;
    if (distance > jitter)
        silence = std::min({distance, maxSilence * rate, silenceLeft});
    else if (distance < -jitter && distance >= -maxOverlap * rate)
        known = std::min<qint64>(-distance, samples.size() / sampleSize);
    if (distance != silence && (distance > jitter || distance < -maxOverlap * rate)) {
        origin_ = frame.time();
        originSample_ = file_.size() + silence;
    }
    silenceLeft -= silence;
    return file_.appendSilence(silence) &&
           file_.append(QByteArrayView(samples).sliced(static_cast<qsizetype>(known) * sampleSize));
}

}  // namespace pylon::inspector
