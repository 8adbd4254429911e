#include "framebytes.h"

#include <pylon/media/image.h>
#include <pylon/media/imagebase.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <QtCore/QBuffer>
#include <QtTest/QtTest>

#include <algorithm>

using namespace pylon;

namespace {

using Slots = QList<QByteArray>;

const LyraImageHeaderParserV4 parser;

Slots slotsWith(ImageHeaderExtension slot, const QByteArray& content) {
    Slots result(imageHeaderExtensionCount);
    result[static_cast<qsizetype>(slot)] = content;
    return result;
}

const QByteArray goldenHeader =
    hex("5f000080"      // V4, 95 bytes
        "03000100"      // camera 3, track 1
        "35a42e4a7700"  // 512345678901
        "15 f2"         // CET, -3:30
        "d6 88 19 0b"   // encrypted new-key 'V', flags, rate, block length
        "4c796f6e00"    // "Lyon"
        "4761746500"    // "Gate"
        "00");          // no linked audio

// A device that can neither seek nor tell its position, as a socket.
class Stream : public QIODevice {
public:
    explicit Stream(const QByteArray& data) : rest_(data) { open(ReadOnly); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 size) override {
        const auto front = rest_.first(std::min<qsizetype>(size, rest_.size()));
        std::copy(front.begin(), front.end(), data);
        rest_.remove(0, front.size());
        return front.size();
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray rest_;
};

}  // namespace

class TestImageHeader : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void parsesEveryField();
    void typeByte();
    void rejects_data();
    void rejects();
    void rejectionLeavesRawValues();
    void decodesSlots_data();
    void decodesSlots();
    void loadsFromOwnSlot();
    void encodesSlots_data();
    void encodesSlots();
    void writesOverFrontOfArray();
    void sizeField();
    void updatesTotalSize();
    void createsParsers();
    void handles();
};

void TestImageHeader::defaults() {
    const ImageHeaderBase header;
    QCOMPARE(header.type, quint8{0x2D});
    QCOMPARE(header.extensions, Slots(7));
    QVERIFY(header.loadTimer.resolution() < 1'000'000);  // started
    for (int slot : {-1, 7})
        QCOMPARE(header.extension(static_cast<ImageHeaderExtension>(slot)), QByteArray());
}

void TestImageHeader::parsesEveryField() {
    const ImageHeaderBase header(goldenHeader);
    QCOMPARE(header.totalSize, 95U);
    QCOMPARE(header.headerSize, 31U);
    QCOMPARE(header.extensionSize, 11U);
    QCOMPARE(header.channel, 0x10003U);
    QCOMPARE(header.time, 512345678901);
    QCOMPARE(int{header.timeZoneOffset}, -14);
    QCOMPARE(int{header.timeZoneAbbrevation.index()}, 21);
    QCOMPARE(header.flags, quint8{0x88});
    QCOMPARE(header.rate, quint8{25});
    QCOMPARE(header.extensions, Slots({"Lyon", "Gate", "", "", "", "", ""}));

    // The two names remain of the block; the trailing 0 bytes are not written.
    QByteArray written;
    parser.writeHeader(header, written);
    QByteArray expected = goldenHeader.first(29);
    expected[0] = 95 - 2;
    expected[19] = 9;
    QCOMPARE(written.toHex(' '), expected.toHex(' '));
}

void TestImageHeader::typeByte() {
    const struct {
        quint8 wire;
        quint8 type;
        bool encrypted;
        bool newKey;
        quint8 written;  // always asks for a new key
    } rows[] = {{0xD6, 0x56, true, true, 0xD6},
                {0x16, 0x56, false, false, 0x56},
                {0x96, 0x56, true, false, 0xD6},
                {0x40, 0x40, false, true, 0x40}};
    for (const auto& row : rows) {
        QByteArray bytes = headerBytes();
        bytes[16] = static_cast<char>(row.wire);
        const ImageHeaderBase header(bytes);
        QCOMPARE(header.type, row.type);
        QCOMPARE(header.encrypted, row.encrypted);
        QCOMPARE(header.receivedEncrypted, row.encrypted);
        QCOMPARE(header.newKeyRequired, row.newKey);
        parser.writeHeader(header, bytes);
        QCOMPARE(quint8(bytes[16]), row.written);
    }
}

void TestImageHeader::rejects_data() {
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QByteArray>("detected");
    QTest::addColumn<QByteArray>("direct");

    const auto row = [](const char* name, const QByteArray& data, const QByteArray& detected,
                        const QByteArray& direct) {
        QTest::newRow(name) << data << detected << direct;
    };
    const QByteArray small("Header too small");
    const QByteArray wrong("Wrong header");
    const QByteArray unknown("Unknown header protocol");
    const QByteArray dropped("Protocol support dropped");
    const QByteArray mismatch("Size mismatch");
    const QByteArray rest = headerBytes().sliced(4);
    row("complete", headerBytes(), "", "");
    row("longest block", headerBytes(QByteArray(255, '\0')), "", "");
    row("three bytes", hex("140000"), unknown, small);
    row("19 bytes", headerBytes().first(19), small, small);
    row("legacy", hex("ffffffff"), dropped, small);
    row("legacy, long", hex("ffffffff") + rest, dropped, wrong);
    row("bit 30", hex("14000040") + rest, unknown, wrong);
    row("bit 26", hex("14000084") + rest, unknown, wrong);
    row("header larger than frame", hex("14000080") + headerBytes(" ").sliced(4), mismatch,
        mismatch);
    row("frame smaller than 20", hex("13000080") + rest, mismatch, mismatch);
    row("block cut off", headerBytes("abc").chopped(1), mismatch, mismatch);
}

void TestImageHeader::rejects() {
    QFETCH(QByteArray, data);
    ImageHeaderBase header;
    ImageHeader handle;
    QTEST(errorOf([&] { header.loadFromData(data); }), "detected");
    QTEST(errorOf([&] { handle.loadFromData(data); }), "detected");
    QVERIFY(!handle.isNull());
    QTEST(errorOf([&] { ImageHeaderBase{data}; }), "detected");
    QTEST(errorOf([&] { parser.parseHeader(data, header); }), "direct");
}

void TestImageHeader::rejectionLeavesRawValues() {
    QByteArray data = goldenHeader;
    data[3] = '\x84';
    ImageHeaderBase header;
    const auto check = [&](quint32 totalSize) {
        return header.totalSize == totalSize && header.channel == 0x10003 &&
               header.time == static_cast<qint64>(0xF215'0077'4A2E'A435) && header.type == 0xD6 &&
               header.flags == 0x88 && header.rate == 25 && header.extensionSize == 11 &&
               header.headerSize == 0 && header.timeZoneOffset == 0 && !header.encrypted &&
               header.extensions == Slots(7);
    };
    QCOMPARE(errorOf([&] { parser.parseHeader(data, header); }), "Wrong header");
    QVERIFY(check(0x8400005F));
    data[3] = '\x80';
    header = ImageHeaderBase();
    QCOMPARE(errorOf([&] { parser.parseHeader(data.chopped(1), header); }), "Size mismatch");
    QVERIFY(check(95));
}

void TestImageHeader::decodesSlots_data() {
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<Slots>("before");
    QTest::addColumn<Slots>("after");

    const Slots none(7);
    const Slots used{"s", "c", "a", "d", "b", "m", "t"};
    const QByteArray filler(255, 'x');
    const auto row = [](const char* name, const QByteArray& block, const Slots& before,
                        const Slots& after) { QTest::newRow(name) << block << before << after; };
    row("no block", "", none, none);
    row("no block, used header", "", used, used);
    row("empty fields", hex("00 00 00 00 00 00 00"), used, used);
    row("text appends, binary replaces", "S" + hex("00 00 02 4142 1f 01 43") + "D", used,
        {"sS", "c", "AB", "C", "bD", "m", "t"});
    row("long binary without data empties", hex("1f00 1f00 1f00"), used,
        {"", "", "", "d", "b", "m", "t"});
    row("lead 31 as last byte empties", hex("00 00 1f"), used, {"s", "c", "", "d", "b", "m", "t"});
    row("cut short", hex("05 4142"), none, {"AB", "", "", "", "", "", ""});
    row("cut short after the lead byte", hex("00 05"), used, {"s", "", "a", "d", "b", "m", "t"});
    row("long and cut short", hex("1f ff 4142"), none, {"AB", "", "", "", "", "", ""});
    row("30 bytes", hex("1e") + filler.first(30) + "y", none,
        {filler.first(30), "y", "", "", "", "", ""});
    row("31 bytes", hex("1f1f") + filler.first(31), none,
        {filler.first(31), "", "", "", "", "", ""});
    row("text from byte 32 on", hex("20 00 1f"), none, {" ", "", "", "", "", "", ""});
    row("text is compared unsigned", hex("80ff1f01 00 ff"), none,
        {hex("80ff1f01"), hex("ff"), "", "", "", "", ""});
    row("an eighth field is ignored", hex("0141 0141 0141 0141 0141 0141 0141 0142"), none,
        Slots(7, "A"));
    row("text to the end", filler.first(254), none, {filler.first(254), "", "", "", "", "", ""});
}

void TestImageHeader::decodesSlots() {
    QFETCH(QByteArray, block);
    QFETCH(Slots, before);
    ImageHeaderBase header;
    header.extensions = before;
    // The byte behind the block must not be read as part of it.
    header.loadFromData(headerBytes(block, 1) + "P");
    QTEST(header.extensions, "after");
    QCOMPARE(header.headerSize, quint32(20 + block.size()));
}

void TestImageHeader::loadsFromOwnSlot() {
    ImageHeaderBase header;
    header.extensions[0] = headerBytes(hex("0141 0142 0143"));
    header.loadFromData(header.extensions.at(0));
    QCOMPARE(header.extensions, Slots({"A", "B", "C", "", "", "", ""}));
}

void TestImageHeader::encodesSlots_data() {
    QTest::addColumn<Slots>("content");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QByteArray>("error");

    using enum ImageHeaderExtension;
    const QByteArray x(255, 'x');
    const auto row = [](const char* name, const Slots& content, const QByteArray& block) {
        QTest::newRow(name) << content << block << QByteArray();
    };
    row("none", Slots(7), {});
    row("every slot", {"s", "c", "a", "d", "b", "m", "t"}, hex("7300 6300 0161 0164 0162 6d00 74"));
    row("text does not know lengths", slotsWith(ServerName, hex("05")), hex("05"));
    row("1 byte", slotsWith(LinkedAudio, "x"), hex("0000 01") + "x");
    row("30 bytes", slotsWith(LinkedAudio, x.first(30)), hex("0000 1e") + x.first(30));
    row("31 bytes", slotsWith(LinkedAudio, x.first(31)), hex("0000 1f1f") + x.first(31));
    row("32 bytes", slotsWith(Dewarping, x.first(32)), hex("000000 1f20") + x.first(32));
    row("254 bytes, binary", slotsWith(LinkedAudio, x.first(250)), hex("0000 1ffa") + x.first(250));
    row("254 bytes, text", slotsWith(Text6, x.first(248)), hex("000000000000") + x.first(248));
    row("trailing zeros go", slotsWith(Dewarping, hex("ff0000")), hex("000000 03 ff"));
    row("zeros before another slot stay", {"", "", hex("0700"), "", "", "h", ""},
        hex("0000 020700 00 00 68"));
    row("300 zeros: low byte of the length", slotsWith(Binary4, QByteArray(300, '\0')),
        hex("00000000 1f2c"));

    const auto refused = [](const char* name, const Slots& content) {
        QTest::newRow(name) << content << QByteArray()
                            << QByteArray("Extension field is too large");
    };
    refused("255 bytes, text", slotsWith(ServerName, x));
    refused("255 bytes, binary", slotsWith(LinkedAudio, x.first(251)));
    refused("all together", Slots(7, x.first(36)));
    refused("megabytes", slotsWith(Text6, QByteArray(1 << 22, 'x')));
}

void TestImageHeader::encodesSlots() {
    QFETCH(Slots, content);
    QFETCH(QByteArray, block);
    QFETCH(QByteArray, error);
    ImageBase image;
    image.extensions = content;
    image.totalSize = 7;
    image.payload = "abc";
    QByteArray out("old");
    QCOMPARE(errorOf([&] { parser.writeHeader(image, out); }), error);
    QCOMPARE(errorOf([&] { parser.updateTotalSize(image); }), error);
    if (!error.isEmpty()) {
        QCOMPARE(out, "old");
        QCOMPARE(image.totalSize, 7U);
        return;
    }
    QCOMPARE(out.sliced(20).toHex(' '), block.toHex(' '));
    QCOMPARE(quint8(out[19]), quint8(block.size()));
    QCOMPARE(image.totalSize, quint32(23 + block.size()));
}

void TestImageHeader::writesOverFrontOfArray() {
    ImageHeaderBase header(headerBytes("Gate", 100));
    header.extensions[1] = "Door";
    QByteArray out(30, 'x');
    const QByteArray shared = out;
    parser.writeHeader(header, out);
    QCOMPARE(out.first(4).toHex(), "81000080");  // 124 and 5 more
    QCOMPARE(out.sliced(20), "Gate" + hex("00") + "Doorx");
    QCOMPARE(shared, QByteArray(30, 'x'));

    // Unsigned arithmetic wraps; a time beyond 48 bits spills into the zone.
    header.totalSize = 0;
    header.extensions = Slots(7);
    header.time = -1;
    parser.writeHeader(header, out);
    QCOMPARE(out.first(4).toHex(), "fcffffff");
    QCOMPARE(out.sliced(8, 8).toHex(), "ffffffffffffffff");
}

void TestImageHeader::sizeField() {
    const struct {
        QByteArray data;
        int position;
        quint32 size;
    } rows[] = {{hex("0000 e8030080 01"), 2, 1000},
                {hex("ffffffff"), 0, 0x3FFFFFF},
                {hex("00 e80300"), 1, 0},
                {hex("e8030080"), 4, 0}};
    for (auto row : rows) {
        QBuffer buffer(&row.data);
        QVERIFY(buffer.open(QIODevice::ReadOnly) && buffer.seek(row.position));
        Stream stream(row.data.sliced(row.position));
        for (QIODevice* device : std::initializer_list<QIODevice*>{&buffer, &stream}) {
            quint32 size = 1;
            parser.readSize(*device, size);
            QCOMPARE(size, row.size);
            QCOMPARE(device->readAll(), row.data.sliced(row.position));
        }
    }

    QByteArray frame(1000, 'x');
    parser.patchSize(frame);
    QCOMPARE(frame, hex("e8030080") + QByteArray(996, 'x'));
    QByteArray tooShort("xyz");
    parser.patchSize(tooShort);
    QCOMPARE(tooShort, "xyz");
}

void TestImageHeader::updatesTotalSize() {
    ImageBase image{QByteArray(headerBytes("Gate", 3) + "abc")};
    image.extensions[1] = "Door";
    image.payload = QByteArray(100, 'x');
    parser.updateTotalSize(image);
    QCOMPARE(image.totalSize, 20U + 9 + 100);
    QCOMPARE(image.headerSize, 24U);
    QCOMPARE(image.extensionSize, 4U);

    ImageHeaderBase alone(image);
    parser.updateTotalSize(alone);
    QCOMPARE(alone.totalSize, 29U);
}

void TestImageHeader::createsParsers() {
    const auto create = [](int version) {
        return errorOf(
            [&] { LyraImageHeaderParser::createParser(static_cast<ImageHeaderVersion>(version)); });
    };
    QVERIFY(LyraImageHeaderParser::createParser(ImageHeaderVersion::V4));
    QCOMPARE(create(1), "Protocol support dropped");
    for (int version : {0, 3, -1})
        QCOMPARE(create(version), "Unknown header protocol");
}

void TestImageHeader::handles() {
    ImageHeader header;
    header.addAbsentExtensionsFrom(ImageHeader());
    QVERIFY(header.isNull() && header.channel() == 0 && !header.isNewKeyRequired());
#ifdef QT_NO_DEBUG
    QCOMPARE(header.extension(ImageHeaderExtension::CameraName), "");
#endif
    // The size field is not compared with the length of the data.
    QCOMPARE(header.loadFromData(goldenHeader), 31);
    QVERIFY(header.isNewKeyRequired());
    const ImageHeader copy = header;
    QCOMPARE(header.loadFromData(headerBytes("!")), 21);
    QVERIFY(!copy.isNewKeyRequired());
    QCOMPARE(copy.channel(), 3U);
    QCOMPARE(copy.extension(ImageHeaderExtension::ServerName), "Lyon!");

    ImageHeader other;
    other.loadFromData(headerBytes("Oslo"));
    other.addAbsentExtensionsFrom(header);
    QCOMPARE(other.extension(ImageHeaderExtension::ServerName), "Oslo");
    QCOMPARE(other.extension(ImageHeaderExtension::CameraName), "Gate");
    ImageHeader fresh;
    fresh.addAbsentExtensionsFrom(other);
    QCOMPARE(fresh.extension(ImageHeaderExtension::ServerName), "Oslo");
    QCOMPARE(fresh.channel(), 0U);

    ImageHeader attached;
    attached.setAttachedData("side");
    Image image(attached, 0);
    image.setId(7);
    const ImageHeader fromImage(image);
    image.setId(8);
    QCOMPARE(Image(fromImage, 0).id(), 7U);
    QCOMPARE(Image(fromImage, 0).attachedData(), "side");
}

QTEST_APPLESS_MAIN(TestImageHeader)
#include "tst_imageheader.moc"
