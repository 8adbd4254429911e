#include <pylon/media/lyraimageheaderparserv4.h>

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QVarLengthArray>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace pylon {

namespace {

enum Offset : qsizetype {
    SizeOffset = 0,
    ChannelOffset = 4,
    TimeOffset = 8,
    TypeOffset = 16,
    FlagsOffset = 17,
    RateOffset = 18,
    ExtensionSizeOffset = 19
};

constexpr qsizetype sizeFieldLength = 4;

constexpr int abbrevationShift = 48;
constexpr int timeZoneOffsetShift = 56;
constexpr quint64 timeMask = (quint64{1} << abbrevationShift) - 1;

constexpr quint8 encryptedBit = 0x80;
constexpr quint8 newKeyRequiredBit = 0x40;
constexpr quint8 wireTypeBits = 0x3F;
constexpr quint8 impliedTypeBits = 0x40;

constexpr quint8 longBinaryLead = 31;
constexpr quint8 firstTextLead = 32;

enum class FieldCoding { Text, Binary };

constexpr std::array fieldCodings = {
    FieldCoding::Text,    // ServerName
    FieldCoding::Text,    // CameraName
    FieldCoding::Binary,  // LinkedAudio
    FieldCoding::Binary,  // Dewarping
    FieldCoding::Binary,  // Binary4
    FieldCoding::Text,    // Marks
    FieldCoding::Text,    // Text6
};
static_assert(fieldCodings.size() == imageHeaderExtensionCount);

// Holds every block that can be written, and one field more, without an allocation.
using ExtensionBlock = QVarLengthArray<char, 512>;

void appendText(ExtensionBlock& block, const QByteArray& text) {
    block.append(text.constData(), text.size());
    block.append('\0');
}

void appendBinary(ExtensionBlock& block, const QByteArray& data) {
    if (data.size() >= longBinaryLead)
        block.append(static_cast<char>(longBinaryLead));
    block.append(static_cast<char>(data.size() & 0xFF));
    block.append(data.constData(), data.size());
}

ExtensionBlock encodeExtensions(const ImageHeaderBase& header) {
    ExtensionBlock block;
    for (std::size_t slot = 0; slot < fieldCodings.size(); ++slot) {
        const QByteArray& content = header.extension(static_cast<ImageHeaderExtension>(slot));
        if (fieldCodings[slot] == FieldCoding::Text)
            appendText(block, content);
        else
            appendBinary(block, content);
    }
    while (!block.isEmpty() && block.last() == '\0')
        block.removeLast();
    if (block.size() > qsizetype{LyraImageHeaderParserV4::maxExtensionSize})
        throw std::runtime_error("Extension field is too large");
    return block;
}

// Takes up to length bytes off the front of block.
QByteArrayView takeFront(QByteArrayView& block, qsizetype length) {
    const QByteArrayView front = block.first(std::min(length, block.size()));
    block = block.sliced(front.size());
    return front;
}

quint8 takeByte(QByteArrayView& block) {
    const QByteArrayView byte = takeFront(block, 1);
    return byte.isEmpty() ? quint8{0} : static_cast<quint8>(byte.front());
}

void decodeField(QByteArrayView& block, QByteArray& slot) {
    const auto lead = static_cast<quint8>(block.front());
    if (lead >= firstTextLead) {
        const qsizetype end = block.indexOf('\0');
        const QByteArrayView text = takeFront(block, end < 0 ? block.size() : end);
        takeByte(block);
        // Growing by append() would reserve memory for more.
        if (slot.isEmpty())
            slot = text.toByteArray();
        else
            slot.append(text);
        return;
    }
    takeByte(block);
    if (lead == 0)
        return;
    const quint8 length = lead == longBinaryLead ? takeByte(block) : lead;
    slot = takeFront(block, length).toByteArray();
}

void decodeExtensions(QByteArrayView block, ImageHeaderBase& header) {
    if (block.isEmpty())
        return;
    for (QByteArray& slot : header.extensions) {
        decodeField(block, slot);
        if (block.isEmpty())
            return;
    }
}

// Stores the fixed fields as they are on the wire.
void readRawFields(const char* bytes, ImageHeaderBase& header) {
    header.totalSize = qFromLittleEndian<quint32>(bytes + SizeOffset);
    header.channel = qFromLittleEndian<quint32>(bytes + ChannelOffset);
    header.time = qFromLittleEndian<qint64>(bytes + TimeOffset);
    header.type = qFromLittleEndian<quint8>(bytes + TypeOffset);
    header.flags = qFromLittleEndian<quint8>(bytes + FlagsOffset);
    header.rate = qFromLittleEndian<quint8>(bytes + RateOffset);
    header.extensionSize = qFromLittleEndian<quint8>(bytes + ExtensionSizeOffset);
}

void splitTimeWord(ImageHeaderBase& header) {
    const auto word = static_cast<quint64>(header.time);
    header.timeZoneOffset = static_cast<qint8>(word >> timeZoneOffsetShift);
    header.timeZoneAbbrevation.setFromIndex(static_cast<unsigned char>(word >> abbrevationShift));
    header.time = static_cast<qint64>(word & timeMask);
}

quint64 joinTimeWord(const ImageHeaderBase& header) {
    return static_cast<quint64>(header.time) |
           quint64{header.timeZoneAbbrevation.index()} << abbrevationShift |
           quint64{static_cast<quint8>(header.timeZoneOffset)} << timeZoneOffsetShift;
}

void splitTypeByte(ImageHeaderBase& header) {
    header.encrypted = header.receivedEncrypted = (header.type & encryptedBit) != 0;
    header.newKeyRequired = (header.type & newKeyRequiredBit) != 0;
    header.type = static_cast<quint8>((header.type & wireTypeBits) | impliedTypeBits);
}

}  // namespace

// Programs that take a constant by reference import it from here.
constexpr quint32 LyraImageHeaderParserV4::fixedHeaderSize;
constexpr quint32 LyraImageHeaderParserV4::maxExtensionSize;
constexpr quint32 LyraImageHeaderParserV4::maxTotalSize;

LyraImageHeaderParserV4::~LyraImageHeaderParserV4() = default;

void LyraImageHeaderParserV4::readSize(QIODevice& device, quint32& size) const {
    std::array<char, sizeFieldLength> field{};
    const bool complete = device.peek(field.data(), sizeFieldLength) == sizeFieldLength;
    size = complete ? qFromLittleEndian<quint32>(field.data()) & maxTotalSize : 0;
}

void LyraImageHeaderParserV4::parseHeader(const QByteArray& data, ImageHeaderBase& header) const {
    if (data.size() < qsizetype{fixedHeaderSize})
        throw std::runtime_error("Header too small");

    readRawFields(data.constData(), header);
    if (!hasMarker(header.totalSize))
        throw std::runtime_error("Wrong header");

    header.totalSize &= maxTotalSize;
    const quint32 headerSize = header.extensionSize + fixedHeaderSize;
    if (headerSize > data.size() || headerSize > header.totalSize)
        throw std::runtime_error("Size mismatch");

    splitTimeWord(header);
    splitTypeByte(header);
    decodeExtensions(QByteArrayView(data).sliced(fixedHeaderSize, header.extensionSize), header);
    header.headerSize = headerSize;
}

void LyraImageHeaderParserV4::writeHeader(const ImageHeaderBase& header, QByteArray& out) const {
    const ExtensionBlock block = encodeExtensions(header);
    const auto blockSize = static_cast<quint32>(block.size());
    const qsizetype headerSize = block.size() + fixedHeaderSize;
    if (out.size() < headerSize)
        out.resize(headerSize);

    const quint32 sizeWord = (header.totalSize - header.extensionSize + blockSize) | marker;
    const auto type = static_cast<quint8>(header.type | (header.encrypted ? encryptedBit : 0));
    char* const bytes = out.data();
    qToLittleEndian(sizeWord, bytes + SizeOffset);
    qToLittleEndian(header.channel, bytes + ChannelOffset);
    qToLittleEndian(joinTimeWord(header), bytes + TimeOffset);
    qToLittleEndian(type, bytes + TypeOffset);
    qToLittleEndian(header.flags, bytes + FlagsOffset);
    qToLittleEndian(header.rate, bytes + RateOffset);
    qToLittleEndian(static_cast<quint8>(blockSize), bytes + ExtensionSizeOffset);
    std::copy(block.cbegin(), block.cend(), bytes + fixedHeaderSize);
}

void LyraImageHeaderParserV4::patchSize(QByteArray& frame) const {
    if (frame.size() < sizeFieldLength)
        return;
    qToLittleEndian(static_cast<quint32>(frame.size()) | marker, frame.data() + SizeOffset);
}

void LyraImageHeaderParserV4::updateTotalSize(ImageHeaderBase& header) const {
    const ExtensionBlock block = encodeExtensions(header);
    header.totalSize =
        fixedHeaderSize + static_cast<quint32>(block.size()) + header.payloadLength();
}

}  // namespace pylon
