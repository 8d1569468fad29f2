// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"
#include "frameworks/plugincore/controller/ParamConfigFileStorage.h"

namespace Controller {

/// A parameter that is kept under a name of the user's settings and starts with what stands there,
/// or with its default. The file outlives the parameter. [ui]
template <typename Base>
class ConfigFileParam : public Base {
public:
    using T = typename Base::Value;

    ConfigFileParam(Util::ConfigFile& file, const String& key, const T& newDefault)
        : Base(MakeStorage(file, key, newDefault))
    {
        Base::SetDefault(newDefault);
    }

private:
    static auto MakeStorage(Util::ConfigFile& file, const String& key, const T& newDefault)
    {
        auto made = std::make_unique<ParamConfigFileStorage<T>>(file, key, newDefault);
        made->LoadFromFile();
        return made;
    }
};

using FloatParamConfigFile = ConfigFileParam<FloatParam>;
using EnumParamConfigFile = ConfigFileParam<EnumParam>;
using BoolParamConfigFile = ConfigFileParam<BoolParam>;
using StringParamConfigFile = ConfigFileParam<StringParam>;

} // namespace Controller
