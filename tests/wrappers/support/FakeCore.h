// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <cstring>
#include <span>

/// What the modules that stand in for the real one have in common.
namespace FakeCore {

/// The base of their instances: the host that each was made by.
struct Host {
    PluginCoreHostFunction callback;
    void* refcon;

    void Tell(uint32_t opcode, uint32_t context, void* data) const
    {
        callback(PLUGIN_CORE_MAGIC, opcode, context, refcon, data);
    }
    /// The user turns a control without a hand on it.
    void TellChange(uint32_t index, float value) const { TellEvent(1, index, value); }
    /// With one.
    void TellGesture(uint32_t index, float value) const
    {
        for (uint32_t kind = 0; kind < 3; ++kind) {
            TellEvent(kind, index, value);
        }
    }

private:
    void TellEvent(uint32_t kind, uint32_t index, float value) const
    {
        ParamEventRecord event = {kind, index, value};
        Tell(HostOpcodeParamEvent, 1, &event);
    }
};

/// An automatable parameter from 0 to `maximum`.
struct Parameter {
    const char* identifier;
    float maximum = 1;
    const char* name = "";
    const char* units = "";
    const char* labels = ""; ///< of a choice
};

/// What a module says of itself.
struct Description {
    uint32_t version; ///< as the module's number; FAKE_VERSION is what it is built with
    std::span<const Parameter> automatable;
};

inline void List(std::span<const Parameter> parameters, const ParamListRecord& list)
{
    auto* record = static_cast<ParamInfoRecord*>(list.params);
    for (const Parameter& parameter : parameters) {
        *record = {};
        std::strcpy(record->identifier, parameter.identifier);
        std::strcpy(record->displayName, parameter.name);
        std::strcpy(record->units, parameter.units);
        std::strcpy(record->labels, parameter.labels);
        record->type = *parameter.labels != '\0' ? ParamTypeEnum : ParamTypeFloat;
        record->maximum = parameter.maximum;
        ++record;
    }
}

/// Does what each of them does at this selector alike, if there is something.
template <typename Core>
void Serve(uint32_t selector, const Description& module, Core* instance, void* data)
{
    switch (selector) {
    case SelectorGetPluginInfo:
        static_cast<PluginInfoRequest*>(data)->info->versionNumber = module.version;
        break;
    case SelectorCreatePlugin: {
        const auto& record = *static_cast<CreateRecord*>(data);
        *record.instance = new Core{{record.hostCallback, record.hostRefcon}};
        break;
    }
    case SelectorDestroyPlugin:
        delete instance;
        break;
    case SelectorGetAutomatableParamCount:
        *static_cast<uint32_t*>(data) = static_cast<uint32_t>(module.automatable.size());
        break;
    case SelectorGetAutomatableParamList:
        List(module.automatable, *static_cast<ParamListRecord*>(data));
        break;
    default:
        break;
    }
}

} // namespace FakeCore
