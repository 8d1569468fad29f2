// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"
#include "frameworks/plugincore/controller/ParamConfigFileStorage.h"

#include <memory>
#include <utility>

namespace Controller {

/// A parameter that is kept under a name of the user's settings and starts with what stands there,
/// or with its default. The file outlives the parameter. [ui]
template <typename Base>
class ConfigFileParam : public Base {
public:
    using T = typename Base::Value;

    ConfigFileParam(Util::ConfigFile& file, const String& key, const T& newDefault)
        : ConfigFileParam(std::make_unique<Storage>(file, key, newDefault), newDefault)
    {
        LoadFromFile();
    }

    /// Takes over what stands in the settings by now; true when that was another value.
    bool LoadFromFile()
    {
        const T former = Base::GetValue();
        storage.LoadFromFile();
        return Base::GetValue() != former;
    }

private:
    using Storage = ParamConfigFileStorage<T>;

    ConfigFileParam(std::unique_ptr<Storage> made, const T& newDefault)
        : ConfigFileParam(*made, std::move(made), newDefault)
    {
    }
    // By reference, so that nothing is moved before the other argument is taken.
    ConfigFileParam(Storage& newStorage, std::unique_ptr<Storage>&& made, const T& newDefault)
        : Base(std::move(made))
        , storage(newStorage)
    {
        Base::SetDefault(newDefault);
    }

    Storage& storage; // the base owns it
};

using FloatParamConfigFile = ConfigFileParam<FloatParam>;
using EnumParamConfigFile = ConfigFileParam<EnumParam>;
using BoolParamConfigFile = ConfigFileParam<BoolParam>;
using StringParamConfigFile = ConfigFileParam<StringParam>;

} // namespace Controller
