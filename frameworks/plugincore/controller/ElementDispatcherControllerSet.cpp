// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"

namespace Controller {
namespace {

template <typename Param>
std::any Answer(Param* param)
{
    return param != nullptr ? std::any(param) : std::any();
}

} // namespace

template <typename ControllerType, typename Source>
ControllerType* ElementDispatcherControllerSet::Get(const String& name)
{
    using Pointer = std::shared_ptr<ControllerType>;
    if (const auto found = controllers.find(name); found != controllers.end()) {
        const auto* present = std::get_if<Pointer>(&found->second);
        return present != nullptr ? present->get() : nullptr;
    }
    const auto found = element.GetParamMap().find(name);
    const auto index = element.FindParamIndex(name);
    if (found == element.GetParamMap().end() || !index) {
        return nullptr;
    }
    const auto* param = std::get_if<std::shared_ptr<Source>>(&found->second);
    if (param == nullptr) {
        return nullptr;
    }
    auto made = std::make_shared<ControllerType>(
        *param, *element.GetDispatchInfo<typename ControllerType::Value>(*index));
    controllers.emplace(name, made);
    return made.get();
}

EnumParam* ElementDispatcherControllerSet::GetEnumController(const String& name)
{
    return Get<ElementDispatcherEnumController, DSP::ElementParamEnumImplBase>(name);
}

BoolParam* ElementDispatcherControllerSet::GetBoolController(const String& name)
{
    return Get<ElementDispatcherBoolController, DSP::ElementParamImplBase<bool>>(name);
}

FloatParam* ElementDispatcherControllerSet::GetFloatController(const String& name)
{
    return Get<ElementDispatcherFloatController, DSP::ElementParamImplBase<float>>(name);
}

std::any ElementDispatcherControllerSet::ValueForKey(const String& key)
{
    std::any answer = Answer(GetFloatController(key));
    if (!answer.has_value()) {
        answer = Answer(GetEnumController(key));
    }
    return answer.has_value() ? answer : Answer(GetBoolController(key));
}

std::set<String> ElementDispatcherControllerSet::AllKeys()
{
    std::set<String> keys;
    for (const auto& [name, param] : element.GetParamMap()) {
        keys.insert(name);
    }
    return keys;
}

} // namespace Controller
