#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>
#include <QtCore/QStringView>

/// @file
/// Text for terminals and machines, appended to UTF-8 buffers. Stateless.

namespace pylon::inspector {

enum class Align { Left, Right };

/// Decimal digits of @p number.
void appendNumber(QByteArray& out, qint64 number);

/// @p text filled up with blanks to @p width columns; a longer one stays whole. ASCII only.
void appendCell(QByteArray& out, QByteArrayView text, int width, Align align = Align::Left);
/// The digits of @p number, right-aligned.
void appendCell(QByteArray& out, qint64 number, int width);

/// "2023-11-14 22:13:20.000", where @p separator stands between date and time. Years beyond 9999
/// carry a sign and more digits. @p msecs counts from 1970-01-01 00:00:00.
void appendDateTime(QByteArray& out, qint64 msecs, char separator);

/// @p text with everything a terminal would act upon, or not show at all, replaced by escapes:
/// "\x1b",
/// "\u202e". A name out of a file must not steer the terminal.
QString printable(QStringView text);

/// The columns that @p text, which is printable(), takes on a terminal.
int displayWidth(QStringView text);

/// @p text cut to @p width columns, the last one then being "…", or filled up with blanks.
QString fitted(const QString& text, int width);

/// A JSON string: in quotes, with the escapes needed. Control characters beyond ASCII are escaped
/// too.
void appendJsonString(QByteArray& out, QStringView text);
/// The same for UTF-8; bytes that are none become U+FFFD.
void appendJsonString(QByteArray& out, QByteArrayView utf8);

}  // namespace pylon::inspector
