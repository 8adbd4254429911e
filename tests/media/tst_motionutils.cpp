#include <pylon/media/motionutils.h>

#include <QtTest/QtTest>

#include <array>
#include <bitset>
#include <numeric>
#include <random>
#include <string>
#include <vector>

using namespace pylon;

using Bytes = std::vector<unsigned char>;

namespace {

constexpr int maskCells = 120 * 90;

struct Mask {
    std::array<char, maskCells> cells{};

    auto rows() { return reinterpret_cast<char(*)[120]>(cells.data()); }
    char& at(int row, int column) { return cells[static_cast<std::size_t>(row * 120 + column)]; }
    bool operator==(const Mask& other) const = default;
};

std::mt19937 numbers(1);

int below(int limit) {
    return static_cast<int>(numbers() % static_cast<unsigned>(limit));
}

// Rectangles and single cells, so that runs of every kind and length occur.
Mask randomMask() {
    Mask mask;
    mask.cells.fill(static_cast<char>(below(2)));
    for (int shapes = below(12); shapes > 0; --shapes) {
        const int top = below(90), left = below(120), value = below(2);
        const int bottom = std::min(90, top + 1 + below(40));
        const int right = std::min(120, left + 1 + below(60));
        for (int row = top; row < bottom; ++row)
            std::fill(&mask.at(row, left), &mask.at(row, left) + (right - left), char(value));
    }
    for (int dots = below(3) * below(300); dots > 0; --dots)
        mask.at(below(90), below(120)) ^= 1;
    return mask;
}

// The code of a mask made cell by cell.
class ReferenceEncoder {
public:
    QString encode(Mask& mask, int width, int height) {
        wide_ = width == 120;
        if (wide_ || width <= 64)
            text_ += QChar(wide_ ? 'z' : width + (width <= 41 ? 49 : 55));
        int value = -1, length = 0;
        bool copy = false, emitted = false;
        for (int i = 0; i < width * height; ++i) {
            const int row = i / width, column = i % width, cell = mask.at(row, column);
            const bool likeAbove = row > 0 && mask.at(row - 1, column) == cell;
            if (length > 0 && cell == value) {
                copy = copy && likeAbove;
            } else if (length > 0 && copy && likeAbove) {
                value = 2;
            } else {
                if (length > 0)
                    emitRun(value, length);
                emitted = emitted || length > 0;
                value = cell;
                copy = likeAbove;
                length = 0;
            }
            ++length;
        }
        if (!emitted)
            text_.clear();
        return value != predicted_ ? text_ + QChar('0' + value) : text_;
    }

private:
    void emitRun(int value, int length) {
        if (value != predicted_) {
            text_ += QChar('0' + value);
            --length;
        }
        predicted_ = value;
        if (wide_) {
            text_ += QString(length / 5103, '9');
            length %= 5103;
            if (length >= 729)
                text_ += QChar(50 + length / 729);
            length %= 729;
        }
        text_ += QString(length / 702, 'z');
        length %= 702;
        if (length >= 27)
            text_ += QChar(96 + length / 27);
        length %= 27;
        if (length > 0) {
            text_ += QChar(64 + length);
            predicted_ = value == 0 ? 1 : 0;
        }
    }

    QString text_;
    int predicted_ = -1;
    bool wide_ = false;
};

// The codes of a step, written out.
std::string codeOf(int step, int q) {
    const auto bits = [](int value, int n) {
        return std::bitset<16>(static_cast<unsigned>(value)).to_string().substr(16U - unsigned(n));
    };
    if (step == 2)
        return codeOf(4, q >> 1) + bits(q & 1, 1);
    if (q == 0)
        return "0";
    if (step == 15)
        return q == 1 ? "1000" : q < 8 ? bits(16 + q, 5) : q < 16 ? bits(40 + q, 6) : "111";
    if (step == 8)
        return q == 1   ? "100"
               : q < 4  ? bits(8 + q, 4)
               : q < 8  ? bits(20 + q, 5)
               : q < 16 ? bits(104 + q, 7)
                        : bits(224 + q, 8);
    return q == 1 ? "10" : q < 6 ? bits(22 + q, 5) : q < 12 ? bits(218 + q, 8) : bits(448 + q, 9);
}

Bytes referenceCoded(const Bytes& map, int width, int height, int step) {
    std::string bits;
    for (const unsigned char cell : map)
        bits += codeOf(step, cell / step);
    const int stepBits = step == 15 ? 3 : step == 8 ? 2 : step == 4 ? 1 : 0;
    Bytes coded = {static_cast<unsigned char>(width | 0x80),
                   static_cast<unsigned char>(height | stepBits << 6)};
    for (std::size_t i = 0; i < bits.size(); i += 8) {
        std::string byte = bits.substr(i, 8);
        byte.resize(8, '0');
        coded.push_back(static_cast<unsigned char>(std::stoi(byte, nullptr, 2)));
    }
    return coded;
}

Bytes quantised(Bytes map, int step) {
    for (unsigned char& cell : map)
        cell = static_cast<unsigned char>(std::min(cell / step * step, step == 15 ? 240 : 255));
    return map;
}

}  // namespace

class TestMotionUtils : public QObject {
    Q_OBJECT

private slots:
    void masks_data();
    void masks();
    void longRuns();
    void randomMasks();
    void decodesText_data();
    void decodesText();
    void refusesMasks();
    void diffMaps_data();
    void diffMaps();
    void rawDiffMaps();
    void refusesDiffMaps_data();
    void refusesDiffMaps();
    void bits();
};

void TestMotionUtils::masks_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("set");  // The column of row 1 that is 1; none below 0.
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("decoded");
    QTest::newRow("uniform") << 16 << 16 << -1 << "0" << 1;
    QTest::newRow("uniform, widest") << 120 << 90 << -1 << "0" << 1;
    QTest::newRow("narrowest") << 16 << 16 << 0 << "A0OA" << 16;
    QTest::newRow("clamped") << -5 << 1000 << 15 << "A0aCA" << 16;
    QTest::newRow("last letter") << 41 << 20 << 0 << "Z0aMA" << 41;
    QTest::newRow("first small letter") << 42 << 20 << 0 << "a0aNA" << 42;
    QTest::newRow("last small letter") << 64 << 20 << 0 << "w0bIA" << 64;
    QTest::newRow("without letter") << 65 << 20 << 0 << "0bJA" << 1;
    QTest::newRow("widest") << 1000 << 90 << 0 << "z0dKA" << 120;
}

void TestMotionUtils::masks() {
    QFETCH(int, width);
    QFETCH(int, set);
    QFETCH(QString, text);
    QFETCH(int, height);
    Mask mask;
    if (set >= 0)
        mask.at(1, set) = 1;
    QCOMPARE(MotionUtils::encodeMask(mask.rows(), width, height), text);
    Mask back;
    back.cells.fill('x');
    QTEST(MotionUtils::decodeMask(text.toLatin1(), back.rows()), "decoded");
    if (set >= 0 && text != "0bJA")
        QCOMPARE(back.at(1, set), 1);
}

void TestMotionUtils::longRuns() {
    Mask mask;
    std::fill_n(mask.cells.begin(), 7350, char{1});
    QCOMPARE(MotionUtils::encodeMask(mask.rows(), 120, 90), "z195bE");
    // The cell above that of the second run is the last of a row.
    mask.cells.fill(0);
    std::fill_n(mask.cells.begin() + 119, 2, char{1});
    QCOMPARE(MotionUtils::encodeMask(mask.rows(), 120, 90), "z0dJB");
    // Runs like the row above, also of cells that only a decoder leaves.
    for (int row = 0; row < 90; ++row)
        mask.at(row, 60) = mask.at(row, 61) = 2;
    const QString text = MotionUtils::encodeMask(mask.rows(), 120, 90);
    Mask back;
    QCOMPARE(MotionUtils::decodeMask(text.toLatin1(), back.rows()), 120);
    QCOMPARE(back, mask);
}

void TestMotionUtils::randomMasks() {
    for (int i = 0; i < 2000; ++i) {
        Mask mask = randomMask();
        const int width = i % 4 == 0 ? 120 : 16 + i % 49;
        const int height = i % 3 == 0 ? 90 : 16 + i % 75;
        const QString text = MotionUtils::encodeMask(mask.rows(), width, height);
        QCOMPARE(text, ReferenceEncoder().encode(mask, width, height));
        Mask back;
        const int decoded = MotionUtils::decodeMask(text.toLatin1(), back.rows());
        if (text.size() == 1)
            continue;
        QCOMPARE(decoded, width);
        for (int row = 0; row < height; ++row)
            QVERIFY(std::equal(&back.at(row, 0), &back.at(row, 0) + width, &mask.at(row, 0)));
        Mask twin;
        QCOMPARE(MotionUtils::tryDecodeMask(text.toLatin1(), twin.cells), decoded);
        QCOMPARE(twin, back);

        const int gap = 65 + i % 55;
        QCOMPARE(MotionUtils::encodeMask(mask.rows(), gap, height),
                 ReferenceEncoder().encode(mask, gap, height));
    }
}

void TestMotionUtils::decodesText_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<QByteArray>("start");  // The first cells of row 0, then of row 1.
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("empty") << QByteArray("") << 1 << QByteArray("111") << QByteArray("111");
    QTest::newRow("ones") << QByteArray("1") << 1 << QByteArray("111") << QByteArray("111");
    QTest::newRow("two in row 0") << QByteArray("z2") << 120 << QByteArray("222")
                                  << QByteArray("222");
    QTest::newRow("tail goes on") << QByteArray("A10dI10") << 16
                                  << QByteArray("1000000000000000 000") << QByteArray("000");
    QTest::newRow("tail like above")
        << QByteArray("A0N10N2") << 16 << QByteArray("0000000000000001 1111")
        << QByteArray("0000000000000001 1111");
    QTest::newRow("unknown") << QByteArray("A01#") << -1 << QByteArray("01xx")
                             << QByteArray("xxxx");
    QTest::newRow("no width") << QByteArray("x#") << 1 << QByteArray("11") << QByteArray("11");
    QTest::newRow("y is none either")
        << QByteArray("yA0#") << 1 << QByteArray("11") << QByteArray("11");
    QTest::newRow("two inverts to 0")
        << QByteArray("z2AA") << 120 << QByteArray("220111") << QByteArray("111");
}

void TestMotionUtils::decodesText() {
    QFETCH(QByteArray, text);
    QFETCH(int, width);
    Mask mask;
    mask.cells.fill('x');
    QCOMPARE(MotionUtils::decodeMask(text, mask.rows()), width);
    for (int row = 0; row < 2; ++row) {
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, second);
        const QByteArray expected = (row == 0 ? start : second).replace(' ', "");
        QByteArray cells(&mask.at(row, 0), expected.size());
        for (char& cell : cells)
            cell = cell == 'x' ? cell : static_cast<char>('0' + cell);
        QCOMPARE(cells, expected);
    }
    Mask twin;
    twin.cells.fill('x');
    QCOMPARE(MotionUtils::tryDecodeMask(text, twin.cells).value_or(-1), width);
    QCOMPARE(twin == mask, width > 0);
}

void TestMotionUtils::refusesMasks() {
    Mask mask;
    mask.cells.fill('x');
    const Mask before = mask;
    const std::span<char> cells(mask.cells);
    QString error;
    QVERIFY(
        !MotionUtils::tryDecodeMask(std::string_view("z1"), cells.first(maskCells - 1), &error));
    QCOMPARE(error, "Mask too small");
    for (const std::string_view text : {"A0#", "/", ":", "@", "[", "`", "{"}) {
        QVERIFY(!MotionUtils::tryDecodeMask(text, cells, &error));
        QCOMPARE(error, "Invalid character in mask text");
    }
    QVERIFY(!MotionUtils::tryDecodeMask(std::string_view("0\0", 2), cells));
    QCOMPARE(mask, before);
    // The end of the text may be the end of its memory.
    QCOMPARE(MotionUtils::tryDecodeMask(std::span<const char>(), cells), 1);
    QCOMPARE(mask.cells.back(), 1);
}

void TestMotionUtils::diffMaps_data() {
    QTest::addColumn<int>("step");
    for (const int step : {2, 4, 8, 15})
        QTest::addRow("step %d", step) << step;
}

void TestMotionUtils::diffMaps() {
    QFETCH(int, step);
    const MotionUtils utils;
    const std::pair<int, int> sizes[] = {{1, 1},  {127, 63}, {16, 16}, {9, 7},
                                         {64, 1}, {65, 1},   {72, 1},  {0, 5}};
    for (int round = 0; round < 200; ++round) {
        const auto [width, height] = sizes[round % 8];
        Bytes map(static_cast<std::size_t>(width * height));
        // All values, few of them, mostly small ones.
        for (unsigned char& cell : map)
            cell = static_cast<unsigned char>(below(1 + below(round % 5 == 0 ? 1 : 256)));
        if (map.size() > 256 && round < 8)
            std::iota(map.begin(), map.end(), quint8{0});
        const Bytes expected = referenceCoded(map, width, height, step);
        const std::size_t bound = MotionUtils::maxCodedSize(width, height, step);
        QVERIFY(expected.size() <= bound);

        Bytes coded(bound + 1, 0xA5);
        const int size = utils.encodeDiffMap(map.data(), width, height, step, coded.data());
        QCOMPARE(std::size_t(size), expected.size());
        QCOMPARE(coded[expected.size()], 0xA5);
        coded.resize(expected.size());
        QCOMPARE(coded, expected);
        Bytes checked(bound);
        QCOMPARE(MotionUtils::tryEncodeDiffMap(map, width, height, step, checked), size);

        // In vectors of the very sizes, so that a sanitizer sees each byte too far.
        Bytes back(map.size(), 0xA5);
        utils.decodeDiffMap(coded.data(), back.data());
        QCOMPARE(back, quantised(map, step));
        std::fill(back.begin(), back.end(), quint8{0xA5});
        const auto decoded = MotionUtils::tryDecodeDiffMap(coded, back);
        QVERIFY(decoded && decoded->width == width && decoded->height == height);
        QCOMPARE(back, quantised(map, step));

        for (const std::size_t cut : {std::size_t(below(size)), std::size_t(size - 1)}) {
            const Bytes part(coded.begin(), coded.begin() + qsizetype(cut));
            QString error;
            if (cut < 2 || !map.empty()) {
                QVERIFY(!MotionUtils::tryDecodeDiffMap(part, back, &error));
                QCOMPARE(error, "Difference map too short");
            }
        }
    }
}

void TestMotionUtils::rawDiffMaps() {
    const MotionUtils utils;
    Bytes map(100 * 80);
    std::iota(map.begin(), map.end(), quint8{0});
    Bytes coded(map.size() + 2);
    QCOMPARE(utils.encodeDiffMap(map.data(), 100, 80, 3, coded.data()), 8002);
    QCOMPARE(coded[0], 100);
    QCOMPARE(coded[1], 80);
    Bytes back(map.size());
    utils.decodeDiffMap(coded.data(), back.data());
    QCOMPARE(back, map);
    const auto size = MotionUtils::tryDecodeDiffMap(coded, back);
    QVERIFY(size && size->width == 100 && size->height == 80);
    QCOMPARE(MotionUtils::tryEncodeDiffMap(map, 100, 80, 0, coded), 8002U);

    // One cell of 255: its code is shared with 240.
    QCOMPARE(utils.encodeDiffMap(map.data() + 255, 1, 1, 15, coded.data()), 3);
    QCOMPARE(Bytes(coded.begin(), coded.begin() + 3), Bytes({0x81, 0xC1, 0xE0}));
    QCOMPARE(utils.encodeDiffMap(map.data(), 10, 0, 15, coded.data()), 2);
    QCOMPARE(utils.encodeDiffMap(map.data(), 10, -1, 15, coded.data()), 2);
}

void TestMotionUtils::refusesDiffMaps_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("cells");
    QTest::addColumn<int>("room");
    QTest::addColumn<QString>("error");
    const QString range = "Difference map dimensions out of range";
    QTest::newRow("too wide") << 128 << 1 << 4 << 9999 << 9999 << range;
    QTest::newRow("too high") << 1 << 64 << 15 << 9999 << 9999 << range;
    QTest::newRow("raw, too high") << 1 << 256 << 3 << 9999 << 9999 << range;
    QTest::newRow("negative") << -1 << -1 << 2 << 9999 << 9999 << range;
    QTest::newRow("cells missing") << 9 << 7 << 8 << 62 << 9999 << "Difference map too short";
    QTest::newRow("no room, step 2") << 9 << 7 << 2 << 63 << 80 << "Buffer too small";
    QTest::newRow("no room, raw") << 9 << 7 << 1 << 63 << 64 << "Buffer too small";
    QTest::newRow("no room at all") << 0 << 0 << 15 << 0 << 1 << "Buffer too small";
}

void TestMotionUtils::refusesDiffMaps() {
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, step);
    QFETCH(int, cells);
    QFETCH(int, room);
    const Bytes map(static_cast<std::size_t>(cells), 0xFF);
    Bytes out(static_cast<std::size_t>(room), 0xA5);
    QString error;
    QVERIFY(!MotionUtils::tryEncodeDiffMap(map, width, height, step, out, &error));
    QTEST(error, "error");
    QVERIFY(!MotionUtils::tryEncodeDiffMap(map, width, height, step, out));
    QCOMPARE(out, Bytes(out.size(), 0xA5));

    Bytes small(62);
    for (const Bytes& coded : {Bytes{9, 7}, Bytes{0x89, 0xC7}}) {
        QVERIFY(!MotionUtils::tryDecodeDiffMap(coded, small, &error));
        QCOMPARE(error, "Buffer too small");
        QVERIFY(!MotionUtils::tryDecodeDiffMap(coded, small));
    }
}

void TestMotionUtils::bits() {
    const MotionUtils utils;
    for (int n = 1; n <= 32; ++n) {
        for (int start = 0; start < 8; ++start) {
            Bytes buffer(6, 0xFF);
            int position = 0;
            utils.writeUn(buffer.data(), position, start, 0);
            const int value = static_cast<int>(numbers());
            utils.writeUn(buffer.data(), position, n, value);
            utils.writeUn(buffer.data(), position, 0, -1);
            utils.writeUn(buffer.data(), position, -3, -1);
            QCOMPARE(position, start + n);
            utils.writeUn(buffer.data(), position, 1, -1);
            position = start;
            QCOMPARE(MotionUtils::readUn(buffer.data(), position, n),
                     static_cast<int>(static_cast<unsigned>(value) & (~0U >> (32 - n))));
            QCOMPARE(MotionUtils::readUn(buffer.data(), position, 1), 1);
            QCOMPARE(MotionUtils::readUn(buffer.data(), position, 0), 0);
            QCOMPARE(position, start + n + 1);
        }
    }
    Bytes buffer = {0x0F, 0xFF};
    int position = 2;
    utils.writeUn(buffer.data(), position, 7, 0b1000001);
    QCOMPARE(buffer, Bytes({0x2F, 0x80}));
}

QTEST_GUILESS_MAIN(TestMotionUtils)
#include "tst_motionutils.moc"
