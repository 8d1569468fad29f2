// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParams.h"
#include "frameworks/qobase/util/CriticalSection.h"

#include <map>
#include <memory>
#include <variant>
#include <vector>

namespace Controller {

class PersistentParamsLink;

/// The preferences of the user under one path of the settings, shared by all instances of the
/// process; it ends with the last of them. A parameter's key is "Params.", its element's name,
/// ".Float.", ".Bool." or ".Enum.", and its own name.
///
/// Threads: [any], except on the processing side. Instances may have different UI threads, so that
/// everything happens under the holder's lock. It calls nothing back but the queues of the links.
class PersistentParamsHolder {
public:
    /// The one of this path: made anew, from what the settings hold, while there is none.
    static std::shared_ptr<PersistentParamsHolder> Share(const String& settingsPath);

    explicit PersistentParamsHolder(const String& settingsPath);

    /// Makes the parameter of this key, or hands `model` to the one that is there, with what the
    /// settings hold by now. A key keeps its type: float, uint32_t or bool.
    template <typename T>
    void Register(const String& key, const DSP::ElementParamImplBase<T>& model);
    /// Keys of all parameters, in the order in which they came.
    std::vector<String> GetKeys() const;
    /// The key has been registered with this type.
    template <typename T>
    T Get(const String& key) const;
    /// Writes a value that differs to the settings and announces it to all links but `from`.
    template <typename T>
    void Set(const String& key, T value, const PersistentParamsLink& from);
    /// Takes over what others have written to the settings, another process or another copy of this
    /// module, and announces it to all links. A value that was removed there stays as it is.
    void FollowSettings();

    /// A link is notified of changes from Attach() to Detach().
    void Attach(PersistentParamsLink& link);
    void Detach(PersistentParamsLink& link);

private:
    using ParamPointer = std::variant<std::shared_ptr<PersistentFloatParam>,
                                      std::shared_ptr<PersistentEnumParam>,
                                      std::shared_ptr<PersistentBoolParam>>;

    void Follow() UTIL_REQUIRES(lock);
    void Announce(const String& key, const PersistentParamsLink* from) UTIL_REQUIRES(lock);

    mutable Util::CriticalSection lock{"Persistent Params"};
    Util::ConfigFile file UTIL_GUARDED_BY(lock);
    uint64_t revision UTIL_GUARDED_BY(lock) = 0; // of the file that the values were compared to
    std::map<String, ParamPointer> params UTIL_GUARDED_BY(lock);
    std::vector<ParamPointer> registered UTIL_GUARDED_BY(lock);     // those of params, oldest first
    std::vector<PersistentParamsLink*> links UTIL_GUARDED_BY(lock); // not owned
};

} // namespace Controller
