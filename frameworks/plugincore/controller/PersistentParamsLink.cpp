// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/PersistentParamsLink.h"

#include "frameworks/plugincore/controller/PersistentRegistrationVisitor.h"

#include <utility>

namespace Controller {

PersistentParamsLink::PersistentParamsLink(std::shared_ptr<PersistentParamsHolder> newHolder)
    : holder(std::move(newHolder))
{
    holder->Attach(*this);
}

PersistentParamsLink::~PersistentParamsLink()
{
    holder->Detach(*this);
}

void PersistentParamsLink::Load(DSP::Element& element)
{
    PersistentRegistrationVisitor visitor(*this, element);
    DSP::VisitParams(element.GetParamMap(), visitor);
}

template <typename ParamType>
void PersistentParamsLink::Follow(const String& key, ParamType& controller)
{
    using T = typename ParamType::Value;
    Followed entry;
    entry.takeOver = [this, key, &controller] { controller.StoreValue(holder->Get<T>(key)); };
    TakeOver(key, entry);
    entry.connection = controller.ValueChanged().Connect([this, key](const T& value) {
        // What comes from the holder isn't handed back: it may have a newer value by now.
        if (applying == nullptr || *applying != key) {
            holder->Set<T>(key, value, *this);
        }
    });
    followed[key] = std::move(entry);
}

void PersistentParamsLink::TakeOver(const String& key, const Followed& entry)
{
    const String* const former = std::exchange(applying, &key);
    entry.takeOver();
    applying = former;
}

void PersistentParamsLink::Announce(const String& key)
{
    const Util::CriticalSectionGuard guard(queueLock);
    queue.insert(key);
}

void PersistentParamsLink::ApplyChanges()
{
    std::set<String> changed;
    {
        const Util::CriticalSectionGuard guard(queueLock);
        changed.swap(queue);
    }
    for (const String& key : changed) {
        const auto found = followed.find(key);
        if (found != followed.end()) {
            TakeOver(key, found->second);
        }
    }
}

template void PersistentParamsLink::Follow(const String&, FloatParam&);
template void PersistentParamsLink::Follow(const String&, EnumParam&);
template void PersistentParamsLink::Follow(const String&, BoolParam&);

} // namespace Controller
