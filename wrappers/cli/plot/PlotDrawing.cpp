// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/PlotDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace Cli {

namespace {

void SelectFont(cairo_t* context, const TextStyle& style)
{
    cairo_select_font_face(context,
                           "sans-serif",
                           CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, style.size);
}

// Black to pale yellow with lightness rising evenly.
constexpr std::array<std::array<double, 3>, 9> MapStops = {{{0, 0, 4},
                                                            {28, 16, 68},
                                                            {79, 18, 123},
                                                            {129, 37, 129},
                                                            {181, 54, 122},
                                                            {229, 80, 100},
                                                            {251, 135, 97},
                                                            {254, 194, 135},
                                                            {252, 253, 191}}};

} // namespace

void SetColour(cairo_t* context, const Colour& colour)
{
    cairo_set_source_rgba(context, colour.red, colour.green, colour.blue, colour.alpha);
}

double TextWidth(cairo_t* context, const std::string& text, const TextStyle& style)
{
    SelectFont(context, style);
    cairo_text_extents_t extents;
    cairo_text_extents(context, text.c_str(), &extents);
    return extents.x_advance;
}

void DrawText(cairo_t* context, double x, double y, const std::string& text, const TextStyle& style)
{
    const double width = TextWidth(context, text, style);
    const double share = style.anchor == Anchor::Left    ? 0.0
                         : style.anchor == Anchor::Right ? 1.0
                                                         : 0.5;
    cairo_move_to(context, x - share * width, y);
    cairo_show_text(context, text.c_str());
}

void DrawUpwardText(cairo_t* context, double x, double y, const std::string& text, double size)
{
    cairo_save(context);
    cairo_translate(context, x, y);
    cairo_rotate(context, -std::numbers::pi / 2);
    DrawText(context, 0, 0, text, {size, Anchor::Centre, false});
    cairo_restore(context);
}

uint32_t MapPixel(double level)
{
    const double place = std::clamp(level, 0.0, 1.0) * static_cast<double>(MapStops.size() - 1);
    const size_t first = std::min(static_cast<size_t>(place), MapStops.size() - 2);
    const double share = place - static_cast<double>(first);
    uint32_t pixel = 0xFF;
    for (size_t part = 0; part < 3; ++part) {
        const double value = std::lerp(MapStops[first][part], MapStops[first + 1][part], share);
        pixel = pixel << 8U | static_cast<uint32_t>(std::lround(value));
    }
    return pixel;
}

void DrawLine(cairo_t* context, double x1, double y1, double x2, double y2)
{
    cairo_set_line_width(context, 1);
    cairo_move_to(context, std::floor(x1) + 0.5, std::floor(y1) + 0.5);
    cairo_line_to(context, std::floor(x2) + 0.5, std::floor(y2) + 0.5);
    cairo_stroke(context);
}

} // namespace Cli
