#include "framebytes.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/g711.h>

#include <QtTest/QtTest>

#include <array>
#include <numeric>
#include <vector>

using namespace pylon;

namespace {

Image audioFrame(quint8 flags, const QByteArray& payload) {
    Image frame(headerBytes("Gate", payload.size()) + payload);
    frame.setType('a');
    frame.setFlags(flags);
    return frame;
}

QByteArray pcm(const std::vector<qint16>& samples) {
    return QByteArray(reinterpret_cast<const char*>(samples.data()),
                      static_cast<qsizetype>(samples.size() * sizeof(qint16)));
}

// The formulas of the law, as its reference coder writes them.
int expanded(bool muLaw, int code) {
    if (muLaw) {
        const int bits = code ^ 0xFF;
        const int t = ((bits & 15) * 8 + 132) << (bits >> 4 & 7);
        return bits & 0x80 ? 132 - t : t - 132;
    }
    const int bits = code ^ 0x55;
    const int segment = bits >> 4 & 7;
    int t = (bits & 15) << 4;
    t = segment == 0 ? t + 8 : (t + 0x108) << (segment - 1);
    return bits & 0x80 ? t : -t;
}

int compressed(bool muLaw, int sample) {
    constexpr std::array ends = {0xFF, 0x1FF, 0x3FF, 0x7FF, 0xFFF, 0x1FFF, 0x3FFF, 0x7FFF};
    const int mask = muLaw ? (sample < 0 ? 0x7F : 0xFF) : (sample < 0 ? 0x55 : 0xD5);
    const int v =
        muLaw ? (sample < 0 ? 132 - sample : sample + 132) : (sample < 0 ? -8 - sample : sample);
    int segment = 0;
    while (segment < 8 && v > ends[static_cast<std::size_t>(segment)])
        ++segment;
    if (segment == 8)
        return 0x7F ^ mask;
    const int shift = !muLaw && segment < 2 ? 4 : segment + 3;
    return (segment * 16 | (v >> shift & 15)) ^ mask;
}

}  // namespace

class TestAudioUtils : public QObject {
    Q_OBJECT

private slots:
    void formats();
    void durations_data();
    void durations();
    void everyCodeAndSample_data();
    void everyCodeAndSample();
    void spansOfDifferentSizes();
    void encodes();
    void decodes_data();
    void decodes();
    void returnsSameFrame_data();
    void returnsSameFrame();
};

void TestAudioUtils::formats() {
    const std::pair<const char*, int> expected[] = {
        {"Unknown Audio", 32000}, {"16B16KHZ", 32000}, {"16B8KHZ", 16000},      {"G711U", 8000},
        {"G711A", 8000},          {"G726X32", 32000},  {"Unknown Audio", 32000}};
    for (int value = 0; value < 256; ++value) {
        const auto& [name, rate] = expected[std::min(value & 15, 6)];
        Image frame;
        frame.setFlags(static_cast<quint8>(value));
        QCOMPARE(AudioUtils::audioFormatName(frame), name);
        QCOMPARE(AudioUtils::bytesRate(static_cast<AudioSubTypes>(value & 15)), rate);
    }
    QCOMPARE(AudioUtils::bytesRate(static_cast<AudioSubTypes>(-1)), 32000);
    QCOMPARE(AudioUtils::maxSubType(), 4);
}

void TestAudioUtils::durations_data() {
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("subType");
    QTest::addColumn<int>("units");
    QTest::addColumn<int>("duration");
    QTest::newRow("one second") << 8000 << 3 << 1000 << 1000;
    QTest::newRow("truncates") << 15999 << 2 << 300 << 299;
    QTest::newRow("G.726 as unknown") << 4000 << 5 << 1000 << 125;
    QTest::newRow("largest product") << 2147483 << 4 << 1000 << 268435;
    QTest::newRow("wraps to negative") << 2147484 << 4 << 1000 << -268435;
    QTest::newRow("wraps to zero") << 65536 << 1 << 65536 << 0;
    QTest::newRow("truncates toward zero") << -1 << 4 << 15999 << -1;
}

void TestAudioUtils::durations() {
    QFETCH(int, bytes);
    QFETCH(int, subType);
    QFETCH(int, units);
    QTEST(AudioUtils::duration(bytes, static_cast<AudioSubTypes>(subType), units), "duration");
    if (bytes < 0)
        return;
    Image frame = audioFrame(static_cast<quint8>(0xF0 | subType), QByteArray(bytes, 'x'));
    QTEST(AudioUtils::duration(frame, units), "duration");
    QCOMPARE(AudioUtils::duration_thrifties(frame), AudioUtils::duration(frame, 300));
    frame.setType('V');
    QCOMPARE(AudioUtils::duration_thrifties(frame), 0);
}

void TestAudioUtils::everyCodeAndSample_data() {
    QTest::addColumn<bool>("muLaw");
    QTest::addColumn<QByteArray>("known");  // Codes of 0, -1, -7, -8, 32767 and -32768.
    QTest::newRow("mu-law") << true << hex("ff 7f 7e 7e 80 00");
    QTest::newRow("A-law") << false << hex("d5 5a 5a 55 aa 2a");
}

void TestAudioUtils::everyCodeAndSample() {
    QFETCH(bool, muLaw);
    const AudioSubTypes subType = muLaw ? AudioG711U : AudioG711A;
    QByteArray codes(256, Qt::Uninitialized);
    std::iota(codes.begin(), codes.end(), '\0');
    const QByteArray samples = AudioUtils::decode(audioFrame(quint8(subType), codes)).payload();
    std::vector<qint16> expectedSamples;
    for (int code = 0; code < 256; ++code)
        expectedSamples.push_back(static_cast<qint16>(expanded(muLaw, code)));
    QCOMPARE(samples, pcm(expectedSamples));

    std::vector<qint16> all(65536);
    std::iota(all.begin(), all.end(), qint16{-32768});
    QByteArray expectedCodes;
    for (const qint16 sample : all)
        expectedCodes.append(static_cast<char>(compressed(muLaw, sample)));
    QCOMPARE(AudioUtils::encode(subType, pcm(all)), expectedCodes);
    QTEST(AudioUtils::encode(subType, pcm({0, -1, -7, -8, 32767, -32768})), "known");

    // What was expanded compresses to the same code, but for the second zero of mu-law.
    if (muLaw)
        codes[0x7F] = '\xff';
    QCOMPARE(AudioUtils::encode(subType, samples), codes);
}

void TestAudioUtils::spansOfDifferentSizes() {
    const std::array codes = {std::byte{0x00}, std::byte{0x80}, std::byte{0xFF}};
    std::array<std::byte, 7> out{};
    out.fill(std::byte{0x11});
    QCOMPARE(expandG711(G711Law::MuLaw, codes, std::span(out).first(5)), 2U);
    QCOMPARE(out[4], std::byte{0x11});
    QCOMPARE(compressG711(G711Law::MuLaw, std::span(out).first(4), std::span(out).last(1)), 1U);
    QCOMPARE(out[6], std::byte{0x00});
    QCOMPARE(expandG711(G711Law::ALaw, {}, out), 0U);
}

void TestAudioUtils::encodes() {
    QCOMPARE(AudioUtils::encode(AudioG711A, pcm({0, 0}) + "x"), hex("d5d5"));
    QCOMPARE(AudioUtils::encode(AudioG711U, "x"), QByteArray());
    QCOMPARE(AudioUtils::encode(Audio16B8KHZ, "xyz"), QByteArray("xyz"));
    // The samples may lie anywhere.
    const QByteArray shifted = "x" + pcm({32767, -32768});
    QCOMPARE(AudioUtils::encode(AudioG711U, QByteArray::fromRawData(shifted.constData() + 1, 4)),
             hex("8000"));
}

void TestAudioUtils::decodes_data() {
    QTest::addColumn<int>("flags");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("target");
    QTest::addColumn<int>("newFlags");
    QTest::addColumn<QByteArray>("samples");
    const auto row = [](const char* name, int flags, const QByteArray& payload, int target,
                        int newFlags, const std::vector<qint16>& samples) {
        QTest::newRow(name) << flags << payload << target << newFlags << pcm(samples);
    };
    row("mu-law to 8 kHz", 0x83, hex("ff0080"), 2, 0x82, {0, -32124, 32124});
    row("A-law to 8 kHz", 0xF4, hex("d555"), 3, 0xF2, {8, -8});
    row("mu-law to 16 kHz", 3, hex("ff0080ff"), 1, 1, {0, -16062, -32124, 0, 32124, 16062, 0, 0});
    row("toward zero", 0x12, pcm({1, -2, -32768, -32768}), 1, 0x11,
        {1, 0, -2, -16385, -32768, -32768, -32768, -32768});
    row("below every format", 2, pcm({5}), -1, 1, {5, 5});
    row("G.726 as PCM", 5, pcm({100, 200}), 4, 1, {100, 150, 200, 200});
    row("unnamed as PCM, odd byte", 0x0F, pcm({7}) + "x", 0, 1, {7, 7});
    row("one byte", 2, "x", 1, 1, {});
    row("no codes", 4, "", 1, 1, {});
}

void TestAudioUtils::decodes() {
    QFETCH(int, flags);
    QFETCH(QByteArray, payload);
    QFETCH(int, target);
    const Image frame = audioFrame(static_cast<quint8>(flags), payload);
    const Image result = AudioUtils::decode(target, frame);
    QTEST(int{result.flags()}, "newFlags");
    QTEST(result.payload(), "samples");
    QCOMPARE(result.serverName(), "Gate");
    QCOMPARE(result.totalSize(), frame.totalSize());
    QCOMPARE(frame.payload(), payload);
    if (target >= 2 && (flags & 15) < 5)
        QTEST(AudioUtils::decode(frame).payload(), "samples");
}

void TestAudioUtils::returnsSameFrame_data() {
    QTest::addColumn<Image>("frame");
    QTest::addColumn<int>("target");
    Image picture = audioFrame(3, "data");
    picture.setType('V');
    Image null;
    null.setType('a');
    null.setFlags(3);
    QTest::newRow("picture") << picture << 1;
    QTest::newRow("null") << null << 1;
    QTest::newRow("not above target") << audioFrame(5, "data") << 5;
    QTest::newRow("16 kHz") << audioFrame(1, "data") << 1;
    QTest::newRow("unknown") << audioFrame(0, "data") << 0;
}

void TestAudioUtils::returnsSameFrame() {
    QFETCH(Image, frame);
    QFETCH(int, target);
    const auto sameAs = [&](const Image& result) {
        frame.setTime(frame.time() + 1);
        return result.time() == frame.time();
    };
    QVERIFY(sameAs(AudioUtils::decode(target, frame)));
    QVERIFY(sameAs(AudioUtils::encode(target, frame)));
    if ((frame.flags() & 15) != 3 || frame.type() != 'a' || frame.isNull())
        QVERIFY(sameAs(AudioUtils::decode(frame)));
}

QTEST_GUILESS_MAIN(TestAudioUtils)
#include "tst_audioutils.moc"
