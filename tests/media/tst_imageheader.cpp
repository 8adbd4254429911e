#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imagebase.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <QtCore/QBuffer>
#include <QtTest/QtTest>

#include <utility>

using namespace pylon;

namespace {

const LyraImageHeaderParserV4 parser;

const QByteArray goldenHeader =
    hex("5d000080"      // V4, 93 bytes
        "03000100"      // camera 3, track 1
        "35a42e4a7700"  // 512345678901
        "15 f2"         // CET, -3:30
        "d6 88 19 09"   // encrypted new-key 'V', flags, rate, block length
        "4c796f6e00"    // "Lyon"
        "47617465");    // "Gate"

// data with other bytes from offset on.
QByteArray patched(QByteArray data, qsizetype offset, const char* bytes) {
    return data.replace(offset, hex(bytes).size(), hex(bytes));
}

// Sizes, channel and time word, type byte with the bits it held, flags and rate.
QString describe(const ImageHeaderBase& header) {
    return QString::asprintf(
        "%u %u %u | %x %llx %d %d | %x%s%s %x %u", header.totalSize, header.headerSize,
        header.extensionSize, header.channel, static_cast<quint64>(header.time),
        header.timeZoneOffset, header.timeZoneAbbrevation.index(), header.type,
        header.encrypted ? "e" : "", header.newKeyRequired ? "k" : "", header.flags, header.rate);
}

// The slots of a header as one text.
QByteArray slotsOf(const ImageHeaderBase& header) {
    return header.extensions.join('|');
}

// Can neither seek nor tell its position, as a socket.
class Stream : public QBuffer {
public:
    using QBuffer::QBuffer;
    bool isSequential() const override { return true; }
};

}  // namespace

class TestImageHeader : public QObject {
    Q_OBJECT

private slots:
    void parses() {
        const ImageHeaderBase fresh;
        QCOMPARE(describe(fresh), "0 0 0 | 0 0 0 0 | 2d 0 0");
        QVERIFY(fresh.loadTimer.resolution() < 1'000'000);  // started

        const QByteArray empty = headerBytes();
        const struct {
            QByteArray data;
            const char* fields;
            const char* writtenType;
        } rows[] = {
            {goldenHeader, "93 29 9 | 10003 774a2ea435 -14 21 | 56ek 88 25", "d6"},
            {patched(empty, 16, "16"), "20 20 0 | 3 0 0 0 | 56 0 0", "56"},
            {patched(empty, 16, "96"), "20 20 0 | 3 0 0 0 | 56e 0 0", "d6"},
            {patched(empty, 14, "6fff40"), "20 20 0 | 3 0 -1 111 | 40k 0 0", "40"},
        };
        for (const auto& [data, fields, writtenType] : rows) {
            const ImageHeaderBase header(data);
            QCOMPARE(describe(header), fields);
            QCOMPARE(header.receivedEncrypted, header.encrypted);
            QByteArray out;
            parser.writeHeader(header, out);
            QCOMPARE(out.toHex(' '), patched(data, 16, writtenType).toHex(' '));
        }
    }

    void rejects() {
        const QByteArray small("Header too small");
        const QByteArray wrong("Wrong header");
        const QByteArray unknown("Unknown header protocol");
        const QByteArray dropped("Protocol support dropped");
        const QByteArray mismatch("Size mismatch");
        const QByteArray empty = headerBytes();
        const struct {
            const char* name;
            QByteArray data;
            QByteArray detected;
            QByteArray direct;  // when the caller chose the parser
        } rows[] = {
            {"three bytes", empty.first(3), unknown, small},
            {"19 bytes", empty.first(19), small, small},
            {"20 bytes", empty, "", ""},
            {"legacy", hex("ffffffff"), dropped, small},
            {"legacy, long", patched(empty, 0, "ffffffff"), dropped, wrong},
            {"bit 30", patched(empty, 3, "40"), unknown, wrong},
            {"bit 26", patched(empty, 3, "84"), unknown, wrong},
            {"larger than frame", patched(headerBytes(" "), 0, "14"), mismatch, mismatch},
            {"below 20", patched(empty, 0, "13"), mismatch, mismatch},
            {"block cut off", headerBytes("abc").chopped(1), mismatch, mismatch},
        };
        for (const auto& [name, data, detected, direct] : rows) {
            ImageHeaderBase header;
            QVERIFY2(errorOf([&, &bytes = data] { header.loadFromData(bytes); }) == detected, name);
            QVERIFY2(errorOf([&, &bytes = data] { parser.parseHeader(bytes, header); }) == direct,
                     name);
        }
    }

    void rejectionLeavesRawValues() {
        const QString raw(" 0 9 | 10003 f21500774a2ea435 0 0 | d6 88 25");
        ImageHeaderBase header;
        errorOf([&] { parser.parseHeader(patched(goldenHeader, 3, "84"), header); });
        QCOMPARE(describe(header), "2214592605" + raw);
        errorOf([&] { parser.parseHeader(goldenHeader.chopped(1), header); });
        QCOMPARE(describe(header), "93" + raw);
    }

    void decodesSlots() {
        const std::pair<const char*, QByteArray> rows[] = {
            {"", "s|c|a|d|b|m|t"},
            {"0000000000000000", "s|c|a|d|b|m|t"},
            {"5300 00 024142 1f0143 44", "sS|c|AB|C|bD|m|t"},  // text appends, binary replaces
            {"1f00 1f00 1f00", "|||d|b|m|t"},
            {"00 00 1f", "s|c||d|b|m|t"},
            {"00 05", "s||a|d|b|m|t"},  // cut off
            {"1fff 4142", "AB|c|a|d|b|m|t"},
            {"2000 1e58", "s |X|a|d|b|m|t"},  // text from byte 32 on
            {"80ff1f01", "s\x80\xff\x1f\x01|c|a|d|b|m|t"},
            {"0141 0141 0141 0141 0141 0141 0141 0142", "A|A|A|A|A|A|A"},
        };
        for (const auto& [block, after] : rows) {
            ImageHeaderBase header;
            header.extensions = {"s", "c", "a", "d", "b", "m", "t"};
            // The byte behind the block must not be read as part of it.
            header.loadFromData(headerBytes(hex(block), 1) + "P");
            QCOMPARE(slotsOf(header), after);
        }
        ImageHeaderBase header;
        header.extensions[0] = headerBytes(hex("0141 0142"));
        header.loadFromData(header.extensions.at(0));  // the bytes may be its own
        QCOMPARE(slotsOf(header), "A|B|||||");
    }

    void encodesSlots_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("block");  // null when the content is too large
        QTest::addColumn<QByteArray>("decoded");

        const auto row = [](const char* name, const QByteArray& content,
                            const QByteArray& block = {}, const QByteArray& decoded = {}) {
            QTest::newRow(name) << content << block << (decoded.isNull() ? content : decoded);
        };
        const QByteArray x(255, 'x');
        row("none", "||||||", "");
        row("every slot", "s|c|a|d|b|m|t", hex("7300 6300 0161 0164 0162 6d00 74"));
        row("30 bytes", "||" + x.first(30) + "||||", hex("0000 1e") + x.first(30));
        row("31 bytes", "||" + x.first(31) + "||||", hex("0000 1f1f") + x.first(31));
        row("254, binary", "||" + x.first(250) + "||||", hex("0000 1ffa") + x.first(250));
        row("254, text", "||||||" + x.first(248), hex("000000000000") + x.first(248));
        row("inner zeros", "||" + hex("0700") + "|||h|", hex("0000 020700 00 00 68"));
        row("trailing zeros", "|||" + hex("ff0000") + "|||", hex("000000 03ff"), "|||\xff|||");
        row("text below 32", "\x05||||||", hex("05"), "||||||");
        row("low byte of 300", "||||" + QByteArray(300, '\0') + "||", hex("00000000 1f2c"),
            "||||||");
        row("255, text", x + "||||||");
        row("255, binary", "||" + x.first(251) + "||||");
        row("all together", QByteArrayList(7, x.first(36)).join('|'));
        row("megabytes", "||||||" + QByteArray(1 << 22, 'x'));
    }

    void encodesSlots() {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, block);
        ImageBase image;
        image.extensions = content.split('|');
        image.totalSize = 7;
        image.payload = "abc";
        QByteArray out;
        const QByteArray error(block.isNull() ? "Extension field is too large" : "");
        QCOMPARE(errorOf([&] { parser.writeHeader(image, out); }), error);
        QCOMPARE(errorOf([&] { parser.updateTotalSize(image); }), error);
        QCOMPARE(out.sliced(out.isEmpty() ? 0 : 20).toHex(' '), block.toHex(' '));
        QCOMPARE(image.totalSize, block.isNull() ? 7 : static_cast<quint32>(23 + block.size()));
        if (!block.isNull())
            QTEST(slotsOf(ImageHeaderBase(headerBytes(block))), "decoded");
    }

    void writesOverFrontOfArray() {
        ImageBase header(headerBytes("Gate", 3) + "abc");
        header.extensions[1] = "Door";
        QByteArray out(30, 'x');
        const QByteArray shared = out;
        parser.writeHeader(header, out);
        QCOMPARE(out.first(4).toHex(), "20000080");  // 27 and 5 more
        QCOMPARE(out.sliced(20), "Gate" + hex("00") + "Doorx");
        QCOMPARE(shared, QByteArray(30, 'x'));
        parser.updateTotalSize(header);
        QVERIFY(describe(header).startsWith("32 24 4 "));

        // Unsigned arithmetic wraps; a time beyond 48 bits spills into the zone.
        header.totalSize = 0;
        header.extensions = QByteArrayList(7);
        header.time = -1;
        parser.writeHeader(header, out);
        QCOMPARE(out.first(4).toHex(), "fcffffff");
        QCOMPARE(out.sliced(8, 8).toHex(), "ffffffffffffffff");
    }

    void sizeField() {
        const std::pair<QByteArray, quint32> rows[] = {
            {hex("e8030080 01"), 1000}, {hex("ffffffff"), 0x3FFFFFF}, {hex("e80300"), 0}};
        for (auto [data, size] : rows) {
            Stream stream(&data);
            QVERIFY(stream.open(QIODevice::ReadOnly));
            quint32 read = 1;
            parser.readSize(stream, read);
            QCOMPARE(read, size);
            QCOMPARE(stream.read(8), data);
        }
        QByteArray frame(1000, 'x');
        parser.patchSize(frame);
        QCOMPARE(frame, hex("e8030080") + QByteArray(996, 'x'));
        QByteArray tooShort("xyz");
        parser.patchSize(tooShort);
        QCOMPARE(tooShort, "xyz");
    }

    void handles() {
        using enum ImageHeaderExtension;
        ImageHeader header;
        header.addAbsentExtensionsFrom(ImageHeader());
        QVERIFY(header.isNull() && header.channel() == 0 && !header.isNewKeyRequired());
#ifdef QT_NO_DEBUG
        QCOMPARE(header.extension(CameraName), "");
#endif
        // The size field is not compared with the length of the data.
        QCOMPARE(header.loadFromData(goldenHeader), 29);
        QVERIFY(header.isNewKeyRequired());
        const ImageHeader copy = header;
        QCOMPARE(header.loadFromData(headerBytes("!")), 21);
        QVERIFY(!copy.isNewKeyRequired() && copy.channel() == 3);
        QCOMPARE(copy.extension(ServerName), "Lyon!");
        QCOMPARE(copy.extension(static_cast<ImageHeaderExtension>(7)), "");

        ImageHeader other;
        other.setAttachedData("side");
        Image image(other, 0);
        image.setId(7);
        ImageHeader fromImage(image);
        image.setId(8);
        fromImage.loadFromData(headerBytes("Oslo"));
        fromImage.addAbsentExtensionsFrom(header);
        QCOMPARE(fromImage.extension(ServerName), "Oslo");
        QCOMPARE(fromImage.extension(CameraName), "Gate");
        QCOMPARE(Image(fromImage, 0).id(), 7U);
        QCOMPARE(Image(fromImage, 0).attachedData(), "side");
    }
};

QTEST_APPLESS_MAIN(TestImageHeader)
#include "tst_imageheader.moc"
