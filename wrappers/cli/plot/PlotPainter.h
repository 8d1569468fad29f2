// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/plot/Levels.h"
#include "wrappers/cli/plot/PlotRecorder.h"
#include "wrappers/cli/report/Events.h"

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

namespace Cli {

/// A rectangle of time and frequency.
struct PlotRegion {
    double start = 0; ///< seconds
    double end = 0;
    double lowHz = 0;
    double highHz = 0; ///< 0: no upper bound
};

/// The words around a picture, and what is outlined in it.
struct PlotCaption {
    std::string title;
    std::string details;
    double repairLimitHz = 0;        ///< drawn as a line; 0: none
    std::vector<PlotRegion> regions; ///< outlined in all panels
};

/// Paints what a PlotRecorder gathered: spectrograms of 0 to 1 kHz before and after, the waveform,
/// axes, legends, outlines of
/// regions, and a mark for each event that it is given.
class PlotPainter {
public:
    PlotPainter(const PlotRecorder& newRecorder, PlotCaption newCaption);

    /// Marks an event in all panels.
    void Mark(const Event& event);

    /// Writes the picture as PNG; the last call. Throws FileError.
    void Save(int descriptor);

private:
    struct Panel {
        double top;
        double height;
    };
    struct FreeContext {
        void operator()(cairo_t* made) const { cairo_destroy(made); }
    };

    double TimeToX(double seconds) const;
    void PaintTitle();
    void PaintSpectrogram(const Panel& panel, const Spectrogram& spectrogram);
    void MarkSpan(const Panel& panel, double begin, double end);
    void PaintSpectrum(const Panel& panel, const Spectrogram& spectrogram);
    void PaintFrequencyAxis(const Panel& panel);
    void PaintRepairLimit(const Panel& panel);
    void PaintWave(const Panel& panel);
    void PaintWaveSpan(const Panel& panel, double scale, bool isAfter);
    void PaintWaveAxis(const Panel& panel, double scale);
    void PaintTimeAxis(const Panel& panel, bool hasNumbers);
    void PaintColourBar();
    void PaintLegend();
    void Outline(const PlotRegion& region);
    void OutlineSpan(const Panel& panel, const PlotRegion& region);
    double FrequencyToY(const Panel& panel, double hertz) const;
    void PaintFrame(const Panel& panel);
    void PaintName(const Panel& panel, const char* name);

    const PlotRecorder& recorder;
    PlotCaption caption;
    double duration; // seconds, above 0
    LevelRange range;
    Surface surface;
    std::unique_ptr<cairo_t, FreeContext> context;
};

} // namespace Cli
