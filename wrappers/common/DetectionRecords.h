// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Detections.h"

namespace Wrapper {

/// What the module says of a repair, in the wrappers' words.
inline Detection MakeDetection(const DetectionRecord& record)
{
    Detection detection;
    detection.number = record.number;
    detection.centre = record.centre;
    detection.start = record.start;
    detection.end = record.end;
    detection.severity = record.severity;
    detection.pitchHz = record.pitchHz;
    detection.energyBefore = record.energyBefore;
    detection.energyAfter = record.energyAfter;
    if (record.regionEnd >= record.regionStart) {
        detection.frames = record.regionEnd - record.regionStart + 1;
    }
    return detection;
}

} // namespace Wrapper
