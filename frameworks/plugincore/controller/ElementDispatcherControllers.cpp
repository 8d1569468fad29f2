// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/ElementDispatcherControllers.h"

#include "frameworks/plugincore/controller/ElementDispatcherParamStorage.h"

#include <utility>

namespace Controller {

template <typename Base, typename Source>
ElementDispatcherController<Base, Source>::ElementDispatcherController(
    std::shared_ptr<Source> newParam, DSP::DispatchInfo<T>& transport)
    : Base(std::make_unique<ElementDispatcherParamStorage<T>>(*newParam, transport))
    , param(std::move(newParam))
{
    Base::SetRange(param->GetRange());
    Base::SetDefault(param->GetDefault());
}

template <typename Base, typename Source>
std::any ElementDispatcherController<Base, Source>::GetContext() const
{
    return std::pair<DSP::Element*, String>(&param->GetElement(), param->GetName());
}

template class ElementDispatcherController<FloatParam, DSP::ElementParamImplBase<float>>;
template class ElementDispatcherController<EnumParam, DSP::ElementParamEnumImplBase>;
template class ElementDispatcherController<BoolParam, DSP::ElementParamImplBase<bool>>;

} // namespace Controller
