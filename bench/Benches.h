// SPDX-License-Identifier: ISC
#pragma once

#include "bench/TargetTable.h"

/// What the benchmark prints. Each measures by turns with its yardstick and takes medians: figures
/// are ratios of one run of the program, and times are only there to give them a scale. Those that
/// the project holds itself to go to a table as well.
namespace Bench {

/// The whole effect, through the module's entry, against FFTW for the transforms that its work is
/// made of: a forward and an inverse one per hop and channel, and one of each per run of the pitch
/// tracker.
void PrintEffectRatios(TargetTable& table);

/// Longest call against the mean call, at a host block of 64 frames.
void PrintLongestCalls(TargetTable& table);

/// Heap memory of one instance.
void PrintMemory(TargetTable& table);

/// Instructions of a hop, counted by callgrind in a program of their own.
void PrintInstructions(TargetTable& table);

/// The command against a filter of another program, and on two threads against one.
void PrintCommandRatios(TargetTable& table);

/// The command's automatic repair: speed, memory, and two threads against one.
void PrintAutoFigures(TargetTable& table);

/// Regions of a recording: what many cost, or bounds in frequency, and memory.
void PrintRegionFigures(TargetTable& table);

/// Saving and loading an instance's state.
void PrintStateTimes();

/// Looking at a folder of 2,000 presets, with what other programs make it wait.
void PrintPresetListing();

/// The kernels, each against FFTW for its own transforms.
void PrintKernelRatios();

} // namespace Bench
