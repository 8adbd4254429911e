#include <pylon/media/internal/diffmapcodes.h>
#include <pylon/media/motionutils.h>

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>

namespace pylon {

namespace {

using namespace diffmap;

using DiffMapSize = MotionUtils::DiffMapSize;

constexpr unsigned codedBit = 0x80;
constexpr int maxCodedWidth = 0x7F;
constexpr int maxCodedHeight = 0x3F;
constexpr int maxRawHeight = 0xFF;
constexpr int stepShift = 6;
constexpr int headerSize = 2;

// Indexed by the step bits of the header.
constexpr std::array steps = {2, 4, 8, 15};
constexpr int uncoded = -1;

constexpr std::array encodeTables = {
    withOneBitMore(encodeTable(step4Codes, 4)),
    encodeTable(step4Codes, 4),
    encodeTable(step8Codes, 8),
    encodeTable(step15Codes, 15),
};

constexpr std::array decodeTables = {
    decodeTable(encodeTables[0], steps[0]),
    decodeTable(encodeTables[1], steps[1]),
    decodeTable(encodeTables[2], steps[2]),
    decodeTable(encodeTables[3], steps[3]),
};

int stepBitsOf(int step) {
    const auto found = std::find(steps.begin(), steps.end(), step);
    return found == steps.end() ? uncoded : static_cast<int>(found - steps.begin());
}

int cellCount(int width, int height) {
    return width > 0 && height > 0 ? width * height : 0;
}

// Packs codes, most significant bit first.
class CodeWriter {
public:
    explicit CodeWriter(unsigned char* out) : out_(out) {}

    void write(Code code) {
        pending_ = pending_ << code.bits | code.code;
        pendingBits_ += code.bits;
        if (pendingBits_ < 32)
            return;
        pendingBits_ -= 32;
        qToBigEndian(static_cast<quint32>(pending_ >> pendingBits_), out_);
        out_ += sizeof(quint32);
    }

    // Writes what is pending, filled up with 0 bits, and returns the end.
    unsigned char* finish() {
        for (; pendingBits_ > 0; pendingBits_ -= 8) {
            const quint64 byte =
                pendingBits_ >= 8 ? pending_ >> (pendingBits_ - 8) : pending_ << (8 - pendingBits_);
            *out_++ = static_cast<unsigned char>(byte);
        }
        return out_;
    }

private:
    unsigned char* out_;
    quint64 pending_ = 0;
    int pendingBits_ = 0;
};

// Decodes cells from codes, the end of which may be unknown. No byte is read that does not belong
// to the code of a cell wanted, and none behind the end.
class CodeReader {
public:
    CodeReader(const unsigned char* codes, const unsigned char* end) : at_(codes), end_(end) {}

    // Fills the map.
    // @return false when the codes end early.
    bool read(const DecodeTable& table, unsigned char* map, int count) {
        unsigned char* const last = map + count;
        while (last - map >= blockBits && hasBlock())
            map = readBlock(table, map);
        return readSingly(table, map, last);
    }

private:
    static constexpr int blockBits = 64;
    static constexpr int indexShift = blockBits - DecodeTable::indexBits;
    // A block is read from a byte's beginning, so this many bits of it are sure to be new.
    static constexpr int usableBits = blockBits - 7;

    // Where as many cells are wanted as a block has bits, there are as many bits to come.
    bool hasBlock() const { return !end_ || end_ - at_ >= qsizetype{sizeof(quint64)}; }

    unsigned char* readBlock(const DecodeTable& table, unsigned char* map) {
        quint64 window = qFromBigEndian<quint64>(at_) << bit_;
        int used = 0;
        do {
            const std::size_t index = window >> indexShift;
            const quint64 codes = table.codes[index];
            // The bytes behind the cells decoded are those of cells to come.
            qToLittleEndian(DecodeTable::cellsOf(codes), map);
            map += table.counts[index];
            window <<= DecodeTable::bitsOf(codes);
            used += DecodeTable::bitsOf(codes);
        } while (used <= usableBits - DecodeTable::indexBits);
        advance(used);
        return map;
    }

    // For the end of the map: takes each byte only when a code needs it.
    bool readSingly(const DecodeTable& table, unsigned char* map, const unsigned char* last) {
        quint64 window = 0;
        int valid = 0;
        if (map < last && bit_ != 0) {
            window = quint64{*at_++} << (blockBits - 8 + bit_);
            valid = 8 - bit_;
        }
        while (map < last) {
            const std::size_t index = window >> indexShift;
            const int bits = table.firstBits[index];
            if (bits > valid) {
                if (at_ == end_)
                    return false;
                window |= quint64{*at_++} << (blockBits - 8 - valid);
                valid += 8;
                continue;
            }
            *map++ = static_cast<unsigned char>(DecodeTable::cellsOf(table.codes[index]));
            window <<= bits;
            valid -= bits;
        }
        return true;
    }

    void advance(int bits) {
        at_ += (bit_ + bits) / 8;
        bit_ = (bit_ + bits) % 8;
    }

    const unsigned char* at_;
    const unsigned char* end_;
    int bit_ = 0;
};

struct Header {
    bool coded;
    unsigned stepBits;
    DiffMapSize size;

    explicit Header(const unsigned char* bytes)
        : coded((bytes[0] & codedBit) != 0), stepBits(bytes[1] >> stepShift) {
        size.width = bytes[0] & maxCodedWidth;
        size.height = coded ? bytes[1] & maxCodedHeight : bytes[1];
    }

    int cells() const { return size.width * size.height; }
};

bool decodeCells(const Header& header, const unsigned char* codes, const unsigned char* end,
                 unsigned char* map) {
    const int count = header.cells();
    if (count == 0)
        return true;
    return CodeReader(codes, end).read(decodeTables[header.stepBits], map, count);
}

}  // namespace

int MotionUtils::encodeDiffMap(const unsigned char* map, int width, int height, int step,
                               unsigned char* out) const {
    const int stepBits = stepBitsOf(step);
    const int count = cellCount(width, height);
    if (stepBits == uncoded) {
        out[0] = static_cast<unsigned char>(width);
        out[1] = static_cast<unsigned char>(height);
        std::copy_n(map, count, out + headerSize);
        return count + headerSize;
    }
    out[0] = static_cast<unsigned char>(static_cast<unsigned>(width) | codedBit);
    out[1] = static_cast<unsigned char>(height | stepBits << stepShift);
    const EncodeTable& table = encodeTables[static_cast<std::size_t>(stepBits)];
    CodeWriter writer(out + headerSize);
    for (int cell = 0; cell < count; ++cell)
        writer.write(table[map[cell]]);
    return static_cast<int>(writer.finish() - out);
}

void MotionUtils::decodeDiffMap(const unsigned char* coded, unsigned char* map) const {
    const Header header(coded);
    if (header.coded)
        decodeCells(header, coded + headerSize, nullptr, map);
    else
        std::copy_n(coded + headerSize, header.cells(), map);
}

std::optional<std::size_t> MotionUtils::tryEncodeDiffMap(std::span<const unsigned char> map,
                                                         int width, int height, int step,
                                                         std::span<unsigned char> out,
                                                         QString* error) {
    const int maxHeight = stepBitsOf(step) == uncoded ? maxRawHeight : maxCodedHeight;
    const char* reason = nullptr;
    if (width < 0 || width > maxCodedWidth || height < 0 || height > maxHeight)
        reason = "Difference map dimensions out of range";
    else if (map.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        reason = "Difference map too short";
    else if (out.size() < maxCodedSize(width, height, step))
        reason = "Buffer too small";
    if (!reason)
        return MotionUtils().encodeDiffMap(map.data(), width, height, step, out.data());
    if (error)
        *error = QLatin1String(reason);
    return std::nullopt;
}

std::optional<DiffMapSize> MotionUtils::tryDecodeDiffMap(std::span<const unsigned char> coded,
                                                         std::span<unsigned char> map,
                                                         QString* error) {
    const auto fail = [error](const char* reason) {
        if (error)
            *error = QLatin1String(reason);
        return std::nullopt;
    };
    if (coded.size() < headerSize)
        return fail("Difference map too short");
    const Header header(coded.data());
    const auto cells = static_cast<std::size_t>(header.cells());
    const auto codes = coded.subspan(headerSize);
    if (map.size() < cells)
        return fail("Buffer too small");
    if (!header.coded && codes.size() < cells)
        return fail("Difference map too short");
    if (!header.coded)
        std::copy_n(codes.begin(), cells, map.begin());
    else if (!decodeCells(header, codes.data(), codes.data() + codes.size(), map.data()))
        return fail("Difference map too short");
    return header.size;
}

int MotionUtils::readUn(const unsigned char* buffer, int& position, int n) {
    unsigned value = 0;
    while (n > 0) {
        const int left = 8 - position % 8;
        const int taken = std::min(n, left);
        const unsigned bits = buffer[position / 8] >> (left - taken) & ((1U << taken) - 1);
        value = value << taken | bits;
        position += taken;
        n -= taken;
    }
    return static_cast<int>(value);
}

void MotionUtils::writeUn(unsigned char* buffer, int& position, int n, int value) const {
    while (n > 0) {
        unsigned char& byte = buffer[position / 8];
        if (position % 8 == 0)
            byte = 0;
        const int left = 8 - position % 8;
        const int taken = std::min(n, left);
        n -= taken;
        const unsigned higher = n < 32 ? static_cast<unsigned>(value) >> n : 0;
        const unsigned bits = higher & ((1U << taken) - 1);
        byte = static_cast<unsigned char>(byte | bits << (left - taken));
        position += taken;
    }
}

}  // namespace pylon
