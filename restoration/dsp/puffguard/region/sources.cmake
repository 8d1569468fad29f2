# SPDX-License-Identifier: ISC
set(REGION_SOURCES
    region/BandCrossover.cpp
    region/BandMask.cpp
    region/BandWeights.cpp
    region/Crossover.cpp)
