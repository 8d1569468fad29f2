// SPDX-License-Identifier: ISC
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"

#include "frameworks/plugincore/instance/Plugin.h"
#include "restoration/dsp/puffguard/PuffguardElement.h"
#include "restoration/dsp/puffguard/Transform.h"
#include "restoration/plugin/Global.h"
#include "restoration/plugin/LMDSPSet.h"
#include "restoration/plugin_LM_Puffguard/Resources.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"

namespace LMPuffguard {

std::unique_ptr<DSP::TransformBase> PluginFactoryImpl::CreateTransform(DSP::ElementHost& host,
                                                                       float sampleRate,
                                                                       uint32_t channelConfig) const
{
    auto log = std::make_shared<DSP::DetectionLog>();
    const auto makeMain = [log](DSP::ElementHost& owner, float rate, uint32_t config) {
        return std::make_shared<DSP::Puffguard::Puffguard>(owner, rate, config, log);
    };
    DSP::Transform::Parts parts{std::make_unique<DSP::LMDSPSet>(host, "PuffGuard", makeMain),
                                log,
                                FindResource("DSP/AutomatableParamList.csv")};
    return std::make_unique<DSP::Transform>(host, std::move(parts), sampleRate, channelConfig);
}

std::unique_ptr<HistoryManager> PluginFactoryImpl::CreateHistory(Plugin& plugin) const
{
    const auto readDepthIndex = [&plugin] {
        const DSP::ElementParamEnum depth(*plugin.GetSet().GetGlobalElement(),
                                          DSP::Global::Global::HistoryDepthIndex);
        return depth.GetValue(DSP::Context::UI);
    };
    return std::make_unique<UI::Dialog::HistoryLogic>(
        plugin, definition.GetShortName(), readDepthIndex);
}

PluginFactory& GetPluginFactory()
{
    static PluginFactoryImpl factory;
    return factory;
}

} // namespace LMPuffguard
