// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"
#include "frameworks/plugincore/controller/PersistentParamsHolder.h"

#include <functional>
#include <set>

namespace Controller {

/// Keeps the persistent parameters of one instance's elements and the user's preferences equal. A
/// change in this instance is written at once; one in another instance waits in a queue for the
/// instance's own tick. [ui] unless stated otherwise
class PersistentParamsLink {
public:
    explicit PersistentParamsLink(std::shared_ptr<PersistentParamsHolder> newHolder);
    PersistentParamsLink(const PersistentParamsLink&) = delete;
    PersistentParamsLink& operator=(const PersistentParamsLink&) = delete;
    ~PersistentParamsLink();

    /// Sets each persistent parameter of the element to its preference, and follows it from now on,
    /// until Clear(). The element outlives that.
    void Load(DSP::Element& element);
    /// Lets go of all elements.
    void Clear() { followed.clear(); }
    /// Takes over what others have changed, instances of this process or somebody else in the
    /// settings; every tick. When that throws, the next call takes over the rest.
    void ApplyChanges();

    /// For the holder: the preference of this key has changed. [any]
    void Announce(const String& key);

    /// For PersistentRegistrationVisitor: sets the parameter to its preference and follows it.
    template <typename ParamType>
    void Follow(const String& key, ParamType& controller);
    PersistentParamsHolder& GetHolder() const { return *holder; }

private:
    struct Followed {
        std::function<void()> takeOver; // the preference, by the element's parameter
        Connection connection;
    };
    void TakeOver(const String& key, const Followed& entry);
    /// Leaves those that are still to be taken over.
    void TakeOverAll(std::set<String>& keys);

    const std::shared_ptr<PersistentParamsHolder> holder;
    std::map<String, Followed> followed; // by key
    const String* applying = nullptr;    // key of the parameter that is being taken over
    Util::CriticalSection queueLock{"Persistent Params Queue"};
    std::set<String> queue UTIL_GUARDED_BY(queueLock); // keys
};

} // namespace Controller
