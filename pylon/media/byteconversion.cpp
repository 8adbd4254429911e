#include <pylon/media/byteconversion.h>

#include <QtCore/QtEndian>

namespace pylon {

namespace {

template <typename Integer>
Integer read(std::span<const std::byte> bytes) noexcept {
    return qFromLittleEndian<Integer>(bytes.data());
}

template <typename Integer>
std::optional<Integer> tryRead(std::span<const std::byte> bytes) noexcept {
    if (bytes.size() < sizeof(Integer))
        return std::nullopt;
    return read<Integer>(bytes);
}

}  // namespace

qint8 byteSpanToInt8(std::span<const std::byte> bytes) noexcept {
    return read<qint8>(bytes);
}

quint8 byteSpanToUint8(std::span<const std::byte> bytes) noexcept {
    return read<quint8>(bytes);
}

qint16 byteSpanToInt16(std::span<const std::byte> bytes) noexcept {
    return read<qint16>(bytes);
}

quint16 byteSpanToUint16(std::span<const std::byte> bytes) noexcept {
    return read<quint16>(bytes);
}

qint32 byteSpanToInt32(std::span<const std::byte> bytes) noexcept {
    return read<qint32>(bytes);
}

quint32 byteSpanToUint32(std::span<const std::byte> bytes) noexcept {
    return read<quint32>(bytes);
}

qint64 byteSpanToInt64(std::span<const std::byte> bytes) noexcept {
    return read<qint64>(bytes);
}

quint64 byteSpanToUint64(std::span<const std::byte> bytes) noexcept {
    return read<quint64>(bytes);
}

std::optional<qint8> tryByteSpanToInt8(std::span<const std::byte> bytes) noexcept {
    return tryRead<qint8>(bytes);
}

std::optional<quint8> tryByteSpanToUint8(std::span<const std::byte> bytes) noexcept {
    return tryRead<quint8>(bytes);
}

std::optional<qint16> tryByteSpanToInt16(std::span<const std::byte> bytes) noexcept {
    return tryRead<qint16>(bytes);
}

std::optional<quint16> tryByteSpanToUint16(std::span<const std::byte> bytes) noexcept {
    return tryRead<quint16>(bytes);
}

std::optional<qint32> tryByteSpanToInt32(std::span<const std::byte> bytes) noexcept {
    return tryRead<qint32>(bytes);
}

std::optional<quint32> tryByteSpanToUint32(std::span<const std::byte> bytes) noexcept {
    return tryRead<quint32>(bytes);
}

std::optional<qint64> tryByteSpanToInt64(std::span<const std::byte> bytes) noexcept {
    return tryRead<qint64>(bytes);
}

std::optional<quint64> tryByteSpanToUint64(std::span<const std::byte> bytes) noexcept {
    return tryRead<quint64>(bytes);
}

void convertByteArrayToUInt64(const unsigned char* bytes, quint64& value) noexcept {
    value |= qFromLittleEndian<quint64>(bytes);
}

void convertUInt64ToByteArray(quint64 value, unsigned char (&bytes)[8]) noexcept {
    qToLittleEndian(value, bytes);
}

}  // namespace pylon
