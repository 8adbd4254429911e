#include "text.h"

#include <QtCore/QChar>
#include <QtCore/QList>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>

namespace pylon::inspector {

namespace {

struct CodePoints {
    char32_t first;
    char32_t last;
};

// Unicode Standard Annex #11: the blocks whose characters take two columns.
constexpr CodePoints wideBlocks[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD},
};

int columns(char32_t c) {
    const auto category = QChar::category(c);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    const auto contains = [c](CodePoints block) { return c >= block.first && c <= block.last; };
    return std::ranges::any_of(wideBlocks, contains) ? 2 : 1;
}

bool isPlain(char32_t c) {
    return (c >= 0x20 && c < 0x7F) || (c > 0x9F && QChar::isPrint(c));
}

void appendZeroPadded(QByteArray& out, int number, int width) {
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    const auto length = static_cast<int>(end - digits);
    out.append(std::max(0, width - length), '0');
    out.append(digits, length);
}

// The backslash forms JSON has for control characters, the quote and the backslash.
char shortEscape(char16_t c) {
    switch (c) {
        case '"':
        case '\\':
            return static_cast<char>(c);
        case '\b':
            return 'b';
        case '\f':
            return 'f';
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        case '\t':
            return 't';
        default:
            return 0;
    }
}

bool needsJsonEscape(char16_t c) {
    return c < 0x20 || c == '"' || c == '\\' || (c >= 0x7F && c <= 0x9F);
}

void appendHex4(QByteArray& out, char16_t unit) {
    constexpr char digits[] = "0123456789abcdef";
    for (int shift = 12; shift >= 0; shift -= 4)
        out.append(digits[(unit >> shift) & 0xF]);
}

}  // namespace

void appendNumber(QByteArray& out, qint64 number) {
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    out.append(digits, end - digits);
}

void appendCell(QByteArray& out, QByteArrayView text, int width, Align align) {
    const qsizetype padding = std::max<qsizetype>(0, width - text.size());
    if (align == Align::Right)
        out.append(padding, ' ');
    out.append(text);
    if (align == Align::Left)
        out.append(padding, ' ');
}

void appendCell(QByteArray& out, qint64 number, int width) {
    char digits[24];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    appendCell(out, QByteArrayView(digits, end - digits), width, Align::Right);
}

void appendDateTime(QByteArray& out, qint64 msecs, char separator) {
    using namespace std::chrono;
    const sys_time<milliseconds> time{milliseconds(msecs)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);

    const int year = static_cast<int>(date.year());
    if (year < 0 || year > 9999)
        out.append(year < 0 ? '-' : '+');
    appendZeroPadded(out, std::abs(year), 4);
    out.append('-');
    appendZeroPadded(out, static_cast<int>(static_cast<unsigned>(date.month())), 2);
    out.append('-');
    appendZeroPadded(out, static_cast<int>(static_cast<unsigned>(date.day())), 2);
    out.append(separator);
    appendZeroPadded(out, static_cast<int>(clock.hours().count()), 2);
    out.append(':');
    appendZeroPadded(out, static_cast<int>(clock.minutes().count()), 2);
    out.append(':');
    appendZeroPadded(out, static_cast<int>(clock.seconds().count()), 2);
    out.append('.');
    appendZeroPadded(out, static_cast<int>(clock.subseconds().count()), 3);
}

QString printable(QStringView text) {
    const QList<uint> codePoints = text.toUcs4();
    if (std::ranges::all_of(codePoints, isPlain))
        return text.toString();
    QString result;
    for (const char32_t c : codePoints) {
        if (isPlain(c))
            result += QStringView(QChar::fromUcs4(c));
        else if (c < 0x100)
            result += QStringLiteral("\\x%1").arg(static_cast<uint>(c), 2, 16, QLatin1Char('0'));
        else
            result += QStringLiteral("\\u%1").arg(static_cast<uint>(c), 4, 16, QLatin1Char('0'));
    }
    return result;
}

int displayWidth(QStringView text) {
    int width = 0;
    for (const char32_t c : text.toUcs4())
        width += columns(c);
    return width;
}

QString fitted(const QString& text, int width) {
    const int taken = displayWidth(text);
    if (taken <= width)
        return text + QString(width - taken, QLatin1Char(' '));
    QString result;
    int used = 0;
    for (const char32_t c : text.toUcs4()) {
        if (used + columns(c) > width - 1)
            break;
        result += QStringView(QChar::fromUcs4(c));
        used += columns(c);
    }
    return result + QChar(0x2026) + QString(width - 1 - used, QLatin1Char(' '));
}

void appendJsonString(QByteArray& out, QStringView text) {
    out.append('"');
    qsizetype done = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (!needsJsonEscape(unit))
            continue;
        out.append(text.sliced(done, i - done).toUtf8());
        done = i + 1;
        out.append('\\');
        if (const char letter = shortEscape(unit); letter != 0) {
            out.append(letter);
        } else {
            out.append('u');
            appendHex4(out, unit);
        }
    }
    out.append(text.sliced(done).toUtf8());
    out.append('"');
}

void appendJsonString(QByteArray& out, QByteArrayView utf8) {
    const auto isPlainAscii = [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
    if (!std::ranges::all_of(utf8, isPlainAscii)) {
        appendJsonString(out, QStringView(QString::fromUtf8(utf8)));
        return;
    }
    out.append('"');
    out.append(utf8);
    out.append('"');
}

}  // namespace pylon::inspector
