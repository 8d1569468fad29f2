// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/AbsoluteLinkController.h"

#include "frameworks/qobase/util/ScopedFlag.h"

namespace Controller {

template <typename ParamType>
LinkedParam<ParamType>::LinkedParam(AbsoluteLinkController<ParamType>& newLink,
                                    ParamType& newTarget)
    : ParamType(std::make_unique<LinkedParamStorage<T, ParamType>>(newTarget))
    , link(newLink)
    , target(newTarget)
    , observer(newTarget)
{
    ParamType::SetRange(target.GetRange());
    ParamType::SetDefault(target.GetDefault());
}

template <typename ParamType>
void LinkedParam<ParamType>::StoreValue(const T& value)
{
    const uint64_t spreadCount = link.GetSpreadCount();
    ParamType::StoreValue(value);
    // A target that had the value already is silent, but the others may have another one.
    if (link.GetSpreadCount() == spreadCount && GetTarget() != nullptr) {
        link.Spread(target, target.GetValue());
    }
}

template <typename ParamType>
LinkedParam<ParamType>& AbsoluteLinkController<ParamType>::Add(ParamType& param)
{
    auto& added = AddChild(std::make_unique<LinkedParam<ParamType>>(*this, param));
    linked.push_back(&added);
    param.ValueChanged().Connect(*this, [this, &param](const T& value) { Spread(param, value); });
    return added;
}

template <typename ParamType>
void AbsoluteLinkController<ParamType>::BeginChangeOfAll()
{
    for (const LinkedParam<ParamType>* entry : linked) {
        if (ParamType* target = entry->GetTarget()) {
            target->BeginChange();
        }
    }
}

template <typename ParamType>
void AbsoluteLinkController<ParamType>::EndChangeOfAll()
{
    for (const LinkedParam<ParamType>* entry : linked) {
        if (ParamType* target = entry->GetTarget()) {
            target->EndChange();
        }
    }
}

template <typename ParamType>
void AbsoluteLinkController<ParamType>::Spread(const ParamType& from, const T& value)
{
    // One that can't take the value answers with another: that isn't sent round again.
    if (spreading) {
        return;
    }
    const Util::ScopedFlag mark(spreading);
    ++spreadCount;
    const T wanted = value;
    for (const LinkedParam<ParamType>* entry : linked) {
        ParamType* target = entry->GetTarget();
        if (target != nullptr && target != &from) {
            target->SetValue(wanted);
        }
    }
}

template class LinkedParam<FloatParam>;
template class LinkedParam<EnumParam>;
template class LinkedParam<BoolParam>;
template class AbsoluteLinkController<FloatParam>;
template class AbsoluteLinkController<EnumParam>;
template class AbsoluteLinkController<BoolParam>;

} // namespace Controller
