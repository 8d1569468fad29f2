// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/PersistentParamsLink.h"

#include "frameworks/plugincore/controller/PersistentRegistrationVisitor.h"

#include <utility>

namespace Controller {
namespace {

// Points to the key from here to the end of the scope, also when an exception ends it.
class ScopedKey {
public:
    ScopedKey(const String*& newField, const String& key)
        : field(newField)
        , former(std::exchange(newField, &key))
    {
    }
    ScopedKey(const ScopedKey&) = delete;
    ScopedKey& operator=(const ScopedKey&) = delete;
    ~ScopedKey() { field = former; }

private:
    const String*& field;
    const String* const former;
};

} // namespace

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
    PersistentRegistrationVisitor visitor(
        *this, element, PersistentRegistrationVisitor::Mode::Link);
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
    const ScopedKey scope(applying, key);
    entry.takeOver();
}

void PersistentParamsLink::TakeOverAll(std::set<String>& keys)
{
    while (!keys.empty()) {
        const auto first = keys.begin();
        const auto found = followed.find(*first);
        if (found != followed.end()) {
            TakeOver(*first, found->second);
        }
        keys.erase(first);
    }
}

void PersistentParamsLink::Announce(const String& key)
{
    const Util::CriticalSectionGuard guard(queueLock);
    queue.insert(key);
}

void PersistentParamsLink::ApplyChanges()
{
    holder->FollowSettings();
    std::set<String> changed;
    {
        const Util::CriticalSectionGuard guard(queueLock);
        changed.swap(queue);
    }
    try {
        TakeOverAll(changed);
    } catch (...) {
        // The next tick goes on here: with the failed one too, as its value may not have arrived.
        const Util::CriticalSectionGuard guard(queueLock);
        queue.merge(changed);
        throw;
    }
}

template void PersistentParamsLink::Follow(const String&, FloatParam&);
template void PersistentParamsLink::Follow(const String&, EnumParam&);
template void PersistentParamsLink::Follow(const String&, BoolParam&);

} // namespace Controller
