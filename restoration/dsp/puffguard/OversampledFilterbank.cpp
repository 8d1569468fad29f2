// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/OversampledFilterbank.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <stdexcept>

namespace DSP {

namespace {

std::size_t Size(int32_t count)
{
    return static_cast<std::size_t>(count);
}

int32_t FindFFTSize(float wanted)
{
    int32_t size = 8;
    while (static_cast<float>(size) < wanted) {
        size *= 2;
    }
    return size;
}

} // namespace

void OversampledFilterbank::initialise(int32_t newChannels,
                                       int32_t newSampleRate,
                                       int32_t newMaxBlockSize)
{
    channels = newChannels;
    sampleRate = newSampleRate;
    maxBlockSize = newMaxBlockSize;
    reset();
}

void OversampledFilterbank::configure(float time,
                                      int32_t overlapFactor,
                                      int32_t windowKind,
                                      int32_t newWindowLength)
{
    const float wanted = static_cast<float>(sampleRate) * time * 0.7F;
    fftSize = FindFFTSize(wanted);
    hop = fftSize / overlapFactor;
    windowLength = newWindowLength == -1 ? fftSize : newWindowLength;
    overlap = windowLength - hop;
    latency = overlap;
    fft = pool.GetFFT(static_cast<uint32_t>(std::countr_zero(static_cast<uint32_t>(fftSize))));
    if (fft == nullptr) {
        throw std::length_error("no transform is long enough for the sample rate");
    }
    frame.resize(Size(fftSize));
    if (channels != 0) {
        inputTail.configure(channels, windowLength, 0);
        outputTail.configure(channels, windowLength, 0);
        openHops.assign(Size(channels), 0);
        MakeBandEdges();
    }
    // Only the number of frames to the window and its length enter; a restart finds its windows
    // here.
    const bool isKnown =
        kind == windowKind && windows.analysis.size() == Size(windowLength) && windowHop == hop;
    if (!isKnown) {
        windows = MakeWindows(windowKind, windowLength, hop);
        kind = windowKind;
        windowHop = hop;
    }
}

void OversampledFilterbank::MakeBandEdges()
{
    const auto last = Size(fftSize / 2);
    lowerBandEdges.resize(last + 1);
    upperBandEdges.resize(last + 1);
    const double binWidth = static_cast<double>(sampleRate) / fftSize;
    for (std::size_t bin = 0; bin <= last; ++bin) {
        lowerBandEdges[bin] = static_cast<float>((static_cast<double>(bin) - 0.5) * binWidth);
        upperBandEdges[bin] = static_cast<float>((static_cast<double>(bin) + 0.5) * binWidth);
    }
    lowerBandEdges[0] = 0.0F;
    upperBandEdges[last] = static_cast<float>(sampleRate) * 0.5F;
}

void OversampledFilterbank::reset() noexcept UTIL_NONBLOCKING
{
    inputTail.zero();
    outputTail.zero();
    std::fill(openHops.begin(), openHops.end(), 0);
}

void OversampledFilterbank::take(const float* const* input) noexcept UTIL_NONBLOCKING
{
    take(input, 0);
}

void OversampledFilterbank::take(const float* const* input, int32_t offset) noexcept
    UTIL_NONBLOCKING
{
    inputTail.consume(hop);
    for (int32_t channel = 0; channel < channels; ++channel) {
        VectorOps::Copy(
            input[channel] + offset, inputTail.GetChannel(channel) + overlap, Size(hop));
    }
}

void OversampledFilterbank::transform(FFTPart part,
                                      int32_t channel,
                                      int32_t binCount,
                                      float* spectrum,
                                      float* power) noexcept UTIL_NONBLOCKING
{
    assert(windowLength == fftSize);
    fft->ForwardOfProductWithPower(
        part, inputTail.GetChannel(channel), windows.analysis.data(), binCount, spectrum, power);
}

void OversampledFilterbank::transform(int32_t channel,
                                      int32_t binCount,
                                      float* spectrum,
                                      float* power) noexcept UTIL_NONBLOCKING
{
    for (const FFTPart part : FFTParts) {
        transform(part, channel, binCount, spectrum, power);
    }
}

void OversampledFilterbank::transform(int32_t channel, float* spectrum) noexcept UTIL_NONBLOCKING
{
    const float* const samples = inputTail.GetChannel(channel);
    const float* const window = windows.analysis.data();
    if (windowLength == fftSize) {
        fft->ForwardOfProduct(samples, window, spectrum);
        return;
    }
    Kernels::GetKernels().overlap.multiply(samples, window, frame.data(), Size(windowLength));
    VectorOps::Zero(frame.data() + windowLength, Size(fftSize - windowLength));
    fft->Forward(frame.data(), spectrum);
}

void OversampledFilterbank::add(FFTPart part,
                                int32_t channel,
                                int32_t binCount,
                                const float* spectrum) noexcept UTIL_NONBLOCKING
{
    assert(windowLength == fftSize);
    fft->AddInverseOfLowBins(
        part, spectrum, binCount, windows.synthesis.data(), outputTail.GetChannel(channel));
    if (part == FFTPart::Last) {
        countOpenHops(channel);
    }
}

void OversampledFilterbank::add(int32_t channel, int32_t binCount, const float* spectrum) noexcept
    UTIL_NONBLOCKING
{
    for (const FFTPart part : FFTParts) {
        add(part, channel, binCount, spectrum);
    }
}

void OversampledFilterbank::countOpenHops(int32_t channel) noexcept UTIL_NONBLOCKING
{
    openHops[Size(channel)] = (windowLength + hop - 1) / hop;
}

void OversampledFilterbank::giveOnto(float* const* output) noexcept UTIL_NONBLOCKING
{
    giveOnto(output, 0);
}

void OversampledFilterbank::giveOnto(float* const* output, int32_t offset) noexcept UTIL_NONBLOCKING
{
    bool isOpen = false;
    for (int32_t channel = 0; channel < channels; ++channel) {
        int32_t& hops = openHops[Size(channel)];
        if (hops > 0) {
            VectorOps::AddInPlace(
                outputTail.GetChannel(channel), output[channel] + offset, Size(hop));
            --hops;
            isOpen = true;
        }
    }
    if (!isOpen) {
        return;
    }
    outputTail.consume(hop);
    for (int32_t channel = 0; channel < channels; ++channel) {
        VectorOps::Zero(outputTail.GetChannel(channel) + overlap, Size(hop));
    }
}

void OversampledFilterbank::analyse(const float* const* input,
                                    int32_t sampleCount,
                                    float* const* spectra,
                                    int32_t inputOffset,
                                    int32_t spectrumOffset) noexcept UTIL_NONBLOCKING
{
    const std::ptrdiff_t frameFloats = fftSize + 2;
    for (int32_t f = 0; f < sampleCount / hop; ++f) {
        take(input, inputOffset + hop * f);
        for (int32_t channel = 0; channel < channels; ++channel) {
            transform(channel, spectra[channel] + spectrumOffset + frameFloats * f);
        }
    }
}

void OversampledFilterbank::synthesise(float* const* output,
                                       int32_t sampleCount,
                                       const float* const* spectra,
                                       int32_t outputOffset,
                                       int32_t spectrumOffset) noexcept UTIL_NONBLOCKING
{
    const std::ptrdiff_t frameFloats = fftSize + 2;
    for (int32_t f = 0; f < sampleCount / hop; ++f) {
        for (int32_t channel = 0; channel < channels; ++channel) {
            VectorOps::Zero(output[channel] + outputOffset + hop * f, Size(hop));
            fft->Inverse(spectra[channel] + spectrumOffset + frameFloats * f, frame.data());
            Kernels::GetKernels().overlap.multiplyAdd(frame.data(),
                                                      windows.synthesis.data(),
                                                      outputTail.GetChannel(channel),
                                                      Size(windowLength));
            countOpenHops(channel);
        }
        giveOnto(output, outputOffset + hop * f);
    }
}

} // namespace DSP
