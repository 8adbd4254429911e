#include "framebytes.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/g711.h>
#include <QtTest/QTest>

#include <array>
#include <numeric>
#include <vector>

using namespace pylon;

namespace {

Image audioFrame(int flags, const QByteArray& payload) {
    Image frame(headerBytes("Gate", payload.size()) + payload);
    frame.setType('a');
    frame.setFlags(static_cast<quint8>(flags));
    return frame;
}

QByteArray pcm(const std::vector<qint16>& samples) {
    return QByteArray(reinterpret_cast<const char*>(samples.data()), qsizetype(2 * samples.size()));
}

// The formulas of the laws, as their reference coder writes them.
int expanded(bool muLaw, int code) {
    const int bits = code ^ (muLaw ? 0xFF : 0x55);
    const int segment = bits >> 4 & 7;
    if (muLaw) {
        const int t = ((bits & 15) * 8 + 132) << segment;
        return bits & 0x80 ? 132 - t : t - 132;
    }
    const int t = (bits & 15) << 4;
    const int level = segment == 0 ? t + 8 : (t + 0x108) << (segment - 1);
    return bits & 0x80 ? level : -level;
}

int compressed(bool muLaw, int sample) {
    const int mask = muLaw ? (sample < 0 ? 0x7F : 0xFF) : (sample < 0 ? 0x55 : 0xD5);
    const int magnitude = sample < 0 ? (muLaw ? 132 : -8) - sample : sample + (muLaw ? 132 : 0);
    int segment = 0;
    while (segment < 8 && magnitude > (0x100 << segment) - 1)
        ++segment;
    if (segment == 8)
        return 0x7F ^ mask;
    const int shift = !muLaw && segment < 2 ? 4 : segment + 3;
    return (segment * 16 | (magnitude >> shift & 15)) ^ mask;
}

}  // namespace

class TestAudioUtils : public QObject {
    Q_OBJECT

private slots:
    void formats() {
        const std::pair<const char*, int> expected[] = {
            {"Unknown Audio", 32000}, {"16B16KHZ", 32000}, {"16B8KHZ", 16000},      {"G711U", 8000},
            {"G711A", 8000},          {"G726X32", 32000},  {"Unknown Audio", 32000}};
        for (int value = -1; value < 32; ++value) {
            const auto& [name, rate] = expected[std::min(value & 15, 6)];
            QCOMPARE(AudioUtils::audioFormatName(audioFrame(value, "")), name);
            QCOMPARE(AudioUtils::bytesRate(AudioSubTypes(value < 0 ? value : value & 15)), rate);
        }
    }

    void durations() {
        const int rows[][4] = {{8000, 3, 1000, 1000},
                               {15999, 2, 300, 299},
                               {4000, 5, 1000, 125},
                               {65536, 1, 65536, 0},
                               {2147484, 4, 1000, -268435}};  // wraps
        for (const auto& [bytes, subType, units, duration] : rows) {
            Image frame = audioFrame(0xF0 | subType, QByteArray(bytes, 'x'));
            QCOMPARE(AudioUtils::duration(frame, units), duration);
            QCOMPARE(AudioUtils::duration_thrifties(frame), AudioUtils::duration(frame, 300));
            frame.setType('V');
            QCOMPARE(AudioUtils::duration(frame, units), 0);
        }
    }

    void everyCodeAndSample() {
        for (const bool muLaw : {true, false}) {
            const AudioSubTypes subType = muLaw ? AudioG711U : AudioG711A;
            std::vector<qint16> samples(65536), levels;
            std::iota(samples.begin(), samples.end(), qint16{-32768});
            QByteArray codes, codesOfSamples;
            for (int code = 0; code < 256; ++code) {
                codes.append(static_cast<char>(code));
                levels.push_back(static_cast<qint16>(expanded(muLaw, code)));
            }
            for (const qint16 sample : samples)
                codesOfSamples.append(static_cast<char>(compressed(muLaw, sample)));
            QCOMPARE(AudioUtils::decode(audioFrame(subType, codes)).payload(), pcm(levels));
            QCOMPARE(AudioUtils::encode(subType, pcm(samples)), codesOfSamples);
            QCOMPARE(AudioUtils::encode(subType, pcm({0, -1, -7, -8, 32767, -32768})),
                     hex(muLaw ? "ff7f7e7e8000" : "d55a5a55aa2a"));
        }
    }

    void partsOfSamples() {
        const std::array codes = {std::byte{0x00}, std::byte{0x80}, std::byte{0xFF}};
        QByteArray out(7, 'x');
        const auto bytes = std::as_writable_bytes(std::span(out.data(), 7));
        QCOMPARE(expandG711(G711Law::MuLaw, codes, bytes.first(5)), 2U);
        QCOMPARE(compressG711(G711Law::MuLaw, bytes.first(4), bytes.last(1)), 1U);
        QCOMPARE(out, hex("84827c7d") + "xx" + '\0');
        // The samples may lie anywhere.
        const QByteArray odd = "x" + pcm({32767, -32768}) + "x";
        const auto raw = QByteArray::fromRawData(odd.data() + 1, 5);
        QCOMPARE(AudioUtils::encode(AudioG711U, raw), hex("8000"));
        QCOMPARE(AudioUtils::encode(Audio16B8KHZ, raw), raw);
    }

    void decodes() {
        const struct {
            int flags, target, newFlags;
            QByteArray payload;
            std::vector<qint16> samples;
        } rows[] = {{0x83, 2, 0x82, hex("ff0080"), {0, -32124, 32124}},
                    {3, 3, 3, hex("ff00"), {255}},
                    {0xF4, 3, 0xF2, hex("d555"), {8, -8}},
                    {3, 1, 1, hex("ff0080ff"), {0, -16062, -32124, 0, 32124, 16062, 0, 0}},
                    {0x12, 1, 0x11, pcm({1, -2, -32768}), {1, 0, -2, -16385, -32768, -32768}},
                    {5, -1, 1, pcm({100, 200}), {100, 150, 200, 200}},  // G.726, as if it were PCM
                    {0x0F, 0, 1, pcm({7}) + "x", {7, 7}},
                    {2, 1, 1, "x", {}},
                    {4, 1, 1, "", {}}};
        for (const auto& [flags, target, newFlags, payload, samples] : rows) {
            const Image frame = audioFrame(flags, payload);
            const Image result = AudioUtils::decode(target, frame);
            QCOMPARE(int{result.flags()}, newFlags);
            QCOMPARE(result.payload(), pcm(samples));
            QVERIFY(result.serverName() == "Gate" && frame.payload() == payload);
        }
    }

    void returnsSameFrame() {
        Image picture = audioFrame(3, "data"), null;
        picture.setType('V');
        null.setType('a');
        null.setFlags(3);
        for (Image frame : {picture, null, audioFrame(5, "data"), audioFrame(1, "data")}) {
            const Image results[] = {AudioUtils::decode(5, frame), AudioUtils::decode(frame),
                                     AudioUtils::encode(1, frame)};
            frame.setTime(7);
            for (const Image& result : results)
                QCOMPARE(result.time(), 7);
        }
    }
};

QTEST_GUILESS_MAIN(TestAudioUtils)
#include "tst_audioutils.moc"
