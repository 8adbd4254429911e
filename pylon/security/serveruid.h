#pragma once

#include <pylon/export.h>

#include <QtCore/QString>

#include <optional>

/// @file
/// The identifier of a server: a text of 8 characters, or its 8 bytes of UTF-8 as a number, the
/// first byte lowest. The number may come as a text of decimal digits. 0 means no identifier.
///
/// Thread-safety: no state; all functions may be called from any thread.

namespace pylon {

/// Text of an identifier: its 8 bytes, 0 bytes included, decoded as UTF-8. Empty for 0.
PYLON_EXPORT QString serverUIDToString(quint64 uid);

/// Number of an identifier in either form of text; a text that is a signed decimal number of 64
/// bits counts as that. 0 for an empty text. Of longer texts the first 8 characters count; the
/// missing characters of shorter ones are 0.
PYLON_EXPORT quint64 serverUIDFromString(const QString& text);

/// serverUIDFromString() for texts from outside.
/// @return no value for a text that is not an identifier: empty, not exactly 8 bytes of UTF-8, or a
///     number the bytes of which are no text.
[[nodiscard]] PYLON_EXPORT std::optional<quint64> tryServerUIDFromString(const QString& text);

/// The 8-character form of @p text if that is a signed decimal number of 64 bits; else @p text.
PYLON_EXPORT QString correctServerUID(const QString& text);

}  // namespace pylon
