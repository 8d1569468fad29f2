// SPDX-License-Identifier: ISC
#pragma once

#include <memory>

namespace Bench {

/// FFTW's single-precision real transforms of one size, planned by measurement: the yardstick.
class FftwTransform {
public:
    /// Plans, which takes a moment. `size` in samples.
    explicit FftwTransform(int size);
    ~FftwTransform();
    FftwTransform(const FftwTransform&) = delete;
    FftwTransform& operator=(const FftwTransform&) = delete;

    /// So many times from samples to spectrum and back, on memory of its own.
    void RunPairs(int count);

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace Bench
