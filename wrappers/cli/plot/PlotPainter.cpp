// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/PlotPainter.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/plot/PlotAxis.h"
#include "wrappers/cli/plot/PlotDrawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace Cli {

namespace {

// The picture in pixels.
constexpr double PictureWidth = 1600;
constexpr double PictureHeight = 1084;
constexpr double PlotLeft = 96;
constexpr double PlotRight = 1466;
constexpr double Width = PlotRight - PlotLeft;
constexpr double BeforeTop = 112;
constexpr double SpectrumHeight = 320;
constexpr double AfterTop = BeforeTop + SpectrumHeight + 30;
constexpr double WaveTop = AfterTop + SpectrumHeight + 30;
constexpr double WaveHeight = 170;

constexpr double NarrowestSpan = 4; // of a mark, in pixels

constexpr Colour Ink = {0.13, 0.15, 0.18};
constexpr Colour FaintInk = {0.42, 0.45, 0.5};
constexpr Colour GridInk = {0.6, 0.63, 0.68, 0.35};
constexpr Colour MarkInk = {0.0, 0.62, 0.68};
constexpr Colour MarkFill = {0.25, 0.95, 1.0, 0.16};
constexpr Colour MarkEdge = {0.2, 0.8, 0.85, 0.7};
constexpr Colour RegionInk = {0.55, 0.95, 0.35};
constexpr Colour BeforeInk = {0.93, 0.5, 0.22};
constexpr Colour AfterInk = {0.16, 0.32, 0.55};
constexpr Colour Paper = {1, 1, 1};

cairo_status_t WritePart(void* descriptor, const unsigned char* data, unsigned length)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), length);
    return WriteFully(*static_cast<int*>(descriptor), bytes) == 0 ? CAIRO_STATUS_SUCCESS
                                                                  : CAIRO_STATUS_WRITE_ERROR;
}

} // namespace

PlotPainter::PlotPainter(const PlotRecorder& newRecorder, PlotCaption newCaption)
    : recorder(newRecorder)
    , caption(std::move(newCaption))
    , duration(std::max(newRecorder.GetDuration(), 1e-3))
    , range(FindLevelRange(newRecorder))
    , surface(cairo_image_surface_create(
          CAIRO_FORMAT_RGB24, static_cast<int>(PictureWidth), static_cast<int>(PictureHeight)))
    , context(cairo_create(surface.get()))
{
    SetColour(context.get(), Paper);
    cairo_paint(context.get());
    PaintTitle();
    PaintSpectrogram({BeforeTop, SpectrumHeight}, recorder.GetBefore());
    PaintSpectrogram({AfterTop, SpectrumHeight}, recorder.GetAfter());
    PaintWave({WaveTop, WaveHeight});
    for (const PlotRegion& region : caption.regions) {
        Outline(region);
    }
    PaintColourBar();
    PaintLegend();
}

double PlotPainter::TimeToX(double seconds) const
{
    return PlotLeft + seconds / duration * Width;
}

double PlotPainter::FrequencyToY(const Panel& panel, double hertz) const
{
    return panel.top + panel.height * (1.0 - hertz / SpectrogramLimitHz);
}

void PlotPainter::PaintTitle()
{
    SetColour(context.get(), Ink);
    DrawText(context.get(), PlotLeft, 42, caption.title, {24, Anchor::Left, true});
    SetColour(context.get(), FaintInk);
    DrawText(context.get(), PlotLeft, 70, caption.details, {15, Anchor::Left, false});
}

void PlotPainter::PaintSpectrum(const Panel& panel, const Spectrogram& spectrogram)
{
    if (spectrogram.GetColumns().empty()) {
        return;
    }
    const Surface image = PaintLevels(spectrogram, range);
    const int imageHeight = cairo_image_surface_get_height(image.get());
    // Bin 0 is centred on 0 Hz, so half a bin hangs over below; above, the last bin may pass 1 kHz.
    const double pixelsPerHz = panel.height / SpectrogramLimitHz;
    const double binPixels = spectrogram.GetBinHz() * pixelsPerHz;
    cairo_save(context.get());
    cairo_rectangle(context.get(), PlotLeft, panel.top, Width, panel.height);
    cairo_clip(context.get());
    cairo_translate(context.get(),
                    TimeToX(spectrogram.GetStartSeconds()),
                    panel.top + panel.height - (imageHeight - 0.5) * binPixels);
    cairo_scale(context.get(), spectrogram.GetColumnSeconds() / duration * Width, binPixels);
    cairo_set_source_surface(context.get(), image.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(context.get()), CAIRO_EXTEND_PAD);
    cairo_paint(context.get());
    cairo_restore(context.get());
}

void PlotPainter::PaintSpectrogram(const Panel& panel, const Spectrogram& spectrogram)
{
    PaintSpectrum(panel, spectrogram);
    PaintRepairLimit(panel);
    PaintFrame(panel);
    PaintFrequencyAxis(panel);
    PaintTimeAxis(panel, false);
}

void PlotPainter::PaintFrame(const Panel& panel)
{
    SetColour(context.get(), FaintInk);
    cairo_set_line_width(context.get(), 1);
    cairo_rectangle(context.get(), PlotLeft - 0.5, panel.top - 0.5, Width + 1, panel.height + 1);
    cairo_stroke(context.get());
}

void PlotPainter::PaintName(const Panel& panel, const char* name)
{
    const TextStyle style = {16, Anchor::Left, true};
    const double textWidth = TextWidth(context.get(), name, style);
    SetColour(context.get(), {1, 1, 1, 0.88});
    cairo_rectangle(context.get(), PlotRight - textWidth - 24, panel.top + 8, textWidth + 16, 26);
    cairo_fill(context.get());
    SetColour(context.get(), Ink);
    DrawText(context.get(), PlotRight - textWidth - 16, panel.top + 26, name, style);
}

void PlotPainter::PaintFrequencyAxis(const Panel& panel)
{
    SetColour(context.get(), Ink);
    for (int hz = 0; hz <= 1000; hz += 200) {
        const double y = FrequencyToY(panel, hz);
        DrawLine(context.get(), PlotLeft - 6, y, PlotLeft, y);
        DrawText(
            context.get(), PlotLeft - 11, y + 5, std::to_string(hz), {14, Anchor::Right, false});
    }
    DrawUpwardText(context.get(), 34, panel.top + panel.height / 2, "frequency (Hz)", 15);
}

void PlotPainter::PaintRepairLimit(const Panel& panel)
{
    if (caption.repairLimitHz <= 0) {
        return;
    }
    constexpr std::array Dashes = {7.0, 6.0};
    const double y = FrequencyToY(panel, caption.repairLimitHz);
    SetColour(context.get(), {1, 1, 1, 0.6});
    cairo_set_dash(context.get(), Dashes.data(), static_cast<int>(Dashes.size()), 0);
    DrawLine(context.get(), PlotLeft, y, PlotRight, y);
    cairo_set_dash(context.get(), nullptr, 0, 0);
}

void PlotPainter::PaintTimeAxis(const Panel& panel, bool hasNumbers)
{
    const double bottom = panel.top + panel.height;
    const double step = NiceStep(duration, 14, true);
    for (int64_t i = 0; static_cast<double>(i) * step <= duration; ++i) {
        const double seconds = static_cast<double>(i) * step;
        SetColour(context.get(), Ink);
        DrawLine(context.get(), TimeToX(seconds), bottom, TimeToX(seconds), bottom + 6);
        if (hasNumbers) {
            DrawText(context.get(),
                     TimeToX(seconds),
                     bottom + 23,
                     FormatMark(seconds, step),
                     {14, Anchor::Centre, false});
        }
    }
    if (hasNumbers) {
        DrawText(context.get(),
                 PlotLeft + Width / 2,
                 bottom + 47,
                 duration >= 60 ? "time (min:s)" : "time (s)",
                 {15, Anchor::Centre, false});
    }
}

void PlotPainter::PaintWave(const Panel& panel)
{
    float greatest = 0;
    for (const WaveColumn& column : recorder.GetWave()) {
        greatest = std::max({greatest,
                             -column.leastBefore,
                             column.greatestBefore,
                             -column.leastAfter,
                             column.greatestAfter});
    }
    // Some room above the peak; silence gets a scale too.
    const double scale = std::max(static_cast<double>(greatest) * 1.08, 1e-4);
    SetColour(context.get(), GridInk);
    DrawLine(context.get(),
             PlotLeft,
             panel.top + panel.height / 2,
             PlotRight,
             panel.top + panel.height / 2);
    PaintWaveSpan(panel, scale, false);
    PaintWaveSpan(panel, scale, true);
    PaintFrame(panel);
    PaintWaveAxis(panel, scale);
    PaintTimeAxis(panel, true);
}

void PlotPainter::PaintWaveSpan(const Panel& panel, double scale, bool isAfter)
{
    const double middle = panel.top + panel.height / 2;
    const auto toY = [&](float sample) {
        return middle - static_cast<double>(sample) / scale * panel.height / 2;
    };
    SetColour(context.get(), isAfter ? AfterInk : BeforeInk);
    const auto& columns = recorder.GetWave();
    for (size_t i = 0; i < columns.size(); ++i) {
        const double begin = TimeToX(static_cast<double>(i) * recorder.GetWaveSeconds());
        const double end =
            std::min(PlotRight, TimeToX(static_cast<double>(i + 1) * recorder.GetWaveSeconds()));
        const double top = toY(isAfter ? columns[i].greatestAfter : columns[i].greatestBefore);
        const double bottom = toY(isAfter ? columns[i].leastAfter : columns[i].leastBefore);
        // At least a hairline, also where the signal rests.
        cairo_rectangle(context.get(), begin, top - 0.4, end - begin, bottom - top + 0.8);
    }
    cairo_fill(context.get());
}

void PlotPainter::PaintWaveAxis(const Panel& panel, double scale)
{
    const double step = NiceStep(2 * scale, 6, false);
    SetColour(context.get(), Ink);
    const int reach = static_cast<int>(std::floor(scale / step));
    for (int tick = -reach; tick <= reach; ++tick) {
        const double value = tick * step;
        const double y = panel.top + panel.height / 2 * (1.0 - value / scale);
        DrawLine(context.get(), PlotLeft - 6, y, PlotLeft, y);
        DrawText(context.get(),
                 PlotLeft - 11,
                 y + 5,
                 fmt::format("{:.4g}", value),
                 {14, Anchor::Right, false});
    }
    DrawUpwardText(context.get(), 34, panel.top + panel.height / 2, "amplitude", 15);
}

void PlotPainter::PaintColourBar()
{
    constexpr double BarLeft = PlotRight + 26;
    constexpr double BarWidth = 20;
    constexpr double BarHeight = AfterTop + SpectrumHeight - BeforeTop;
    for (int y = 0; y < static_cast<int>(BarHeight); ++y) {
        const uint32_t pixel = MapPixel(1.0 - y / BarHeight);
        SetColour(context.get(),
                  {(pixel >> 16U & 0xFFU) / 255.0,
                   (pixel >> 8U & 0xFFU) / 255.0,
                   (pixel & 0xFFU) / 255.0});
        cairo_rectangle(context.get(), BarLeft, BeforeTop + y, BarWidth, 1);
        cairo_fill(context.get());
    }
    SetColour(context.get(), Ink);
    const double shown = range.top - range.floor;
    for (int down = 0; down <= static_cast<int>(shown); down += 10) {
        const double y = BeforeTop + BarHeight * down / shown;
        DrawLine(context.get(), BarLeft + BarWidth, y, BarLeft + BarWidth + 6, y);
        DrawText(context.get(),
                 BarLeft + BarWidth + 11,
                 y + 5,
                 fmt::format("{:.0f}", range.top - down),
                 {14, Anchor::Left, false});
    }
    DrawUpwardText(context.get(), PictureWidth - 22, BeforeTop + BarHeight / 2, "level (dBFS)", 15);
}

void PlotPainter::PaintLegend()
{
    constexpr double Baseline = PictureHeight - 22;
    double x = PlotLeft;
    const auto addEntry = [&](const Colour& colour, const std::string& text) {
        SetColour(context.get(), colour);
        cairo_rectangle(context.get(), x, Baseline - 12, 22, 12);
        cairo_fill(context.get());
        SetColour(context.get(), Ink);
        DrawText(context.get(), x + 30, Baseline, text, {14, Anchor::Left, false});
        x += 62 + TextWidth(context.get(), text, {14, Anchor::Left, false});
    };
    addEntry(MarkInk, "prominent plosive, span of its repair");
    if (!caption.regions.empty()) {
        addEntry(RegionInk, "region");
    }
    addEntry(BeforeInk, "waveform before");
    addEntry(AfterInk, "waveform after");
    if (caption.repairLimitHz > 0) {
        SetColour(context.get(), FaintInk);
        DrawText(context.get(),
                 PlotRight,
                 Baseline,
                 fmt::format("dashed: repairs reach up to {:g} Hz", caption.repairLimitHz),
                 {14, Anchor::Right, false});
    }
}

void PlotPainter::Outline(const PlotRegion& region)
{
    for (const Panel& panel : {Panel{BeforeTop, SpectrumHeight}, Panel{AfterTop, SpectrumHeight}}) {
        const double high =
            region.highHz > 0 ? std::min(region.highHz, SpectrogramLimitHz) : SpectrogramLimitHz;
        if (region.lowHz < high) {
            OutlineSpan({FrequencyToY(panel, high),
                         (high - region.lowHz) / SpectrogramLimitHz * panel.height},
                        region);
        }
    }
    OutlineSpan({WaveTop, WaveHeight}, region);
}

void PlotPainter::OutlineSpan(const Panel& panel, const PlotRegion& region)
{
    const double begin = std::max(PlotLeft, TimeToX(region.start));
    const double end = std::min(PlotRight, TimeToX(region.end));
    SetColour(context.get(), RegionInk);
    cairo_set_line_width(context.get(), 1.5);
    cairo_rectangle(context.get(), begin, panel.top + 1, end - begin, panel.height - 2);
    cairo_stroke(context.get());
}

void PlotPainter::Mark(const Event& event)
{
    const double begin = std::max(PlotLeft, TimeToX(event.start));
    const double end = std::min(PlotRight, TimeToX(event.end));
    const double middle = std::clamp(TimeToX(event.time), PlotLeft, PlotRight);
    // Where a span has no width left to show, lines would only hide the picture.
    const bool hasSpan = end - begin >= NarrowestSpan;
    const double halfWidth = hasSpan ? 7 : 0.75;
    for (const Panel& panel : {Panel{BeforeTop, SpectrumHeight},
                               Panel{AfterTop, SpectrumHeight},
                               Panel{WaveTop, WaveHeight}}) {
        if (hasSpan) {
            MarkSpan(panel, begin, end);
        }
        SetColour(context.get(), MarkInk);
        cairo_move_to(context.get(), middle - halfWidth, panel.top - 13);
        cairo_line_to(context.get(), middle + halfWidth, panel.top - 13);
        cairo_line_to(context.get(), middle + (hasSpan ? 0 : halfWidth), panel.top - 1);
        cairo_line_to(context.get(), middle - (hasSpan ? 0 : halfWidth), panel.top - 1);
        cairo_close_path(context.get());
        cairo_fill(context.get());
    }
}

void PlotPainter::MarkSpan(const Panel& panel, double begin, double end)
{
    // A tint would change the spectrogram's colours, which are what it is about.
    if (panel.top == WaveTop) {
        SetColour(context.get(), MarkFill);
        cairo_rectangle(context.get(), begin, panel.top, end - begin, panel.height);
        cairo_fill(context.get());
    }
    SetColour(context.get(), MarkEdge);
    DrawLine(context.get(), begin, panel.top, begin, panel.top + panel.height);
    DrawLine(context.get(), end, panel.top, end, panel.top + panel.height);
}

void PlotPainter::Save(int descriptor)
{
    // Over the marks.
    PaintName({BeforeTop, SpectrumHeight}, "before");
    PaintName({AfterTop, SpectrumHeight}, "after");
    errno = 0;
    const cairo_status_t status =
        cairo_surface_write_to_png_stream(surface.get(), WritePart, &descriptor);
    if (status == CAIRO_STATUS_WRITE_ERROR && errno != 0) {
        throw FileError::FromErrno(errno);
    }
    if (status != CAIRO_STATUS_SUCCESS) {
        throw FileError(cairo_status_to_string(status));
    }
}

} // namespace Cli
