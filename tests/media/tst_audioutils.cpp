#include "framebytes.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/g711.h>
#include <QtTest/QTest>

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
    void formatsAndDurations() {
        const std::pair<const char*, int> formats[] = {
            {"Unknown Audio", 32000}, {"16B16KHZ", 32000}, {"16B8KHZ", 16000},      {"G711U", 8000},
            {"G711A", 8000},          {"G726X32", 32000},  {"Unknown Audio", 32000}};
        for (int subType = 0; subType < 16; ++subType) {
            const auto& [name, rate] = formats[std::min(subType, 6)];
            Image frame = audioFrame(0xF0 | subType, QByteArray(15999, 'x'));
            QCOMPARE(AudioUtils::audioFormatName(frame), name);
            QCOMPARE(AudioUtils::bytesRate(AudioSubTypes(subType)), rate);
            QCOMPARE(AudioUtils::duration(frame, 1000), 15'999'000 / rate);
            QCOMPARE(AudioUtils::duration_thrifties(frame), 15999 * 300 / rate);
            frame.setType('V');
            QCOMPARE(AudioUtils::duration(frame, 1000), 0);
        }
        QCOMPARE(AudioUtils::duration(2147484, AudioG711A, 1000), -268435);  // wraps
    }

    void everyCodeAndSample() {
        for (const AudioSubTypes law : {AudioG711U, AudioG711A}) {
            QByteArray codes, codesOfSamples;
            std::vector<qint16> levels, samples;
            for (int code = 0; code < 256; ++code) {
                codes.append(static_cast<char>(code));
                levels.push_back(static_cast<qint16>(expanded(law == AudioG711U, code)));
            }
            for (int sample = -32768; sample < 32768; ++sample) {
                samples.push_back(static_cast<qint16>(sample));
                codesOfSamples.append(static_cast<char>(compressed(law == AudioG711U, sample)));
            }
            QCOMPARE(AudioUtils::decode(audioFrame(law, codes)).payload(), pcm(levels));
            QCOMPARE(AudioUtils::encode(law, pcm(samples)), codesOfSamples);
        }
    }

    // What does not fit stays out; samples may lie anywhere.
    void partsOfSamples() {
        QByteArray out(7, 'x');
        const auto bytes = std::as_writable_bytes(std::span(out.data(), 7));
        const auto codes = std::as_bytes(std::span("\x00\x80\xFF", 3));
        QCOMPARE(expandG711(G711Law::MuLaw, codes, bytes.subspan(1, 5)), 2U);
        QCOMPARE(compressG711(G711Law::MuLaw, bytes.subspan(1, 4), bytes.last(1)), 1U);
        QCOMPARE(out, "x" + hex("84827c7d") + "x" + '\0');
        QCOMPARE(AudioUtils::encode(AudioG711U, pcm({32767, -32768}) + "x"), hex("8000"));
        QCOMPARE(AudioUtils::encode(Audio16B8KHZ, "xyz"), "xyz");
    }

    void decodes() {
        const std::tuple<int, int, QByteArray, int, std::vector<qint16>> rows[] = {
            {0x83, 2, hex("ff0080"), 0x82, {0, -32124, 32124}},
            {3, 3, hex("ff00"), 3, {255}},
            {0xF4, 3, hex("d555"), 0xF2, {8, -8}},
            {3, 1, hex("ff0080ff"), 1, {0, -16062, -32124, 0, 32124, 16062, 0, 0}},
            {0x12, 1, pcm({1, -2, -32768}), 0x11, {1, 0, -2, -16385, -32768, -32768}},
            // G.726, as if it were PCM.
            {5, AudioUtils::maxSubType(), pcm({100, 200}), 1, {100, 150, 200, 200}},
            {0x0F, 0, pcm({7}) + "x", 1, {7, 7}},
            {2, 1, "x", 1, {}}};
        for (const auto& [flags, target, payload, newFlags, samples] : rows) {
            Image frame = audioFrame(flags, payload);
            const Image result = AudioUtils::decode(target, frame);
            QCOMPARE(int{result.flags()}, newFlags);
            QCOMPARE(result.payload(), pcm(samples));
            QVERIFY(result.serverName() == "Gate" && frame.payload() == payload);
            frame.setTime(7);
            QCOMPARE(result.time() == 7, flags == newFlags);  // then it is the same frame
        }
        Image nothing, picture = audioFrame(3, "data");
        nothing.setType('a');
        QVERIFY(AudioUtils::decode(nothing).isNull());
        picture.setType('V');
        for (const Image& frame : {AudioUtils::decode(picture), AudioUtils::decode(1, picture),
                                   AudioUtils::encode(1, picture)})
            QCOMPARE(frame.payload(), "data");
    }
};

QTEST_GUILESS_MAIN(TestAudioUtils)
#include "tst_audioutils.moc"
