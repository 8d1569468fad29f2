// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/plot/PlotRecorder.h"

#include <cairo.h>

#include <memory>
#include <string>

namespace Cli {

/// The levels that a picture tells apart, in dBFS.
struct LevelRange {
    double top = 0;   ///< end of the colour map
    double floor = 0; ///< its begin

    /// Where a power stands: 0 at the floor, 1 at the top, and beyond.
    double PlaceOf(float power) const;
};

/// From the loudest of both spectrograms, up to whole tens, 70 dB down.
LevelRange FindLevelRange(const PlotRecorder& recorder);

struct FreeSurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, FreeSurface>;

/// A pixel for each column and bin, 0 Hz at the bottom, in the colours of the map.
Surface PaintLevels(const Spectrogram& spectrogram, const LevelRange& range);

/// The same as a PNG of greys, black for the floor, which leaves the colours to whoever shows it.
std::string LevelsAsPng(const Spectrogram& spectrogram, const LevelRange& range);

} // namespace Cli
