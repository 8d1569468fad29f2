// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"
#include "frameworks/plugincore/dsp/elements/DispatchInfo.h"

namespace Controller {

/// A parameter of an element as the user interface binds to it: value, gestures and texts are the
/// element's, range and default start as the element's. [ui]
template <typename Base, typename Source>
class ElementDispatcherController : public Base {
public:
    using T = typename Base::Value;

    /// The element, whose transport this is, outlives the controller.
    ElementDispatcherController(std::shared_ptr<Source> newParam, DSP::DispatchInfo<T>& transport);

    /// A `std::pair<DSP::Element*, String>`: the element and the parameter's name.
    std::any GetContext() const override;
    void BeginChange() override { param->Grab(); }
    void EndChange() override { param->Release(); }

protected:
    Source& GetParam() const { return *param; }

private:
    const std::shared_ptr<Source> param;
};

class ElementDispatcherFloatController final
    : public ElementDispatcherController<FloatParam, DSP::ElementParamImplBase<float>> {
public:
    using ElementDispatcherController::ElementDispatcherController;
    String GetUnits() const override { return GetParam().GetParamInfo().units; }
    bool IsLogarithmic() const override { return GetParam().GetParamInfo().isLogarithmic; }
};

class ElementDispatcherEnumController final
    : public ElementDispatcherController<EnumParam, DSP::ElementParamEnumImplBase> {
public:
    using ElementDispatcherController::ElementDispatcherController;
    String GetValueLabel(uint32_t value) const override { return GetParam().GetEnumLabel(value); }
};

class ElementDispatcherBoolController final
    : public ElementDispatcherController<BoolParam, DSP::ElementParamImplBase<bool>> {
public:
    using ElementDispatcherController::ElementDispatcherController;
};

extern template class ElementDispatcherController<FloatParam, DSP::ElementParamImplBase<float>>;
extern template class ElementDispatcherController<EnumParam, DSP::ElementParamEnumImplBase>;
extern template class ElementDispatcherController<BoolParam, DSP::ElementParamImplBase<bool>>;

} // namespace Controller
