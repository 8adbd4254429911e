#include <pylon/media/audioutils.h>

#include <pylon/media/g711.h>
#include <pylon/media/imageheader.h>

#include <array>
#include <cstring>
#include <limits>
#include <span>

namespace pylon {

namespace {

constexpr quint8 audioType = 'a';
constexpr quint8 subTypeBits = 0x0F;
constexpr qsizetype sampleSize = sizeof(qint16);
constexpr qsizetype maxPayload = std::numeric_limits<int>::max();
constexpr int frameTimeUnitsPerSecond = 300;

struct Format {
    const char* name;
    int bytesRate;
};

// Indexed by sub-type; the first serves for all that are not listed.
constexpr std::array<Format, 6> formats = {{
    {"Unknown Audio", 32000},
    {"16B16KHZ", 32000},
    {"16B8KHZ", 16000},
    {"G711U", 8000},
    {"G711A", 8000},
    {"G726X32", 32000},
}};

const Format& formatOf(int subType) {
    const auto index = static_cast<std::size_t>(subType);
    return index < formats.size() ? formats[index] : formats.front();
}

AudioSubTypes subTypeOf(const Image& frame) {
    return static_cast<AudioSubTypes>(frame.flags() & subTypeBits);
}

bool isAudio(const Image& frame) {
    return !frame.isNull() && frame.type() == audioType;
}

G711Law lawOf(AudioSubTypes subType) {
    return subType == AudioG711U ? G711Law::MuLaw : G711Law::ALaw;
}

bool isG711(AudioSubTypes subType) {
    return subType == AudioG711U || subType == AudioG711A;
}

// A frame like the other, of another sub-type, with room for a payload of this many bytes.
Image convertedFrame(const Image& frame, AudioSubTypes subType, qsizetype payloadSize) {
    Image result(ImageHeader(frame), static_cast<int>(payloadSize));
    result.setFlags(static_cast<quint8>((frame.flags() & ~subTypeBits) | subType));
    return result;
}

std::span<std::byte> writableBytes(char* data, qsizetype size) {
    return std::as_writable_bytes(std::span(data, static_cast<std::size_t>(size)));
}

int sampleAt(const char* pcm, qsizetype index) {
    qint16 sample = 0;
    std::memcpy(&sample, pcm + index * sampleSize, sizeof sample);
    return sample;
}

// Writes each sample and the one halfway to the next; behind the last there is that one again.
void doubleRate(const char* pcm, qsizetype count, char* out) {
    const auto put = [out](qsizetype index, int first, int second) {
        const qint16 pair[] = {static_cast<qint16>(first), static_cast<qint16>(second)};
        std::memcpy(out + index * qsizetype{sizeof pair}, pair, sizeof pair);
    };
    for (qsizetype i = 0; i + 1 < count; ++i)
        put(i, sampleAt(pcm, i), (sampleAt(pcm, i) + sampleAt(pcm, i + 1)) / 2);
    if (count > 0)
        put(count - 1, sampleAt(pcm, count - 1), sampleAt(pcm, count - 1));
}

Image resampled(const Image& frame) {
    const qsizetype count = frame.payload().size() / sampleSize;
    if (count > maxPayload / (2 * sampleSize))
        return frame;
    Image result = convertedFrame(frame, Audio16B16KHZ, count * 2 * sampleSize);
    doubleRate(frame.payload().constData(), count, result.payloadData());
    return result;
}

}  // namespace

const char* AudioUtils::audioFormatName(const Image& frame) noexcept {
    return formatOf(subTypeOf(frame)).name;
}

int AudioUtils::maxSubType() noexcept {
    return AudioG711A;
}

int AudioUtils::bytesRate(AudioSubTypes subType) noexcept {
    return formatOf(subType).bytesRate;
}

int AudioUtils::duration(int byteCount, AudioSubTypes subType, int unitsPerSecond) noexcept {
    const quint32 product = static_cast<quint32>(byteCount) * static_cast<quint32>(unitsPerSecond);
    return static_cast<int>(product) / bytesRate(subType);
}

int AudioUtils::duration(const Image& frame, int unitsPerSecond) noexcept {
    if (frame.type() != audioType)
        return 0;
    return duration(static_cast<int>(frame.payloadSize()), subTypeOf(frame), unitsPerSecond);
}

int AudioUtils::duration_thrifties(const Image& frame) noexcept {
    return duration(frame, frameTimeUnitsPerSecond);
}

Image AudioUtils::decode(const Image& frame) {
    const AudioSubTypes subType = subTypeOf(frame);
    const QByteArray& codes = frame.payload();
    if (!isAudio(frame) || !isG711(subType) || codes.size() > maxPayload / sampleSize)
        return frame;
    const qsizetype size = codes.size() * sampleSize;
    Image result = convertedFrame(frame, Audio16B8KHZ, size);
    expandG711(lawOf(subType), std::as_bytes(std::span(codes)),
               writableBytes(result.payloadData(), size));
    return result;
}

Image AudioUtils::decode(int target, Image frame) {
    if (!isAudio(frame) || subTypeOf(frame) <= target)
        return frame;
    if (subTypeOf(frame) > Audio16B8KHZ)
        frame = decode(frame);
    return subTypeOf(frame) > target ? resampled(frame) : frame;
}

Image AudioUtils::encode(int /*target*/, const Image& frame) {
    return frame;
}

QByteArray AudioUtils::encode(AudioSubTypes subType, const QByteArray& pcm) {
    if (!isG711(subType))
        return pcm;
    QByteArray codes(pcm.size() / sampleSize, Qt::Uninitialized);
    compressG711(lawOf(subType), std::as_bytes(std::span(pcm)),
                 writableBytes(codes.data(), codes.size()));
    return codes;
}

}  // namespace pylon
