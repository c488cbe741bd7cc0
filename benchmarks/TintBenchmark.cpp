#include "formats/images/ImageDecoding.h"
#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "platform/posix/PosixMonochromeFilter.h"

#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdlib>

namespace dubrix {

namespace {

/// An icon as they are drawn: a slanting colour gradient with fine grain, a bright disc, and the
/// corners transparent.
RgbaImage icon(std::uint32_t size) {
    RgbaImage image(size, size);
    std::uint32_t noise = 1;
    const int extent = static_cast<int>(size);
    for (int y = 0; y < extent; ++y) {
        for (int x = 0; x < extent; ++x) {
            noise = noise * 1664525 + 1013904223;
            const int dx = 2 * x - extent;
            const int dy = 2 * y - extent;
            const bool isDisc = dx * dx + dy * dy < extent * extent / 3;
            const bool isCorner = std::abs(dx) + std::abs(dy) > extent * 9 / 5;
            const int grain = static_cast<int>(noise >> 30);
            const auto sample = [&](int onDisc, int elsewhere) {
                return static_cast<std::uint8_t>(isCorner ? 0 : isDisc ? onDisc : elsewhere);
            };
            std::uint8_t* const pixel =
                image.row(static_cast<std::uint32_t>(y)) + std::ptrdiff_t{x} * 4;
            pixel[0] = sample(250, x * 200 / extent + grain);
            pixel[1] = sample(240, y * 180 / extent + grain);
            pixel[2] = sample(230, (x + y) * 120 / extent + grain);
            pixel[3] = sample(255, 255);
        }
    }
    return image;
}

void countPixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(0));
}

std::uint32_t sizeOf(const benchmark::State& state) {
    return static_cast<std::uint32_t>(state.range(0));
}

void remapPixels(benchmark::State& state) {
    RgbaImage image = icon(sizeOf(state));
    for (auto _ : state) {
        const MonochromeRemap remap(0.9F, 0.4F, 0.1F);
        remap.apply(image.bytes.get(), image.pixelCount());
        benchmark::DoNotOptimize(image.bytes.get());
        benchmark::ClobberMemory();
    }
    countPixels(state);
}

void decode(benchmark::State& state) {
    const auto png = encodePng(icon(sizeOf(state)));
    for (auto _ : state)
        benchmark::DoNotOptimize(decodeImage(*png));
    countPixels(state);
}

void encode(benchmark::State& state) {
    RgbaImage image = icon(sizeOf(state));
    MonochromeRemap(0.9F, 0.4F, 0.1F).apply(image.bytes.get(), image.pixelCount());
    for (auto _ : state) {
        const auto png = encodePng(image);
        state.counters["bytes"] = static_cast<double>(png->size());
    }
    countPixels(state);
}

void wholeTint(benchmark::State& state) {
    const auto png = encodePng(icon(sizeOf(state)));
    const PosixMonochromeFilter filter;
    for (auto _ : state)
        benchmark::DoNotOptimize(filter.monochromePng(*png, 0.9F, 0.4F, 0.1F));
    countPixels(state);
}

BENCHMARK(remapPixels)->Arg(180)->Arg(1024);
BENCHMARK(decode)->Arg(180)->Arg(1024);
BENCHMARK(encode)->Arg(180)->Arg(1024);
BENCHMARK(wholeTint)->Arg(180)->Arg(1024);

} // namespace

} // namespace dubrix
