#include <pylon/media/byteconversion.h>

#include <QtTest/QtTest>

#include <array>

using namespace pylon;

class TestByteConversion : public QObject {
    Q_OBJECT

private slots:
    void readsAtEveryAlignment();
    void checkedReadersNeedEnoughBytes();
    void numberToBytesAndBack();
};

void TestByteConversion::readsAtEveryAlignment() {
    for (std::size_t shift = 0; shift < 8; ++shift) {
        std::array<std::byte, 16> memory{};
        const auto bytes = std::span(memory).subspan(shift, 8);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = std::byte(0x81 + 0x10 * i);

        QCOMPARE(byteSpanToUint8(bytes), quint8{0x81});
        QCOMPARE(byteSpanToInt8(bytes), qint8{-127});
        QCOMPARE(byteSpanToUint16(bytes), quint16{0x9181});
        QCOMPARE(byteSpanToInt16(bytes), qint16{-28287});
        QCOMPARE(byteSpanToUint32(bytes), 0xB1A19181U);
        QCOMPARE(byteSpanToInt32(bytes), -1314811519);
        QCOMPARE(byteSpanToUint64(bytes), 0xF1E1D1C1B1A19181ULL);
        QCOMPARE(byteSpanToInt64(bytes), -0x0E1E2E3E4E5E6E7FLL);

        quint64 value = 0;
        convertByteArrayToUInt64(reinterpret_cast<const unsigned char*>(bytes.data()), value);
        QCOMPARE(value, 0xF1E1D1C1B1A19181ULL);
    }
}

void TestByteConversion::checkedReadersNeedEnoughBytes() {
    const std::array<std::byte, 8> memory{std::byte{0xFE}, std::byte{0xFF}, std::byte{0xFF},
                                          std::byte{0xFF}, std::byte{0xFF}, std::byte{0xFF},
                                          std::byte{0xFF}, std::byte{0xFF}};
    for (std::size_t size = 0; size <= memory.size(); ++size) {
        const auto bytes = std::span(memory).first(size);
        const auto check = [size](auto read, auto expected) {
            return size < sizeof expected ? !read : read == expected;
        };
        QVERIFY(check(tryByteSpanToInt8(bytes), qint8{-2}));
        QVERIFY(check(tryByteSpanToUint8(bytes), quint8{0xFE}));
        QVERIFY(check(tryByteSpanToInt16(bytes), qint16{-2}));
        QVERIFY(check(tryByteSpanToUint16(bytes), quint16{0xFFFE}));
        QVERIFY(check(tryByteSpanToInt32(bytes), qint32{-2}));
        QVERIFY(check(tryByteSpanToUint32(bytes), quint32{0xFFFFFFFE}));
        QVERIFY(check(tryByteSpanToInt64(bytes), qint64{-2}));
        QVERIFY(check(tryByteSpanToUint64(bytes), ~quint64{1}));
    }
}

void TestByteConversion::numberToBytesAndBack() {
    unsigned char bytes[8] = {};
    convertUInt64ToByteArray(0xF1E2D3C4B5A69788, bytes);
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(bytes), 8).toHex(),
             QByteArray("8897a6b5c4d3e2f1"));

    quint64 value = 0x0F0000000000000F;
    convertByteArrayToUInt64(bytes, value);
    QCOMPARE(value, 0xFFE2D3C4B5A6978FULL);
}

QTEST_APPLESS_MAIN(TestByteConversion)
#include "tst_byteconversion.moc"
