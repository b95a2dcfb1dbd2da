// The frosted glass's one real cost: blurring the wallpaper under a window, paid once per move,
// resize, wallpaper or theme change (never while idle). Sizes are the areas taken, three blur
// radii wider than the window on each side.
#include "VisualEffectView.h"

#include <QImage>
#include <benchmark/benchmark.h>

namespace {

void blur(benchmark::State& state, int width, int height, int material)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 7 % 256, y * 3 % 256, (x ^ y) % 256));
    for (auto _ : state)
        benchmark::DoNotOptimize(VisualEffectView::blurred(image, VisualEffectView::blurSigma(material)));
}

} // namespace

// A small widget (170x170) in the transparent and the opaque theme; the Control Panel (420x600).
BENCHMARK_CAPTURE(blur, small_transparent, 170 + 2 * 48, 170 + 2 * 48, 4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(blur, small_opaque, 170 + 2 * 66, 170 + 2 * 66, 13)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(blur, medium_transparent, 340 + 2 * 48, 170 + 2 * 48, 4)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(blur, panel, 420 + 2 * 66, 600 + 2 * 66, 13)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
