// Masks beside zlib and difference maps beside the plain way to read codes, both made from what
// moves between the pictures of the sample recording.

#define ZLIB_CONST

#include "recordedmedia.h"

#include <benchmark/benchmark.h>
#include <pylon/media/internal/diffmapcodes.h>
#include <pylon/media/motionutils.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

using namespace pylon;

namespace {

constexpr quint32 cameraChannel = 0x10001;

// How much each cell of a grid changes between two pictures, 0-255.
using MotionGrid = std::vector<unsigned char>;

MotionGrid motionBetween(const std::vector<unsigned char>& before,
                         const std::vector<unsigned char>& after, int pictureWidth,
                         int pictureHeight, int width, int height) {
    constexpr int gain = 6;
    MotionGrid grid;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const int top = row * pictureHeight / height;
            const int bottom = (row + 1) * pictureHeight / height;
            const int left = column * pictureWidth / width;
            const int right = (column + 1) * pictureWidth / width;
            int sum = 0;
            for (int y = top; y < bottom; ++y) {
                for (int x = left; x < right; ++x) {
                    const auto i = static_cast<std::size_t>(y * pictureWidth + x);
                    sum += std::abs(int{after[i]} - int{before[i]});
                }
            }
            const int mean = sum / ((bottom - top) * (right - left));
            grid.push_back(static_cast<unsigned char>(std::min(gain * mean, 255)));
        }
    }
    return grid;
}

// The motion between each picture of a camera and the next, on a grid of these dimensions.
std::vector<MotionGrid> recordedMotion(int width, int height) {
    Avcodec jpeg(avcodec_find_decoder(AV_CODEC_ID_MJPEG));
    std::vector<MotionGrid> grids;
    std::vector<unsigned char> before;
    for (const Image& frame : recordedFrames()) {
        if (frame.channel() != cameraChannel || frame.isEncrypted())
            continue;
        const AVFrame& picture = jpeg.decode(frame.payload());
        std::vector<unsigned char> luminance;
        for (int y = 0; y < picture.height; ++y) {
            const uint8_t* const row = picture.data[0] + y * picture.linesize[0];
            luminance.insert(luminance.end(), row, row + picture.width);
        }
        if (!before.empty())
            grids.push_back(
                motionBetween(before, luminance, picture.width, picture.height, width, height));
        before = std::move(luminance);
    }
    require(!grids.empty(), "pictures in the recording");
    return grids;
}

struct Mask {
    char cells[MotionUtils::maskHeight][MotionUtils::maskWidth];
};

// Watches what moves and some cells around it, as a user would paint it.
std::vector<Mask> recordedMasks() {
    constexpr int threshold = 60, around = 3;
    constexpr int width = MotionUtils::maskWidth, height = MotionUtils::maskHeight;
    std::vector<Mask> masks;
    for (const MotionGrid& grid : recordedMotion(width, height)) {
        Mask mask{};
        for (int cell = 0; cell < width * height; ++cell) {
            if (grid[static_cast<std::size_t>(cell)] < threshold)
                continue;
            const int row = cell / width, column = cell % width;
            for (int y = std::max(row - around, 0); y <= std::min(row + around, height - 1); ++y) {
                for (int x = std::max(column - around, 0);
                     x <= std::min(column + around, width - 1); ++x)
                    mask.cells[y][x] = 1;
            }
        }
        masks.push_back(mask);
    }
    return masks;
}

void countCells(benchmark::State& state, std::size_t cells) {
    state.counters["cells_per_ns"] = benchmark::Counter(
        static_cast<double>(cells) * static_cast<double>(state.iterations()) / 1e9,
        benchmark::Counter::kIsRate);
}

// Follows the bits of each code through a tree.
class BitByBitReader {
public:
    explicit BitByBitReader(int step) {
        const auto add = [this](const auto& table, int cellStep) {
            for (int cell = 256 / cellStep * cellStep; cell >= 0; cell -= cellStep) {
                if (cell < 256)
                    insert(table[static_cast<std::size_t>(cell)], cell);
            }
        };
        const auto step4 = diffmap::encodeTable(diffmap::step4Codes, 4);
        if (step == 15)
            add(diffmap::encodeTable(diffmap::step15Codes, 15), 15);
        else if (step == 8)
            add(diffmap::encodeTable(diffmap::step8Codes, 8), 8);
        else if (step == 4)
            add(step4, 4);
        else
            add(diffmap::withOneBitMore(step4), 2);
    }

    void read(const unsigned char* coded, unsigned char* map, int count) const {
        int position = 16;
        for (int cell = 0; cell < count; ++cell) {
            int node = 0;
            do {
                const int bit = coded[position / 8] >> (7 - position % 8) & 1;
                ++position;
                node = children_[static_cast<std::size_t>(node)][static_cast<std::size_t>(bit)];
            } while (node >= 0);
            map[cell] = static_cast<unsigned char>(-1 - node);
        }
    }

private:
    // A child is a node, or -1 less a cell.
    void insert(diffmap::Code code, int cell) {
        std::size_t node = 0;
        for (int i = code.bits - 1; i > 0; --i) {
            const std::size_t bit = code.code >> i & 1;
            if (children_[node][bit] == 0) {
                children_[node][bit] = static_cast<int>(children_.size());
                children_.push_back({});
            }
            node = static_cast<std::size_t>(children_[node][bit]);
        }
        children_[node][code.code & 1] = -1 - cell;
    }

    std::vector<std::array<int, 2>> children_{1};
};

// A map of what moves, as wide and high as a coded one of these proportions can be.
constexpr int mapWidth = 80, mapHeight = 60;
constexpr int mapCells = mapWidth * mapHeight;

std::vector<std::vector<unsigned char>> codedMaps(int step) {
    std::vector<std::vector<unsigned char>> coded;
    for (const MotionGrid& grid : recordedMotion(mapWidth, mapHeight)) {
        coded.emplace_back(MotionUtils::maxCodedSize(mapWidth, mapHeight, step));
        const int size = MotionUtils().encodeDiffMap(grid.data(), mapWidth, mapHeight, step,
                                                     coded.back().data());
        coded.back().resize(static_cast<std::size_t>(size));
    }
    return coded;
}

template <typename Decode>
void decodeMaps(benchmark::State& state, int step, Decode decode) {
    const auto maps = codedMaps(step);
    MotionGrid cells(mapCells);
    for (auto _ : state) {
        for (const auto& coded : maps) {
            decode(coded, cells);
            benchmark::DoNotOptimize(cells.data());
        }
        benchmark::ClobberMemory();
    }
    countCells(state, maps.size() * mapCells);
}

void registerDiffMaps(int step) {
    using Coded = std::vector<unsigned char>;
    const std::string group = "DiffMapStep" + std::to_string(step);
    const auto add = [&](const char* name, auto decode) {
        benchmark::RegisterBenchmark((group + name).c_str(), [=](benchmark::State& state) {
            decodeMaps(state, step, decode);
        });
    };
    add("/MotionUtils", [](const Coded& coded, MotionGrid& cells) {
        MotionUtils().decodeDiffMap(coded.data(), cells.data());
    });
    add("/MotionUtilsChecked", [](const Coded& coded, MotionGrid& cells) {
        benchmark::DoNotOptimize(MotionUtils::tryDecodeDiffMap(coded, cells));
    });
    add("/Peer_BitByBit", [reader = BitByBitReader(step)](const Coded& coded, MotionGrid& cells) {
        reader.read(coded.data(), cells.data(), mapCells);
    });
}

// zlib at its quickest, with its memory allocated once.
class Zlib {
public:
    Zlib() {
        require(deflateInit(&deflate_, Z_BEST_SPEED) == Z_OK, "zlib");
        require(inflateInit(&inflate_) == Z_OK, "zlib");
    }
    Zlib(const Zlib&) = delete;
    Zlib& operator=(const Zlib&) = delete;
    ~Zlib() {
        deflateEnd(&deflate_);
        inflateEnd(&inflate_);
    }

    std::vector<Bytef> encode(const Mask& mask) {
        std::vector<Bytef> coded(sizeof mask);
        deflateReset(&deflate_);
        deflate_.next_in = reinterpret_cast<const Bytef*>(mask.cells);
        deflate_.avail_in = sizeof mask;
        deflate_.next_out = coded.data();
        deflate_.avail_out = sizeof mask;
        require(deflate(&deflate_, Z_FINISH) == Z_STREAM_END, "zlib");
        coded.resize(deflate_.total_out);
        return coded;
    }

    void decode(const std::vector<Bytef>& coded, Mask& mask) {
        inflateReset(&inflate_);
        inflate_.next_in = coded.data();
        inflate_.avail_in = static_cast<uInt>(coded.size());
        inflate_.next_out = reinterpret_cast<Bytef*>(mask.cells);
        inflate_.avail_out = sizeof mask;
        require(inflate(&inflate_, Z_FINISH) == Z_STREAM_END, "zlib");
    }

private:
    z_stream deflate_{};
    z_stream inflate_{};
};

template <typename Encode>
void encodeMasks(benchmark::State& state, Encode encode) {
    const std::vector<Mask> masks = recordedMasks();
    std::size_t bytes = 0;
    for (auto _ : state) {
        bytes = 0;
        for (const Mask& mask : masks)
            bytes += static_cast<std::size_t>(encode(mask).size());
    }
    state.counters["bytes_per_mask"] =
        static_cast<double>(bytes) / static_cast<double>(masks.size());
    countCells(state, masks.size() * sizeof(Mask));
}

template <typename Encode, typename Decode>
void decodeMasks(benchmark::State& state, Encode encode, Decode decode) {
    const std::vector<Mask> masks = recordedMasks();
    std::vector<decltype(encode(masks[0]))> coded;
    std::transform(masks.begin(), masks.end(), std::back_inserter(coded), encode);
    Mask decoded{};
    for (auto _ : state) {
        for (const auto& code : coded) {
            decode(code, decoded);
            benchmark::DoNotOptimize(decoded);
        }
    }
    countCells(state, masks.size() * sizeof(Mask));
}

QString encodedMask(const Mask& mask) {
    return MotionUtils::encodeMask(mask.cells, MotionUtils::maskWidth, MotionUtils::maskHeight);
}

void registerMasks() {
    benchmark::RegisterBenchmark("EncodeMask/MotionUtils",
                                 [](benchmark::State& state) { encodeMasks(state, encodedMask); });
    benchmark::RegisterBenchmark("EncodeMask/Peer_Zlib1", [](benchmark::State& state) {
        Zlib zlib;
        encodeMasks(state, [&](const Mask& mask) { return zlib.encode(mask); });
    });
    benchmark::RegisterBenchmark("DecodeMask/MotionUtils", [](benchmark::State& state) {
        decodeMasks(
            state, [](const Mask& mask) { return encodedMask(mask).toLatin1(); },
            [](const QByteArray& text, Mask& mask) {
                MotionUtils::decodeMask(text.constData(), mask.cells);
            });
    });
    benchmark::RegisterBenchmark("DecodeMask/Peer_Zlib1", [](benchmark::State& state) {
        Zlib zlib;
        decodeMasks(
            state, [&](const Mask& mask) { return zlib.encode(mask); },
            [&](const std::vector<Bytef>& coded, Mask& mask) { zlib.decode(coded, mask); });
    });
}

}  // namespace

int main(int argc, char** argv) {
    for (const int step : {2, 4, 8, 15})
        registerDiffMaps(step);
    registerMasks();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
