// SPDX-License-Identifier: ISC
#include "bench/FftwTransform.h"

#include <fftw3.h>

#include <cstddef>
#include <random>

namespace Bench {

struct FftwTransform::State {
    explicit State(int size)
        : samples(fftwf_alloc_real(static_cast<std::size_t>(size)))
        , result(fftwf_alloc_real(static_cast<std::size_t>(size)))
        , spectrum(fftwf_alloc_complex(static_cast<std::size_t>(size) / 2 + 1))
        , forward(fftwf_plan_dft_r2c_1d(size, samples, spectrum, FFTW_MEASURE))
        , inverse(fftwf_plan_dft_c2r_1d(size, spectrum, result, FFTW_MEASURE))
    {
        std::minstd_rand random;
        for (int i = 0; i < size; ++i) {
            samples[i] = static_cast<float>(random() % 2000) * 0.001F - 1.0F;
        }
    }

    ~State()
    {
        fftwf_destroy_plan(forward);
        fftwf_destroy_plan(inverse);
        fftwf_free(spectrum);
        fftwf_free(result);
        fftwf_free(samples);
    }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    float* samples; // stays as it is, so that unscaled transforms can't grow out of range
    float* result;
    fftwf_complex* spectrum;
    fftwf_plan forward;
    fftwf_plan inverse;
};

FftwTransform::FftwTransform(int size)
    : state(std::make_unique<State>(size))
{
}

FftwTransform::~FftwTransform() = default;

void FftwTransform::RunPairs(int count)
{
    for (int i = 0; i < count; ++i) {
        fftwf_execute(state->forward);
        fftwf_execute(state->inverse);
    }
}

} // namespace Bench
