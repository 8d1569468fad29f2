// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/ConfigFileParams.h"

namespace Controller {

/// A preference of the user: what the parameters of this key have in all live instances. Its values
/// are written to the settings at once.
template <typename Base>
class PersistentParam final : public ConfigFileParam<Base> {
public:
    using T = typename Base::Value;

    /// Range and default are those of `model`, the first element's parameter of this key.
    PersistentParam(Util::ConfigFile& file,
                    const String& key,
                    const DSP::ElementParamImplBase<T>& model)
        : ConfigFileParam<Base>(file, key, model.GetDefault())
    {
        Base::SetRange(model.GetRange());
    }
};

using PersistentFloatParam = PersistentParam<FloatParam>;
using PersistentEnumParam = PersistentParam<EnumParam>;
using PersistentBoolParam = PersistentParam<BoolParam>;

} // namespace Controller
