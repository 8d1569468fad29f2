// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include "frameworks/plugincore/dsp/elements/ElementDispatcherParam.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/ScopedFlag.h"

#include <stdexcept>
#include <type_traits>

namespace DSP {
namespace {

template <typename T>
auto MakeConfig(const ParamRegistration<T>& registration, DSPCommandMailbox& mailbox)
{
    typename DispatchInfo<T>::Config config;
    config.range = registration.range;
    config.target = registration.target;
    config.onProcessChange = registration.onProcessChange;
    config.onUIChange = registration.onUIChange;
    config.mailbox = &mailbox;
    return config;
}

template <typename Visit>
void VisitDispatch(auto& dispatch, Visit visit)
{
    std::visit(
        [&](auto& info) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(info)>, std::monostate>) {
                visit(*info);
            }
        },
        dispatch);
}

} // namespace

ElementDispatcher::ElementDispatcher(const Setup& setup)
    : ElementImpl(setup)
{
}

ElementDispatcher::~ElementDispatcher() = default;

template <typename Record>
void ElementDispatcher::Register(uint32_t index, Record registration)
{
    *registration.target = registration.defaultValue;
    if (pending.size() <= index) {
        pending.resize(index + 1);
    }
    indexByName.try_emplace(registration.name, index);
    pending[index] = std::move(registration);
}

ElementParam<float> ElementDispatcher::RegisterFloatParam(uint32_t index,
                                                          ParamRegistration<float> registration)
{
    Register(index, std::move(registration));
    return {*this, index};
}

ElementParam<bool> ElementDispatcher::RegisterBoolParam(uint32_t index,
                                                        ParamRegistration<bool> registration)
{
    registration.range = {false, true};
    Register(index, std::move(registration));
    return {*this, index};
}

ElementParamEnum ElementDispatcher::RegisterEnumParam(uint32_t index, EnumRegistration registration)
{
    Register(index, std::move(registration));
    return {*this, index};
}

bool ElementDispatcher::IsNameTaken(const String& paramName) const
{
    if (!paramsByName.contains(paramName)) {
        return false;
    }
    Util::DebugTrace(String("Parameter \"%1\" has already been registered").arg(paramName));
    return true;
}

template <typename Param, typename Record>
std::shared_ptr<Param> ElementDispatcher::Make(uint32_t index, Record& registration)
{
    using Value = decltype(registration.defaultValue);
    auto info = std::make_unique<DispatchInfo<Value>>(MakeConfig<Value>(registration, *this));
    auto param = std::make_shared<Param>(*this, *info, std::move(registration));
    dispatch[index] = std::move(info);
    return param;
}

void ElementDispatcher::Build(uint32_t index, Registration& registration)
{
    std::visit(
        [&](auto& record) {
            using Record = std::decay_t<decltype(record)>;
            if constexpr (std::is_same_v<Record, std::monostate>) {
                Util::DebugTrace(String("Parameter index %1 has not been registered").arg(index));
            } else if (IsNameTaken(record.name)) {
                Util::DebugTrace(
                    String("Parameter registration for parameter index %1 failed. Was there "
                           "already a parameter with the same ID?")
                        .arg(index));
            } else {
                const String paramName = record.name;
                names[index] = paramName;
                indexByName[paramName] = index;
                if constexpr (std::is_same_v<Record, EnumRegistration>) {
                    paramsByName[paramName] = Make<ElementDispatcherParamEnum>(index, record);
                } else {
                    using Value = decltype(record.defaultValue);
                    paramsByName[paramName] = Make<ElementDispatcherParam<Value>>(index, record);
                }
                paramsByIndex[index] = &paramsByName.at(paramName);
            }
        },
        registration);
}

void ElementDispatcher::FinaliseParams()
{
    if (finalised) {
        return;
    }
    finalised = true;
    indexByName.clear(); // from now on of what is built
    names.resize(pending.size());
    dispatch.resize(pending.size());
    paramsByIndex.resize(pending.size(), nullptr);
    for (uint32_t index = 0; index < pending.size(); ++index) {
        Build(index, pending[index]);
    }
    // All that is derived from a value sees it once before any audio.
    Suspend();
    for (Dispatch& info : dispatch) {
        VisitDispatch(info, [](auto& transport) { transport.Apply(); });
    }
    Resume();
    for (uint32_t child = 0; child < GetChildCount(); ++child) {
        GetChild(child)->SyncParams();
    }
    GetHost().ReserveProcessingMemory(GetProcessingMemorySize());
    pending.clear();
    pending.shrink_to_fit();
}

void ElementDispatcher::SyncParams()
{
    for (uint32_t child = 0; child < GetChildCount(); ++child) {
        GetChild(child)->SyncParams();
    }
    bool any = false;
    for (Dispatch& info : dispatch) {
        VisitDispatch(info, [&any](auto& transport) { any = transport.Poll() || any; });
    }
    OnParamsChanged(any);
    for (Dispatch& info : dispatch) {
        VisitDispatch(info, [](auto& transport) { transport.Notify(); });
    }
}

std::optional<uint32_t> ElementDispatcher::FindParamIndex(const String& paramName) const
{
    const auto found = indexByName.find(paramName);
    const bool isBuilt = found != indexByName.end() && finalised;
    return isBuilt ? std::optional<uint32_t>(found->second) : std::nullopt;
}

std::shared_ptr<Controller::ControllerSet> ElementDispatcher::CreateControllerSet()
{
    return GetHost().CreateControllerSet(*this);
}

std::shared_ptr<Controller::ControllerSet> ElementDispatcher::GetControllerSet()
{
    if (makingControllerSet) {
        throw std::logic_error(
            "Calling ElementDispatcher::GetControllerSet() recursively. Make sure your custom "
            "controller set's constructor does not call through to GetControllerSet()!");
    }
    if (!controllerSet) {
        const Util::ScopedFlag mark(makingControllerSet);
        controllerSet = CreateControllerSet();
    }
    return controllerSet;
}

String ElementDispatcher::GetParamName(uint32_t index) const
{
    return index < names.size() ? names[index] : String();
}

const ParamObject* ElementDispatcher::FindParam(uint32_t index) const
{
    return index < paramsByIndex.size() ? paramsByIndex[index] : nullptr;
}

const ParamInfo& ElementDispatcher::GetParamInfoByName(const String& paramName) const
{
    static const ParamInfo Unknown;
    if (const auto found = paramsByName.find(paramName); found != paramsByName.end()) {
        return std::visit(
            [](const auto& param) -> const ParamInfo& { return param->GetParamInfo(); },
            found->second);
    }
    const auto index = indexByName.find(paramName);
    if (index == indexByName.end() || index->second >= pending.size()) {
        return Unknown;
    }
    return std::visit(
        [](const auto& record) -> const ParamInfo& {
            if constexpr (std::is_same_v<std::decay_t<decltype(record)>, std::monostate>) {
                return Unknown;
            } else {
                return record.info;
            }
        },
        pending[index->second]);
}

template <typename T>
DispatchInfo<T>* ElementDispatcher::GetDispatchInfo(uint32_t index) const
{
    if (index >= dispatch.size()) {
        return nullptr;
    }
    const auto* info = std::get_if<std::unique_ptr<DispatchInfo<T>>>(&dispatch[index]);
    return info != nullptr ? info->get() : nullptr;
}

template DispatchInfo<float>* ElementDispatcher::GetDispatchInfo(uint32_t) const;
template DispatchInfo<uint32_t>* ElementDispatcher::GetDispatchInfo(uint32_t) const;
template DispatchInfo<bool>* ElementDispatcher::GetDispatchInfo(uint32_t) const;

bool ElementDispatcher::SetFloatValue(uint32_t index,
                                      float value,
                                      Context thread,
                                      ValueSource source)
{
    auto* info = GetDispatchInfo<float>(index);
    return info != nullptr && info->SetValue(value, thread, source);
}

bool ElementDispatcher::SetEnumValue(uint32_t index,
                                     uint32_t value,
                                     Context thread,
                                     ValueSource source)
{
    auto* info = GetDispatchInfo<uint32_t>(index);
    return info != nullptr && info->SetValue(value, thread, source);
}

bool ElementDispatcher::SetBoolValue(uint32_t index, bool value, Context thread, ValueSource source)
{
    auto* info = GetDispatchInfo<bool>(index);
    return info != nullptr && info->SetValue(value, thread, source);
}

float ElementDispatcher::GetFloatValue(uint32_t index, Context thread) const
{
    const auto* info = GetDispatchInfo<float>(index);
    return info != nullptr ? info->GetValue(thread) : 0.0F;
}

uint32_t ElementDispatcher::GetEnumValue(uint32_t index, Context thread) const
{
    const auto* info = GetDispatchInfo<uint32_t>(index);
    return info != nullptr ? info->GetValue(thread) : 0;
}

bool ElementDispatcher::GetBoolValue(uint32_t index, Context thread) const
{
    const auto* info = GetDispatchInfo<bool>(index);
    return info != nullptr && info->GetValue(thread);
}

} // namespace DSP
