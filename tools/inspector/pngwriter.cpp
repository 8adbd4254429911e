#include "pngwriter.h"

#include <QtCore/QtEndian>

#include <array>

namespace pylon::inspector {

namespace {

constexpr char signature[] = "\x89PNG\r\n\x1a\n";
constexpr qsizetype lengthBeforeZlibStream = 4;  // which qCompress() puts there
constexpr int bestCompression = 9;

using CrcTable = std::array<quint32, 256>;

// CRC-32 of ISO 3309, least significant bit first, as PNG and zlib use it.
constexpr CrcTable crcTable() {
    CrcTable table{};
    for (quint32 byte = 0; byte < table.size(); ++byte) {
        quint32 crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
        table[byte] = crc;
    }
    return table;
}

quint32 crc32(QByteArrayView bytes) {
    static constexpr CrcTable table = crcTable();
    quint32 crc = ~quint32{0};
    for (const char byte : bytes)
        crc = crc >> 8 ^ table[(crc ^ static_cast<uchar>(byte)) & 0xFF];
    return ~crc;
}

QByteArray bigEndian(quint32 number) {
    QByteArray bytes(sizeof number, Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

void appendChunk(QByteArray& png, const QByteArray& type, const QByteArray& data) {
    png += bigEndian(static_cast<quint32>(data.size()));
    png += type + data;
    png += bigEndian(crc32(type + data));
}

}  // namespace

QByteArray greyPng(QByteArrayView pixels, int width, int height) {
    QByteArray header =
        bigEndian(static_cast<quint32>(width)) + bigEndian(static_cast<quint32>(height));
    header += '\x08';               // bits a pixel
    header += QByteArray(4, '\0');  // grey; deflate; filters of method 0; not interlaced

    QByteArray rows;
    for (qsizetype row = 0; row < height; ++row) {
        rows += '\0';  // not filtered
        rows += pixels.sliced(row * width, width);
    }
    QByteArray png(signature);
    appendChunk(png, "IHDR", header);
    appendChunk(png, "IDAT", qCompress(rows, bestCompression).sliced(lengthBeforeZlibStream));
    appendChunk(png, "IEND", {});
    return png;
}

}  // namespace pylon::inspector
