# SPDX-License-Identifier: ISC
set(PITCH_SOURCES
    pitch/AnalysisSizes.cpp
    pitch/Autocorr.cpp
    pitch/Biquad.cpp
    pitch/DynProgCached.cpp
    pitch/FrameHistory.cpp
    pitch/InputFilters.cpp
    pitch/LagMap.cpp
    pitch/LagTracker.cpp
    pitch/PeakSearch.cpp
    pitch/PitchDetect.cpp
    pitch/PitchEngine.cpp
    pitch/Prefilter.cpp
    pitch/Synapse.cpp
    pitch/VoicingGate.cpp)
