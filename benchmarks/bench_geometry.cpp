// Zooming and moving a picture in its tile, beside the bare arithmetic without limits. At 10,000
// steps a frame and 60 frames a second, 100 ns a step would take 6 % of a processor.

#include <benchmark/benchmark.h>
#include <pylon/geometry/displaygeometry.h>

#include <array>
#include <cstddef>

using pylon::DisplayGeometry;

namespace {

// What a mouse does: in and out around changing places, to and fro, in the end back again.
struct Step {
    double factor, x, y, dx, dy;
};

constexpr std::array<Step, 8> steps{{{1.25, -0.5, 0.25, 3, -2},
                                     {1.25, -0.45, 0.3, 5, -4},
                                     {1.5, 0.1, 0.1, -2, 1},
                                     {0.8, 0.2, -0.4, -6, 3},
                                     {2, 0.9, -0.9, 40, 40},
                                     {0.5, 0, 0, -30, -50},
                                     {0.8, -0.7, 0.2, -9, 9},
                                     {1 / 1.5, 0.3, 0.3, -1, 3}}};

constexpr double width = 640, height = 360;

DisplayGeometry zoomedGeometry() {
    DisplayGeometry geometry;
    geometry.setContainerSize({width, height});
    geometry.setImageSize({1280, 960});
    geometry.zoom(3, 0.2, -0.1);
    return geometry;
}

void countCalls(benchmark::State& state) {
    state.counters["call_ns"] = benchmark::Counter(
        1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <typename Call>
void repeat(benchmark::State& state, Call call) {
    std::size_t i = 0;
    for (auto _ : state) {
        call(steps[i]);
        i = (i + 1) % steps.size();
    }
    countCalls(state);
}

void zoom(benchmark::State& state) {
    DisplayGeometry geometry = zoomedGeometry();
    repeat(state, [&](const Step& step) {
        geometry.zoom(step.factor, step.x, step.y);
        benchmark::DoNotOptimize(geometry.zoomRect());
    });
}
BENCHMARK(zoom)->Name("Zoom/DisplayGeometry");

void zoomUnlimited(benchmark::State& state) {
    QRectF rect = zoomedGeometry().zoomRect();
    repeat(state, [&](const Step& step) {
        const double x = (step.x + 1) * 0.5 * width;
        const double y = (step.y + 1) * 0.5 * height;
        rect = {x - (x - rect.x()) * step.factor, y - (y - rect.y()) * step.factor,
                rect.width() * step.factor, rect.height() * step.factor};
        benchmark::DoNotOptimize(rect);
    });
}
BENCHMARK(zoomUnlimited)->Name("Zoom/Peer_Unlimited");

void move(benchmark::State& state) {
    DisplayGeometry geometry = zoomedGeometry();
    repeat(state, [&](const Step& step) {
        geometry.addOffsetPixels(step.dx, step.dy);
        benchmark::DoNotOptimize(geometry.zoomRect());
    });
}
BENCHMARK(move)->Name("AddOffset/DisplayGeometry");

void moveUnlimited(benchmark::State& state) {
    QRectF rect = zoomedGeometry().zoomRect();
    repeat(state, [&](const Step& step) {
        rect.translate(step.dx, step.dy);
        benchmark::DoNotOptimize(rect);
    });
}
BENCHMARK(moveUnlimited)->Name("AddOffset/Peer_Unlimited");

}  // namespace
