#include "framebytes.h"

#include <pylon/pylon.h>
#include <QtTest/QTest>

#include <array>

using namespace pylon;

namespace {

const LyraImageHeaderParserV4 parser;

const QByteArray goldenHeader =
    hex("5d000080"               // V4, 93 bytes
        "03000100"               // camera 3, track 1
        "35a42e4a7700 15 f2"     // 512345678901, CET, -3:30
        "d6 88 19 09"            // encrypted new-key 'V', flags, rate, block length
        "4c796f6e00 47617465");  // "Lyon", "Gate"

const QByteArray empty = headerBytes();

// data with other bytes from offset on.
QByteArray patched(QByteArray data, qsizetype offset, const char* bytes) {
    return data.replace(offset, hex(bytes).size(), hex(bytes));
}

// Sizes, channel and time word, type byte with the bits it held, flags and rate.
QString describe(const ImageHeaderBase& header) {
    return QString::asprintf(
        "%u %u %u | %x %llx %d %d | %x %d%d%d %x %u", header.totalSize, header.headerSize,
        header.extensionSize, header.channel, static_cast<quint64>(header.time),
        header.timeZoneOffset, header.timeZoneAbbrevation.index(), header.type, header.encrypted,
        header.receivedEncrypted, header.newKeyRequired, header.flags, header.rate);
}

}  // namespace

class TestImageHeader : public QObject {
    Q_OBJECT

private slots:
    void parsesAndWrites() {
        QCOMPARE(describe(ImageHeaderBase()), "0 0 0 | 0 0 0 0 | 2d 000 0 0");
        QVERIFY(ImageHeaderBase().loadTimer.resolution() < 1'000'000);  // started
        const std::tuple<QByteArray, const char*, const char*> rows[] = {
            {goldenHeader, "93 29 9 | 10003 774a2ea435 -14 21 | 56 111 88 25", "d6"},
            {empty, "20 20 0 | 3 0 0 0 | 56 000 0 0", "56"},
            {patched(empty, 16, "96"), "20 20 0 | 3 0 0 0 | 56 110 0 0", "d6"},
            {patched(empty, 14, "6fff61"), "20 20 0 | 3 0 -1 111 | 61 001 0 0", "61"}};
        for (const auto& [data, fields, writtenType] : rows) {
            const ImageHeaderBase header(data);
            QByteArray out;
            parser.writeHeader(header, out);
            QCOMPARE(describe(header), fields);
            QCOMPARE(out.toHex(' '), patched(data, 16, writtenType).toHex(' '));
        }
    }

    // By what users call, and by a parser that the caller chose.
    void rejects() {
        const std::array<QByteArray, 3> rows[] = {
            {empty, "", ""},
            {empty.first(19), "Header too small", "Header too small"},
            {patched(empty, 0, "ffffffff"), "Protocol support dropped", "Wrong header"},
            {patched(empty, 3, "84"), "Unknown header protocol", "Wrong header"},
            {patched(headerBytes(" "), 0, "14"), "Size mismatch", "Size mismatch"},
            {patched(empty, 0, "13"), "Size mismatch", "Size mismatch"},
            {headerBytes("abc").chopped(1), "Size mismatch", "Size mismatch"}};
        for (const auto& [data, detected, direct] : rows) {
            ImageHeaderBase header;
            QCOMPARE(errorOf([&] { header.loadFromData(data); }), detected);
            QCOMPARE(errorOf([&] { parser.parseHeader(data, header); }), direct);
        }
    }

    // What is in the slots stays where a block is silent: text appends, binary replaces.
    void decodesSlots() {
        const std::pair<const char*, const char*> rows[] = {
            {"", "s|c|a|d|b|m|t"},
            {"0000000000000000", "s|c|a|d|b|m|t"},
            {"5300 00 024142 1f0143 44", "sS|c|AB|C|bD|m|t"},
            {"1f00 1f", "||a|d|b|m|t"},
            {"1fff 4142", "AB|c|a|d|b|m|t"},  // cut off
            {"2000 1e58", "s |X|a|d|b|m|t"},  // text from byte 32 on
            {"80ff1f01", "s\x80\xff\x1f\x01|c|a|d|b|m|t"},
            {"0141 0141 0141 0141 0141 0141 0141 0142", "A|A|A|A|A|A|A"}};
        for (const auto& [block, after] : rows) {
            ImageHeaderBase header;
            header.extensions = QByteArray("s|c|a|d|b|m|t").split('|');
            // The byte behind the block must not be read as part of it.
            header.loadFromData(headerBytes(hex(block), 1) + "P");
            QCOMPARE(header.extensions.join('|'), after);
        }
    }

    // Slots, and the block they make; null when they are too large.
    void encodesSlots() {
        const QByteArray x(255, 'x');
        const std::pair<QByteArray, QByteArray> rows[] = {
            {"||||||", ""},
            {"s|c|a|d|b|m|t", hex("7300 6300 0161 0164 0162 6d00 74")},
            {"||" + x.first(30) + "||||", hex("0000 1e") + x.first(30)},
            {"||" + x.first(31) + "||||", hex("0000 1f1f") + x.first(31)},
            {"||||||" + x.first(248), hex("000000000000") + x.first(248)},
            {"||" + hex("0700") + "|||h|", hex("0000 020700 00 00 68")},
            {"|||" + hex("ff0000") + "|||", hex("000000 03ff")},
            {"||||" + QByteArray(300, '\0') + "||", hex("00000000 1f2c")},
            {x + "||||||", {}}};
        for (const auto& [content, block] : rows) {
            ImageHeaderBase header;
            header.extensions = content.split('|');
            QByteArray out;
            const char* const error = block.isNull() ? "Extension field is too large" : "";
            QCOMPARE(errorOf([&] { parser.writeHeader(header, out); }), error);
            QCOMPARE(out.mid(20), block);
        }
    }

    void handles() {
        using enum ImageHeaderExtension;
        ImageHeader header, other;
        header.addAbsentExtensionsFrom(other);
        QVERIFY(header.isNull() && header.channel() == 0 && !header.isNewKeyRequired());
        // The size field is not compared with the length of the data.
        QVERIFY(header.loadFromData(goldenHeader) == 29 && header.isNewKeyRequired());
        const ImageHeader copy = header;
        QCOMPARE(header.loadFromData(patched(headerBytes("!"), 16, "96")), 21);
        QVERIFY(copy.extension(ServerName) == "Lyon!" && !copy.isNewKeyRequired());
        other.setAttachedData("side");
        other.loadFromData(headerBytes(hex("00") + "Oslo"));
        ImageHeader ofImage(Image(other, 0));
        ofImage.addAbsentExtensionsFrom(header);
        QCOMPARE(ofImage.extension(ServerName) + ofImage.extension(CameraName), "Lyon!Oslo");
        QVERIFY(ofImage.channel() == 3 && Image(ofImage, 0).attachedData() == "side");
    }

    // At an odd address.
    void numbersFromBytes() {
        constexpr quint64 number = 0xF1E1D1C1B1A19181;
        unsigned char bytes[8];
        convertUInt64ToByteArray(number, bytes);
        const QByteArray memory = "x" + QByteArray(reinterpret_cast<char*>(bytes), 8);
        const auto odd = std::as_bytes(std::span(memory)).last(8);
        const auto areRight = [&](auto... read) {
            return ((read(odd) == static_cast<decltype(read(odd))>(number)) && ...);
        };
        QVERIFY(areRight(byteSpanToInt8, byteSpanToInt16, byteSpanToInt32, byteSpanToInt64));
        QVERIFY(areRight(byteSpanToUint8, byteSpanToUint16, byteSpanToUint32, byteSpanToUint64));
        QVERIFY(areRight(tryByteSpanToInt8, tryByteSpanToUint8, tryByteSpanToInt16));
        QVERIFY(areRight(tryByteSpanToUint16, tryByteSpanToInt32, tryByteSpanToUint32));
        QVERIFY(areRight(tryByteSpanToInt64, tryByteSpanToUint64) && !tryByteSpanToUint8({}));
        QVERIFY(!tryByteSpanToInt32(odd.first(3)) && tryByteSpanToInt32(odd.first(4)));
        quint64 joined = 0x0F0000000000000F;
        convertByteArrayToUInt64(bytes, joined);  // what was there stays
        QCOMPARE(joined, 0xFFE1D1C1B1A1918F);
    }
};

QTEST_APPLESS_MAIN(TestImageHeader)
#include "tst_imageheader.moc"
