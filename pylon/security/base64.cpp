#include <pylon/security/credentials.h>

#include <QtCore/QtEndian>

namespace pylon {

namespace {

constexpr quint64 eachByte = 0x0101010101010101;

/// Spreads the low 48 bits over eight bytes, six bits each, in the same order.
constexpr quint64 spread(quint64 bits) {
    bits = (bits & 0xFFFFFF000000) << 8 | (bits & 0xFFFFFF);
    bits = (bits & 0x00FFF00000FFF000) << 4 | (bits & 0x00000FFF00000FFF);
    return (bits & 0x0FC00FC00FC00FC0) << 2 | (bits & 0x003F003F003F003F);
}

/// 1 in each byte where that of @p values, all below 128, is at least @p limit.
constexpr quint64 atLeast(quint64 values, unsigned limit) {
    return (values + (128 - limit) * eachByte) >> 7 & eachByte;
}

/// The eight characters for eight values 0-63. Computed and not looked up, so that what is encoded
/// leaves no trace in the time it takes, and all eight at once, which is quicker too.
constexpr quint64 characters(quint64 values) {
    return values + 'A' * eachByte + ('a' - 'Z' - 1) * atLeast(values, 26) +
           ('/' - '+' - 1) * atLeast(values, 63) - ('z' - '0' + 1) * atLeast(values, 52) -
           ('9' - '+' + 1) * atLeast(values, 62);
}

static_assert(characters(0x00'19'1A'33'34'3D'3E'3F) == 0x41'5A'61'7A'30'39'2B'2F);  // AZaz09+/

/// The last one to three bytes.
void encodeRest(const unsigned char* data, int length, char* out) {
    quint64 bits = 0;
    for (int i = 0; i < 3; ++i)
        bits = bits << 8 | (i < length ? data[i] : 0U);
    const quint64 encoded = characters(spread(bits));
    for (int i = 0; i < 4; ++i)
        out[i] = i <= length ? static_cast<char>(encoded >> 8 * (3 - i)) : '=';
}

}  // namespace

void base64(const unsigned char* data, int length, char* out) {
    if (!data)
        return;
    // Six bytes at a time, of the eight that are read.
    for (; length >= 8; length -= 6, data += 6, out += 8)
        qToBigEndian(characters(spread(qFromBigEndian<quint64>(data) >> 16)), out);
    for (; length > 0; length -= 3, data += 3, out += 4)
        encodeRest(data, length, out);
}

}  // namespace pylon
