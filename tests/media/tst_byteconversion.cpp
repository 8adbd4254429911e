#include <pylon/media/byteconversion.h>

#include <QtTest/QtTest>

#include <array>

using namespace pylon;

class TestByteConversion : public QObject {
    Q_OBJECT

private slots:
    // The checked readers agree at every alignment, and give nothing where bytes are missing.
    void readers() {
        for (std::size_t shift = 0; shift < 8; ++shift) {
            std::array<std::byte, 16> memory{};
            const auto bytes = std::span(memory).subspan(shift, 8);
            for (std::size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = std::byte(0x81 + 0x10 * i);

            const auto check = [&](auto read, auto tryRead, auto expected) {
                QCOMPARE(read(bytes), expected);
                for (std::size_t size = 0; size <= bytes.size(); ++size) {
                    const auto value = tryRead(bytes.first(size));
                    QVERIFY(size < sizeof expected ? !value : value == expected);
                }
            };
            check(byteSpanToUint8, tryByteSpanToUint8, quint8{0x81});
            check(byteSpanToInt8, tryByteSpanToInt8, qint8{-127});
            check(byteSpanToUint16, tryByteSpanToUint16, quint16{0x9181});
            check(byteSpanToInt16, tryByteSpanToInt16, qint16{-28287});
            check(byteSpanToUint32, tryByteSpanToUint32, quint32{0xB1A19181});
            check(byteSpanToInt32, tryByteSpanToInt32, qint32{-1314811519});
            check(byteSpanToUint64, tryByteSpanToUint64, quint64{0xF1E1D1C1B1A19181});
            check(byteSpanToInt64, tryByteSpanToInt64, qint64{-0x0E1E2E3E4E5E6E7F});
        }
    }

    void numberToBytesAndBack() {
        unsigned char bytes[8] = {};
        convertUInt64ToByteArray(0xF1E2D3C4B5A69788, bytes);
        QCOMPARE(bytes[0], 0x88);
        quint64 value = 0x0F0000000000000F;
        convertByteArrayToUInt64(bytes, value);
        QCOMPARE(value, 0xFFE2D3C4B5A6978FULL);  // what was there stays
    }
};

QTEST_APPLESS_MAIN(TestByteConversion)
#include "tst_byteconversion.moc"
