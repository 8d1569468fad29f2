// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/Levels.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/plot/PlotDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Cli {

namespace {

constexpr double ShownDecibels = 70; // from the loudest to black

double Decibel(float power)
{
    return 10.0 * std::log10(std::max(static_cast<double>(power), 1e-20));
}

// An image whose pixels `toPixel` makes of powers.
template <typename Pixel, typename ToPixel>
Surface Paint(const Spectrogram& spectrogram, cairo_format_t format, ToPixel toPixel)
{
    const auto& columns = spectrogram.GetColumns();
    const int width = static_cast<int>(columns.size());
    const int height = columns.empty() ? 0 : static_cast<int>(columns.front().powers.size());
    Surface image(cairo_image_surface_create(format, width, height));
    cairo_surface_flush(image.get());
    auto* pixels = reinterpret_cast<Pixel*>(cairo_image_surface_get_data(image.get()));
    const int stride =
        cairo_image_surface_get_stride(image.get()) / static_cast<int>(sizeof(Pixel));
    for (int x = 0; x < width; ++x) {
        const auto& powers = columns[static_cast<size_t>(x)].powers;
        for (int y = 0; y < height; ++y) {
            pixels[y * stride + x] = toPixel(powers[static_cast<size_t>(height - 1 - y)]);
        }
    }
    cairo_surface_mark_dirty(image.get());
    return image;
}

cairo_status_t AppendPart(void* text, const unsigned char* data, unsigned length)
{
    static_cast<std::string*>(text)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

double LevelRange::PlaceOf(float power) const
{
    return (Decibel(power) - floor) / ShownDecibels;
}

LevelRange FindLevelRange(const PlotRecorder& recorder)
{
    float greatest = 0;
    for (const Spectrogram* spectrogram : {&recorder.GetBefore(), &recorder.GetAfter()}) {
        for (const SpectrumColumn& column : spectrogram->GetColumns()) {
            greatest =
                std::max(greatest, *std::max_element(column.powers.begin(), column.powers.end()));
        }
    }
    // Silence gets a scale too.
    const double loudest = std::max(Decibel(greatest), -100.0);
    const double top = 10.0 * std::ceil(loudest / 10.0) + 0.0; // the sum makes a 0 of a -0
    return {top, top - ShownDecibels};
}

Surface PaintLevels(const Spectrogram& spectrogram, const LevelRange& range)
{
    return Paint<uint32_t>(spectrogram, CAIRO_FORMAT_RGB24, [&](float power) {
        return MapPixel(range.PlaceOf(power));
    });
}

std::string LevelsAsPng(const Spectrogram& spectrogram, const LevelRange& range)
{
    const Surface image = Paint<uint8_t>(spectrogram, CAIRO_FORMAT_A8, [&](float power) {
        return static_cast<uint8_t>(
            std::lround(255.0 * std::clamp(range.PlaceOf(power), 0.0, 1.0)));
    });
    std::string png;
    const cairo_status_t status = cairo_surface_write_to_png_stream(image.get(), AppendPart, &png);
    if (status != CAIRO_STATUS_SUCCESS) {
        throw FileError(cairo_status_to_string(status));
    }
    return png;
}

} // namespace Cli
