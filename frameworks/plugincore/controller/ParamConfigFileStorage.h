// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/ParamStorage.h"
#include "frameworks/qobase/util/ConfigFile.h"

#include <cstdint>

namespace Controller {

/// The value is a member with a copy under a name of the user's settings. For float, uint32_t, bool
/// and String.
template <typename T>
class ParamConfigFileStorage final : public ParamMemoryStorage<T> {
public:
    /// Starts with `initialValue` and reads nothing yet. The file outlives the storage.
    ParamConfigFileStorage(Util::ConfigFile& newFile, String newKey, T initialValue);

    /// Writes when the value differs: at once, unless a collection of the file's is under way.
    void Store(const T& newValue) override;
    /// Takes the settings' value over; without one the present value stays.
    void LoadFromFile();
    /// While suspended, values change in memory only.
    void SetWritingSuspended(bool suspended) { isWritingSuspended = suspended; }

private:
    Util::ConfigFile& file;
    const String key;
    bool isWritingSuspended = false;
};

extern template class ParamConfigFileStorage<float>;
extern template class ParamConfigFileStorage<uint32_t>;
extern template class ParamConfigFileStorage<bool>;
extern template class ParamConfigFileStorage<String>;

} // namespace Controller
