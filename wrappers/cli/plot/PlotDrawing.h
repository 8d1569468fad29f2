// SPDX-License-Identifier: ISC
#pragma once

#include <cairo.h>

#include <cstdint>
#include <string>

namespace Cli {

/// Colour parts from 0 to 1.
struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1.0;
};

void SetColour(cairo_t* context, const Colour& colour);

enum class Anchor { Left, Centre, Right };

/// Where and how a text stands.
struct TextStyle {
    double size = 14; ///< pixels
    Anchor anchor = Anchor::Left;
    bool isBold = false;
};

/// Draws UTF-8 `text` with its baseline at (x, y) in the current colour.
void DrawText(
    cairo_t* context, double x, double y, const std::string& text, const TextStyle& style);

/// The same, turned so that it reads upwards, centred on (x, y).
void DrawUpwardText(cairo_t* context, double x, double y, const std::string& text, double size);

/// Width of `text` in pixels.
double TextWidth(cairo_t* context, const std::string& text, const TextStyle& style);

/// A pixel of the colour map for `level` 0 (black) over violet and orange to 1 (pale yellow), equal
/// steps looking equally far apart.
uint32_t MapPixel(double level);

/// A line with crisp edges.
void DrawLine(cairo_t* context, double x1, double y1, double x2, double y2);

} // namespace Cli
