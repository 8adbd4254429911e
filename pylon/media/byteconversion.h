#pragma once

#include <pylon/export.h>

#include <QtCore/QtGlobal>

#include <cstddef>
#include <optional>
#include <span>

/// @file
/// Little-endian integers in byte sequences, the byte order of everything the library reads from
/// or writes to the wire. No function needs its bytes to be aligned, none has state: all may be
/// called from any thread.
///
/// Two families read: @c byteSpanTo... trusts the caller to have checked the length, and
/// @c tryByteSpanTo... checks it. Use the second for bytes from a file or a network.

namespace pylon {

/// @name Unchecked readers
/// Read the integer at the front of @p bytes; bytes beyond it are ignored.
/// @pre @p bytes holds at least as many bytes as the result is wide.
/// @{

/// Signed, one byte.
PYLON_EXPORT qint8 byteSpanToInt8(std::span<const std::byte> bytes) noexcept;
/// Unsigned, one byte.
PYLON_EXPORT quint8 byteSpanToUint8(std::span<const std::byte> bytes) noexcept;
/// Signed, two bytes.
PYLON_EXPORT qint16 byteSpanToInt16(std::span<const std::byte> bytes) noexcept;
/// Unsigned, two bytes.
PYLON_EXPORT quint16 byteSpanToUint16(std::span<const std::byte> bytes) noexcept;
/// Signed, four bytes.
PYLON_EXPORT qint32 byteSpanToInt32(std::span<const std::byte> bytes) noexcept;
/// Unsigned, four bytes.
PYLON_EXPORT quint32 byteSpanToUint32(std::span<const std::byte> bytes) noexcept;
/// Signed, eight bytes.
PYLON_EXPORT qint64 byteSpanToInt64(std::span<const std::byte> bytes) noexcept;
/// Unsigned, eight bytes.
PYLON_EXPORT quint64 byteSpanToUint64(std::span<const std::byte> bytes) noexcept;
/// @}

/// @name Checked readers
/// As above, but without precondition: no value when @p bytes is shorter than the integer.
/// @{

/// Signed, one byte.
[[nodiscard]] PYLON_EXPORT std::optional<qint8> tryByteSpanToInt8(
    std::span<const std::byte> bytes) noexcept;
/// Unsigned, one byte.
[[nodiscard]] PYLON_EXPORT std::optional<quint8> tryByteSpanToUint8(
    std::span<const std::byte> bytes) noexcept;
/// Signed, two bytes.
[[nodiscard]] PYLON_EXPORT std::optional<qint16> tryByteSpanToInt16(
    std::span<const std::byte> bytes) noexcept;
/// Unsigned, two bytes.
[[nodiscard]] PYLON_EXPORT std::optional<quint16> tryByteSpanToUint16(
    std::span<const std::byte> bytes) noexcept;
/// Signed, four bytes.
[[nodiscard]] PYLON_EXPORT std::optional<qint32> tryByteSpanToInt32(
    std::span<const std::byte> bytes) noexcept;
/// Unsigned, four bytes.
[[nodiscard]] PYLON_EXPORT std::optional<quint32> tryByteSpanToUint32(
    std::span<const std::byte> bytes) noexcept;
/// Signed, eight bytes.
[[nodiscard]] PYLON_EXPORT std::optional<qint64> tryByteSpanToInt64(
    std::span<const std::byte> bytes) noexcept;
/// Unsigned, eight bytes.
[[nodiscard]] PYLON_EXPORT std::optional<quint64> tryByteSpanToUint64(
    std::span<const std::byte> bytes) noexcept;
/// @}

/// ORs the eight bytes at @p bytes into @p value. What @p value held before stays in it, so set
/// it to 0 first to get the plain number.
/// @pre @p bytes points at eight readable bytes.
PYLON_EXPORT void convertByteArrayToUInt64(const unsigned char* bytes, quint64& value) noexcept;

/// Writes @p value to @p bytes, byte 0 least significant.
PYLON_EXPORT void convertUInt64ToByteArray(quint64 value, unsigned char (&bytes)[8]) noexcept;

}  // namespace pylon
