// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/ElementDispatcherParamStorage.h"

namespace Controller {

template <typename T>
ElementDispatcherParamStorage<T>::ElementDispatcherParamStorage(
    DSP::ElementParamImplBase<T>& newParam, DSP::DispatchInfo<T>& newTransport)
    : param(newParam)
    , transport(newTransport)
    , connection(transport.Connect([this](T value) { this->ValueChanged().Emit(value); }))
{
}

template <typename T>
void ElementDispatcherParamStorage<T>::Store(const T& value)
{
    // The process side may have moved on since the last poll: a value that equals the stale one
    // would be taken for no change.
    if (transport.Poll()) {
        transport.Notify();
    }
    param.SetValue(value, DSP::Context::UI, DSP::SourceController);
}

template class ElementDispatcherParamStorage<float>;
template class ElementDispatcherParamStorage<uint32_t>;
template class ElementDispatcherParamStorage<bool>;

} // namespace Controller
