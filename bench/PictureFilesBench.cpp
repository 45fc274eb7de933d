// What the picture files cost and how close GIF's palette comes: reducing a
// photograph-like picture to 256 colours (ours, and Qt's fixed cube as the
// yardstick, with the mean and worst channel error as counters), and
// refusing a damaged TGA header that claims far more rows than the file has.
#include "image/FCObjImage.h"
#include "image/PaletteReduce.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {

// Smooth shades, some 60,000 colours at 1280 x 960.
QImage Photo()
{
    QImage image(1280, 960, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y,
                qRgb(60 + x / 8, 40 + y / 6 + int(20 * std::sin(x / 37.0)),
                    70 + int(60 * std::cos((x + y) / 90.0))));
    return image;
}

void Errors(benchmark::State& state, const QImage& source, const QImage& reduced)
{
    const QImage back = reduced.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    int worst = 0;
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x) {
            const QRgb a = source.pixel(x, y), b = back.pixel(x, y);
            const int d = std::max({ std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                std::abs(qBlue(a) - qBlue(b)) });
            sum += d;
            worst = std::max(worst, d);
        }
    state.counters["mean_error"] = sum / (double(source.width()) * source.height());
    state.counters["worst_error"] = worst;
}

void BM_GifPaletteMedianCut(benchmark::State& state)
{
    const QImage photo = Photo();
    QImage reduced;
    for (auto _ : state) {
        reduced = ReduceToPalette(photo).image;
        benchmark::DoNotOptimize(reduced.constBits());
    }
    Errors(state, photo, reduced);
}
BENCHMARK(BM_GifPaletteMedianCut)->Unit(benchmark::kMillisecond);

void BM_GifPaletteQtCube(benchmark::State& state)
{
    const QImage photo = Photo();
    const Qt::ImageConversionFlags flags
        = Qt::ColorOnly | (state.range(0) ? Qt::DiffuseDither : Qt::ThresholdDither);
    QImage reduced;
    for (auto _ : state) {
        reduced = photo.convertToFormat(QImage::Format_Indexed8, flags);
        benchmark::DoNotOptimize(reduced.constBits());
    }
    Errors(state, photo, reduced);
}
BENCHMARK(BM_GifPaletteQtCube)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A 25 KB TGA whose header says 32767 x 3000: refused by its length, before any allocation.
void BM_DamagedTgaRefused(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("damaged.tga");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return state.SkipWithError("cannot write the file");
    file.write(QByteArray::fromHex("000002000000000000000000ff7fb80b1800") + QByteArray(25000, '\x11'));
    file.close();
    for (auto _ : state) {
        FCObjImage picture;
        if (picture.Load(path))
            return state.SkipWithError("a damaged file was read");
    }
}
BENCHMARK(BM_DamagedTgaRefused)->Unit(benchmark::kMicrosecond);

} // namespace
