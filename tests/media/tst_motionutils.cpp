#include <pylon/media/motionutils.h>

#include <QtTest/QTest>

#include <array>
#include <random>
#include <vector>

using namespace pylon;

using Bytes = std::vector<unsigned char>;

namespace {

struct Mask {
    std::array<char, 120 * 90> cells;

    explicit Mask(char value = 'x') { cells.fill(value); }
    auto rows() { return reinterpret_cast<char(*)[120]>(cells.data()); }
    bool operator==(const Mask& other) const = default;
};

constexpr char tooShort[] = "Difference map too short";

std::mt19937 numbers(1);

int below(int limit) {
    return static_cast<int>(numbers() % static_cast<unsigned>(limit));
}

}  // namespace

class TestMotionUtils : public QObject {
    Q_OBJECT

private slots:
    // Texts as short as the rules allow, by an independent coder.
    void codesMasks() {
        const std::pair<int, const char*> texts[] = {
            {16, "A1KD2aVAcLAWAzlEaR"},
            {41, "Z0kLQ2ZaKGiXAkLAziUA"},
            {42, "a1zzjFAUSW2bFA2aM1V2cJ1kBAzlBW"},
            {64, "w0qIAzzzzzzgLAaVA"},
            {120, "z04mVR2dK1O2dGcIW4qEC2hW1aElXA3lHA3uAA3cTaF2cXcTaM2dCcG2eP12cP"},
            {120, "z195bEA"},
            {120, "z2A"}};
        for (const auto& [width, text] : texts) {
            Mask mask;
            QCOMPARE(MotionUtils::decodeMask(text, mask.rows()), width);
            QCOMPARE(MotionUtils::encodeMask(mask.rows(), width, 90), text);
        }
        Mask mask(0);
        QCOMPARE(MotionUtils::encodeMask(mask.rows(), 16, 16), "0");
        mask.rows()[1][15] = '\x80';  // as good as 1
        QCOMPARE(MotionUtils::encodeMask(mask.rows(), -5, 1000), "A0aCA");
        QCOMPARE(MotionUtils::encodeMask(mask.rows(), 1000, 90), "z0dZA");
        mask.rows()[16][0] = 1;
        QCOMPARE(MotionUtils::encodeMask(mask.rows(), 65, -5), "0bYA");
    }

    // Masks as random texts make them are the same after coding.
    void randomMasks() {
        constexpr char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwz";
        constexpr char runs[] = "001112222ABCDEFGKQXZZZaabcd";
        for (int i = 0; i < 2000; ++i) {
            QByteArray text(1, letters[i % 50]);
            for (int length = below(400); length > 0; --length)
                text += runs[below(27)];
            Mask mask, back, twin;
            const int width = MotionUtils::decodeMask(text, mask.rows());
            const int height = 16 + i % 75;
            text = MotionUtils::encodeMask(mask.rows(), width, height).toLatin1();
            QCOMPARE(MotionUtils::decodeMask(text, back.rows()), text.size() == 1 ? 1 : width);
            for (int row = 0; row < height; ++row)
                QVERIFY(std::equal(back.rows()[row], back.rows()[row] + width, mask.rows()[row]));
            QVERIFY(MotionUtils::tryDecodeMask(text, twin.cells) && twin == back);
        }
    }

    void decodesText() {
        // Text, width, the first cells of row 0, x if untouched, and four of row 1.
        std::vector<std::tuple<QByteArray, int, QByteArray, QByteArray>> rows = {
            {"", 1, "111", "1111"},
            {"z2", 120, "222", "2222"},
            {"A10dI10", 16, "1000000000000000000", "0000"},
            {"A0N10N2", 16, "00000000000000011111", "0000"},
            {"x#", 1, "11", "1111"},
            {"z2AA", 120, "220111", "1111"},
            {"A01#", -1, "01xx", "xxxx"}};
        for (const char invalid : {'/', ':', '@', '[', '`', '{', '\xff'})
            rows.push_back({QByteArray("A0") + invalid, -1, "0xx", "xxxx"});
        QString error;
        for (const auto& [text, width, above, below] : rows) {
            Mask mask, twin;
            QCOMPARE(MotionUtils::decodeMask(text, mask.rows()), width);
            QByteArray cells(mask.cells.data(), 124);
            for (char value = 0; value < 3; ++value)
                cells.replace(value, static_cast<char>('0' + value));
            QVERIFY2(cells.startsWith(above) && cells.endsWith(below), cells);
            QCOMPARE(MotionUtils::tryDecodeMask(text, twin.cells, &error).value_or(-1), width);
            if (width < 0)
                QCOMPARE(error,
                         QString("Invalid character in mask text at byte %1").arg(text.size() - 1));
            QVERIFY(twin == (width > 0 ? mask : Mask()));
        }
        // The end of the text is that of its memory.
        Mask mask;
        QVERIFY(!MotionUtils::tryDecodeMask(QByteArray("0\0", 2), mask.cells, &error));
        QVERIFY(!MotionUtils::tryDecodeMask("z1", std::span(mask.cells).first(10799), &error));
        QVERIFY(error == "Mask too small" && mask == Mask());
    }

    // A map of all multiples of the step, and random ones. Buffers have the very sizes, so that a
    // sanitizer sees each byte too far.
    void diffMaps() {
        const std::pair<int, QByteArray> rows[] = {
            {15, "92c144a74adaf863967a6bb6ff80"},
            {8, "a0814abc675be1c7973e9d7b77f0f1f2f3f4f5f6f7f8f9fafbfcfdfeff"},
            {4,
             "c04158ceb7c1c3c5c7c9cbcce6f3b9fd0e8f4ba7d4eaf5bafd8ecf6bb7dceef7bbfe0f0f8bc7e4f2f9bc"
             "fe8f4fabd7ecf6fbbdff0f8fcbe7f4fafdbeff8fcfebf7fcfeffbfe0"},
            {2,
             "c0021970c72cf4d76df81c1e170f89c5e371f91c9e572f98e679ae6f9ce779ee7fa0e87a2e8fa4e97a6e"
             "9fa8ea7aaeafaceb7aeebfb0ec7b2ecfb4ed7b6edfb8ee7baeefbcef7beeffc0f07c2f0fc4f17c6f1fc8"
             "f27caf2fccf37cef3fd0f47d2f4fd4f57d6f5fd8f67daf6fdcf77def7fe0f87e2f8fe4f97e6f9fe8fa7e"
             "afafecfb7eefbff0fc7f2fcff4fd7f6fdff8fe7fafeffcff7feffc"},
            {51, "020300336699ccff"}};
        Bytes coded;
        roundTrip(Bytes(200, 7), 1, 200, 99, coded);  // may be high, as it is not coded
        constexpr int sizes[][2] = {{1, 1}, {127, 63}, {9, 7}, {64, 1}, {65, 1}, {72, 1}, {0, 5}};
        for (const auto& [step, golden] : rows) {
            Bytes map;
            for (int cell = 0; cell < 256; cell += step)
                map.push_back(static_cast<unsigned char>(cell));
            const int width = QByteArray::fromHex(golden).front() & 0x7F;
            roundTrip(map, width, static_cast<int>(map.size()) / width, step, coded);
            QCOMPARE(
                QByteArray(reinterpret_cast<const char*>(coded.data()), qsizetype(coded.size()))
                    .toHex(),
                golden);
            for (int round = 0; round < 200; ++round) {
                const auto& [columns, lines] = sizes[round % 7];
                map.resize(static_cast<std::size_t>(columns * lines));
                for (unsigned char& cell : map)  // all values, few of them, mostly small ones
                    cell = static_cast<unsigned char>(below(1 + below(round % 5 == 0 ? 1 : 256)));
                roundTrip(map, columns, lines, step, coded);
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }

    void refusesDiffMaps() {
        constexpr char range[] = "Difference map dimensions out of range";
        constexpr char noRoom[] = "Buffer too small";
        // Width, height, step, cells there are, bytes to write to.
        const std::tuple<int, int, int, std::size_t, std::size_t, const char*> rows[] = {
            {128, 1, 4, 9999, 9999, range}, {1, 64, 15, 9999, 9999, range},
            {1, 256, 3, 9999, 9999, range}, {-1, 9, 2, 9999, 9999, range},
            {9, -1, 2, 9999, 9999, range},  {9, 7, 8, 62, 9999, tooShort},
            {9, 7, 2, 63, 80, noRoom},      {9, 7, 1, 63, 64, noRoom}};
        QString error;
        for (const auto& [width, height, step, cells, room, reason] : rows) {
            Bytes out(room, 0xA5);
            QVERIFY(!MotionUtils::tryEncodeDiffMap(Bytes(cells, 0xFF), width, height, step, out,
                                                   &error));
            QCOMPARE(error, reason);
            QCOMPARE(out, Bytes(room, 0xA5));
        }
        Bytes small(62);
        for (const Bytes& coded : {Bytes{9, 7}, Bytes{0x89, 0xC7}})
            QVERIFY(!MotionUtils::tryDecodeDiffMap(coded, small, &error) && error == noRoom);
        QCOMPARE(MotionUtils().encodeDiffMap(nullptr, -10, -1, 15, small.data()), 2);
    }

    void bits() {
        const MotionUtils utils;
        for (int i = 0; i < 32 * 8; ++i) {
            const int n = 1 + i / 8, start = i % 8, value = static_cast<int>(numbers());
            Bytes buffer(6, 0xFF);
            int position = 0;
            for (const auto& [bits, number] : {std::pair{start, 0}, {n, value}, {-3, -1}, {1, -1}})
                utils.writeUn(buffer.data(), position, bits, number);
            QCOMPARE(position, start + n + 1);
            position = start;
            QCOMPARE(MotionUtils::readUn(buffer.data(), position, n),
                     static_cast<int>(static_cast<unsigned>(value) & (~0U >> (32 - n))));
            QCOMPARE(MotionUtils::readUn(buffer.data(), position, 1), 1);
            QCOMPARE(position, start + n + 1);
        }
        Bytes buffer = {0x0F, 0xFF};
        int position = 2;
        utils.writeUn(buffer.data(), position, 7, 0b1000001);
        QCOMPARE(buffer, Bytes({0x2F, 0x80}));
    }

private:
    // Gives the coded form, also to be decoded again, whole and cut.
    static void roundTrip(const Bytes& map, int width, int height, int step, Bytes& coded) {
        const MotionUtils utils;
        coded.assign(MotionUtils::maxCodedSize(width, height, step) + 1, 0xA5);
        Bytes checked(coded.size() - 1), back(map.size()), twin(map.size()), wanted(map);
        const auto size = static_cast<std::size_t>(
            utils.encodeDiffMap(map.data(), width, height, step, coded.data()));
        QVERIFY(size < coded.size() && coded[size] == 0xA5);
        Bytes(coded.begin(), coded.begin() + qsizetype(size)).swap(coded);
        QCOMPARE(MotionUtils::tryEncodeDiffMap(map, width, height, step, checked), size);
        checked.resize(size);
        QCOMPARE(checked, coded);

        utils.decodeDiffMap(coded.data(), back.data());
        for (unsigned char& cell : wanted) {
            if (step <= 15)
                cell = static_cast<unsigned char>(cell / step * step);
            if (step == 15 && cell == 255)
                cell = 240;
        }
        QCOMPARE(back, wanted);
        const auto decoded = MotionUtils::tryDecodeDiffMap(coded, twin);
        QVERIFY(decoded && decoded->width == width && decoded->height == height);
        QCOMPARE(twin, wanted);
        for (const std::size_t cut : {numbers() % size, size - 1}) {
            QString error;
            const Bytes part(coded.begin(), coded.begin() + qsizetype(cut));
            if (cut < 2 || !map.empty())
                QVERIFY(!MotionUtils::tryDecodeDiffMap(part, twin, &error) && error == tooShort);
        }
    }
};

QTEST_GUILESS_MAIN(TestMotionUtils)
#include "tst_motionutils.moc"
