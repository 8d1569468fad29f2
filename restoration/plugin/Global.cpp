// SPDX-License-Identifier: ISC
#include "restoration/plugin/Global.h"

namespace DSP::Global {

Global::Global(ElementHost& owner, float rateHz, uint32_t layout)
    : ElementDispatcher({owner, "Global", rateHz, layout})
{
    RegisterSwitch(GlobalBypass, "Global Bypass", false, Persistence::Transient);
    RegisterSwitch(MeterEnable, "Meter Enable", true, Persistence::Persistent);
    RegisterSwitch(AnimationEnable, "Animation Enable", true, Persistence::Persistent);
    RegisterSwitch(AnimatedFocusEnable, "Animated Focus Enable", true, Persistence::Persistent);

    EnumRegistration depth;
    depth.name = "History Depth Index";
    depth.range = {0, 3};
    depth.defaultValue = 1;
    depth.target = &historyDepthIndex;
    depth.labels = {"50", "100", "500", "Unlimited"};
    depth.info.persistence = Persistence::Persistent;
    depth.onUIChange = ReportsChangeOf<uint32_t>(depth.name);
    RegisterEnumParam(HistoryDepthIndex, std::move(depth));

    ParamRegistration<float> feathering;
    feathering.name = "Selection Feathering";
    feathering.range = {0.0F, 1000.0F};
    feathering.defaultValue = 20.0F;
    feathering.target = &selectionFeathering;
    feathering.info.persistence = Persistence::Persistent;
    feathering.onUIChange = ReportsChangeOf<float>(feathering.name);
    RegisterFloatParam(SelectionFeathering, std::move(feathering));

    ParamRegistration<float> dirty;
    dirty.name = "Global Dirty Flag";
    dirty.range = {0.0F, 1.0F};
    dirty.target = &globalDirtyFlag;
    dirty.info.persistence = Persistence::Transient;
    dirty.onUIChange = ReportsChangeOf<float>(dirty.name);
    RegisterFloatParam(GlobalDirtyFlag, std::move(dirty));

    FinaliseParams();
}

template <typename T>
std::function<void(T)> Global::ReportsChangeOf(const String& paramName)
{
    return [this, paramName](T /*value*/) { GetHost().ParamChanged(*this, paramName); };
}

void Global::RegisterSwitch(Param index,
                            const char* paramName,
                            bool defaultValue,
                            Persistence persistence)
{
    ParamRegistration<bool> registration;
    registration.name = paramName;
    registration.defaultValue = defaultValue;
    registration.target = &switches[index];
    registration.info.persistence = persistence;
    registration.onUIChange = ReportsChangeOf<bool>(registration.name);
    RegisterBoolParam(index, std::move(registration));
}

} // namespace DSP::Global
