#include <pylon/security/credentials.h>

#include <QtCore/QtEndian>

#include <array>
#include <cstring>

namespace pylon {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using Pair = std::array<char, 2>;

/// The two characters for each 12 bits: half as many look-ups as with the alphabet itself.
constexpr auto pairs = [] {
    std::array<Pair, std::size_t{64} * 64> table{};
    for (std::size_t bits = 0; bits < table.size(); ++bits)
        table[bits] = {alphabet[bits / 64], alphabet[bits % 64]};
    return table;
}();

/// Four characters for the low 24 bits.
void encodeGroup(quint64 bits, char* out) {
    std::memcpy(out, &pairs[bits >> 12 & 0xFFF], sizeof(Pair));
    std::memcpy(out + 2, &pairs[bits & 0xFFF], sizeof(Pair));
}

}  // namespace

void base64(const unsigned char* data, int length, char* out) {
    if (!data)
        return;
    // Two groups of three bytes at once, of the eight bytes that are read.
    for (; length >= 8; length -= 6, data += 6, out += 8) {
        const auto bits = qFromBigEndian<quint64>(data);
        encodeGroup(bits >> 40, out);
        encodeGroup(bits >> 16, out + 4);
    }
    for (; length >= 3; length -= 3, data += 3, out += 4)
        encodeGroup(quint64{data[0]} << 16 | quint64{data[1]} << 8 | data[2], out);
    if (length < 1)
        return;
    const bool two = length == 2;
    encodeGroup(quint64{data[0]} << 16 | (two ? quint64{data[1]} << 8 : 0), out);
    if (!two)
        out[2] = '=';
    out[3] = '=';
}

}  // namespace pylon
