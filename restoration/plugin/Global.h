// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include <functional>

namespace DSP::Global {

/// Settings that all products of the family share. It sees no audio: it runs with 0 frames, ahead
/// of each chunk.
class Global final : public ElementDispatcher {
public:
    /// Places in the table of parameters.
    enum Param : uint32_t {
        GlobalBypass = 0,
        MeterEnable = 1,
        AnimationEnable = 2,
        AnimatedFocusEnable = 3,
        HistoryDepthIndex = 4,
        SelectionFeathering = 5, ///< milliseconds
        GlobalDirtyFlag = 6
    };

    Global(ElementHost& owner, float rateHz, uint32_t layout);

    /// Lives as long as the instance, whatever the format.
    bool IsConfigurable() const override { return true; }

private:
    template <typename T>
    std::function<void(T)> ReportsChangeOf(const String& paramName);
    void
    RegisterSwitch(Param index, const char* paramName, bool defaultValue, Persistence persistence);

    bool switches[4] = {}; // by Param
    uint32_t historyDepthIndex = 0;
    float selectionFeathering = 0.0F;
    float globalDirtyFlag = 0.0F;
};

} // namespace DSP::Global
