// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace AutoRepair {

/// Takes every second sample of a stream, of rate R, once what would fold is gone: up to 0.2 R
/// everything stays to within 0.0002 dB, from 0.3 R on all is 95 dB down. Output m is centred on
/// input 2 m: it comes as soon as the inputs that it needs are there. Before the first one lies
/// silence.
///
/// A half-band filter: but for the middle one, only every other coefficient isn't 0.
class HalfBandDecimator {
public:
    HalfBandDecimator();

    /// Takes samples and appends what comes of them to `output`.
    void Process(std::span<const float> input, std::vector<float>& output);

private:
    static constexpr std::size_t Pairs = 16;

    std::array<float, Pairs> coefficients{}; // of inputs 1, 3, 5 ... away from the middle
    std::vector<float> even; // inputs of even number that aren't used up, the oldest first
    std::vector<float> odd;  // and those of odd number, from `Pairs` before that on
    bool isOddNext = false;
};

/// Half-band decimators in a row: the output's rate is the input's by 2^stages. Output m is centred
/// on input m 2^stages.
class Decimator {
public:
    explicit Decimator(int stages)
        : chain(static_cast<std::size_t>(stages))
        , between(static_cast<std::size_t>(stages))
    {
    }

    /// Takes samples and appends what comes of them to `output`.
    void Process(std::span<const float> input, std::vector<float>& output);

private:
    std::vector<HalfBandDecimator> chain;
    std::vector<std::vector<float>> between; // scratch: what one hands to the next
};

} // namespace AutoRepair
