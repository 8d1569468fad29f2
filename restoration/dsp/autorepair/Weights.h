// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>

/// What training on mixes of many voices and pops gave: all numbers that a new training replaces.
namespace AutoRepair {

/// Weights of a feature, by dB, in the score of each kind of pop. There are two kinds: full-range
/// ones, and those of microphones with a low cut, which have 60 to 260 Hz alone, a dip on both
/// sides and a vowel still to come.
struct FeatureWeights {
    double fullRange;
    double lowCut;
};

/// In the order of FeatureList in ScoreTrack.cpp, which says what each feature is.
// clang-format off
inline constexpr std::array ScoreWeights = {
    FeatureWeights{ 0.03463,   0.02642},   // low
    FeatureWeights{ 0.04702,   0.02982},   // lowShort
    FeatureWeights{ 0.05513,   0.03387},   // lowOverQuartile
    FeatureWeights{ 0.02218,   0.04202},   // upperOverQuartile
    FeatureWeights{ 0.01046,   0.01109},   // lowOverSpeech
    FeatureWeights{-0.09523,   0.01331},   // riseBefore
    FeatureWeights{ 0.02132,   0.0007923}, // fallBehind
    FeatureWeights{-0.1425,    0.0005336}, // lowOnset
    FeatureWeights{ 0.04216,   0.01185},   // voiceOnset
    FeatureWeights{ 0.002242,  0.07555},   // lowPeakShort
    FeatureWeights{-0.001716, -0.01036},   // upperPeakShort
    FeatureWeights{ 0.04422,   0.04159},   // lowPeak
    FeatureWeights{ 0.04344,   0.02077},   // upperPeak
    FeatureWeights{ 0.04664,  -0.01086},   // lowSlope
    FeatureWeights{ 0.01396,   0.08187},   // upperSlope
    FeatureWeights{ 0.01454,   0.04577},   // voiceToCome
    FeatureWeights{ 0.1699,    0.08508},   // lowValley
    FeatureWeights{ 0.02219,   0.07421},   // upperValley
    FeatureWeights{ 0.06138,   0.07513},   // upperValleyOverSpeech
    FeatureWeights{ 0.1452,    0.09574},   // tone
    FeatureWeights{-0.04883,  -0.07624},   // periodicity
    FeatureWeights{ 0.0009308, 0.05541},   // lowOverVoice
};
// clang-format on

/// What is added to the weighted features.
inline constexpr FeatureWeights ScoreBias = {0.3824, 0.2628};

/// Weights of the rule that decides whether a candidate is repaired.
struct KeepWeights {
    double score;   ///< mean over the run
    double removed; ///< dB, what the repair takes away at its loudest, against the speech level
    double top;     ///< greatest score
    double length;  ///< seconds of the run
    double lowOverVoice; ///< dB, at the top
    double bias;
};
inline constexpr KeepWeights Keep = {0.358, 0.100, 0.961, -0.128, 0.025, -3.258};

} // namespace AutoRepair
