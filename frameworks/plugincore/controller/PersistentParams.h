// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/ConfigFileParams.h"

namespace Controller {

/// A preference of the user: what the parameters of this key have in all live instances. Its values
/// are written to the settings at once, or at the end of a collection of the file's.
template <typename Base>
class PersistentParam final : public ConfigFileParam<Base> {
public:
    using T = typename Base::Value;

    /// `model` is the first element's parameter of this key.
    PersistentParam(Util::ConfigFile& file,
                    const String& newKey,
                    const DSP::ElementParamImplBase<T>& model)
        : ConfigFileParam<Base>(file, newKey, model.GetDefault())
        , key(newKey)
    {
        Register(model);
    }

    /// Range and default are from now on those of `model`, the newest parameter of this key; the
    /// value stays.
    void Register(const DSP::ElementParamImplBase<T>& model)
    {
        Base::SetRange(model.GetRange());
        Base::SetDefault(model.GetDefault());
    }
    const String& GetKey() const { return key; }

private:
    const String key;
};

using PersistentFloatParam = PersistentParam<FloatParam>;
using PersistentEnumParam = PersistentParam<EnumParam>;
using PersistentBoolParam = PersistentParam<BoolParam>;

} // namespace Controller
