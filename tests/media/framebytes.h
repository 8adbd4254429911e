#pragma once

#include <QtCore/QByteArray>

#include <stdexcept>

/// Helpers shared by the tests of frames and headers.

/// Bytes from hexadecimal text; blanks may separate fields.
inline QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

/// A V4 header of type 'V', camera 3, with this extension block, that announces payloadSize bytes.
inline QByteArray headerBytes(const QByteArray& block = {}, qsizetype payloadSize = 0) {
    const qsizetype size = 20 + block.size() + payloadSize;
    QByteArray bytes = hex("00000080 03000000 0000000000000000 16 00 00");
    for (int i = 0; i < 3; ++i)
        bytes[i] = static_cast<char>(size >> 8 * i & 0xFF);
    return bytes + static_cast<char>(block.size()) + block;
}

/// The text of the std::runtime_error that call throws; empty when it returns.
template <typename Call>
QByteArray errorOf(Call call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}
