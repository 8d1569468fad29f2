// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/AlignedVector.h"

namespace DSP {

/// Window kinds below 0; 0 and above is a Kaiser-Bessel derived window of that shape, whose kernel
/// has beta = kind * pi, up to 4. Any other negative kind is the filter window.
enum WindowKind : int { WindowHann = -1, WindowBlackman = -2, WindowFilter = -3 };

/// Analysis and synthesis window of an overlap-add filterbank.
struct WindowPair {
    Util::AlignedVector<float> analysis;
    Util::AlignedVector<float> synthesis;
};

/// Makes the windows of `length` samples, an even number, for frames `hop` samples apart:
/// `analysis` is scaled so that its products with the unscaled other one add up to length / 2,
/// `synthesis` by hop / (length / 2). For Hann and Blackman, at 4 or 8 frames to the window, the
/// products of all frames then add up to 1. Computed in double. [setup]
///
/// Method: F. J. Harris, "On the use of windows for harmonic analysis with the discrete Fourier
/// transform", Proc. IEEE 66(1), 1978; the derived window by J. P. Princen and A. B. Bradley,
/// "Analysis/synthesis filter bank design based on time domain aliasing cancellation", IEEE Trans.
/// ASSP 34(5), 1986.
WindowPair MakeWindows(int kind, int length, int hop);

} // namespace DSP
