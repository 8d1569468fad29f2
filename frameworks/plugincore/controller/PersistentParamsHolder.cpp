// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/PersistentParamsHolder.h"

#include "frameworks/plugincore/controller/MemoryParams.h"
#include "frameworks/plugincore/controller/PersistentParamsLink.h"

#include <algorithm>
#include <utility>

namespace Controller {
namespace {

template <typename T>
using PersistentOf = PersistentParam<typename ParamOf<T>::Type>;

} // namespace

std::shared_ptr<PersistentParamsHolder> PersistentParamsHolder::Share(const String& settingsPath)
{
    static Util::CriticalSection holdersLock("Persistent Params Holders");
    static std::map<String, std::weak_ptr<PersistentParamsHolder>> holders;

    const Util::CriticalSectionGuard guard(holdersLock);
    std::weak_ptr<PersistentParamsHolder>& known = holders[settingsPath];
    std::shared_ptr<PersistentParamsHolder> holder = known.lock();
    if (!holder) {
        holder = std::make_shared<PersistentParamsHolder>(settingsPath);
        known = holder;
    }
    return holder;
}

PersistentParamsHolder::PersistentParamsHolder(const String& settingsPath)
    : file(settingsPath)
{
}

template <typename T>
void PersistentParamsHolder::Register(const String& key, const DSP::ElementParamImplBase<T>& model)
{
    const Util::CriticalSectionGuard guard(lock);
    using Pointer = std::shared_ptr<PersistentOf<T>>;
    const auto found = params.find(key);
    if (found != params.end()) {
        Follow();
        std::get<Pointer>(found->second)->Register(model);
        return;
    }
    const auto made = std::make_shared<PersistentOf<T>>(file, key, model);
    registered.reserve(registered.size() + 1); // a failure leaves it in neither place
    params.emplace(key, made);
    registered.emplace_back(made);
}

std::vector<String> PersistentParamsHolder::GetKeys() const
{
    const Util::CriticalSectionGuard guard(lock);
    std::vector<String> keys;
    keys.reserve(registered.size());
    for (const ParamPointer& param : registered) {
        keys.push_back(std::visit([](const auto& typed) { return typed->GetKey(); }, param));
    }
    return keys;
}

template <typename T>
T PersistentParamsHolder::Get(const String& key) const
{
    const Util::CriticalSectionGuard guard(lock);
    return std::get<std::shared_ptr<PersistentOf<T>>>(params.at(key))->GetValue();
}

template <typename T>
void PersistentParamsHolder::Set(const String& key, T value, const PersistentParamsLink& from)
{
    const Util::CriticalSectionGuard guard(lock);
    Follow(); // what another process has written is what the value is compared to
    auto& param = std::get<std::shared_ptr<PersistentOf<T>>>(params.at(key));
    if (param->GetValue() == value) {
        return;
    }
    param->SetValue(value);
    Announce(key, &from);
}

void PersistentParamsHolder::FollowSettings()
{
    const Util::CriticalSectionGuard guard(lock);
    Follow();
}

void PersistentParamsHolder::Follow()
{
    const uint64_t present = file.GetRevision();
    if (std::exchange(revision, present) == present) {
        return;
    }
    for (const ParamPointer& param : registered) {
        std::visit(
            [this](const auto& typed) UTIL_REQUIRES(lock) {
                if (typed->LoadFromFile()) {
                    Announce(typed->GetKey(), nullptr);
                }
            },
            param);
    }
}

void PersistentParamsHolder::Announce(const String& key, const PersistentParamsLink* from)
{
    for (PersistentParamsLink* link : links) {
        if (link != from) {
            link->Announce(key);
        }
    }
}

void PersistentParamsHolder::Attach(PersistentParamsLink& link)
{
    const Util::CriticalSectionGuard guard(lock);
    links.push_back(&link);
}

void PersistentParamsHolder::Detach(PersistentParamsLink& link)
{
    const Util::CriticalSectionGuard guard(lock);
    links.erase(std::remove(links.begin(), links.end(), &link), links.end());
}

template void PersistentParamsHolder::Register(const String&,
                                               const DSP::ElementParamImplBase<float>&);
template void PersistentParamsHolder::Register(const String&,
                                               const DSP::ElementParamImplBase<uint32_t>&);
template void PersistentParamsHolder::Register(const String&,
                                               const DSP::ElementParamImplBase<bool>&);
template float PersistentParamsHolder::Get(const String&) const;
template uint32_t PersistentParamsHolder::Get(const String&) const;
template bool PersistentParamsHolder::Get(const String&) const;
template void PersistentParamsHolder::Set(const String&, float, const PersistentParamsLink&);
template void PersistentParamsHolder::Set(const String&, uint32_t, const PersistentParamsLink&);
template void PersistentParamsHolder::Set(const String&, bool, const PersistentParamsLink&);

} // namespace Controller
