// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/ParamStorage.h"
#include "frameworks/plugincore/dsp/elements/DispatchInfo.h"

namespace Controller {

/// The value is the UI side's one of an element's parameter. What the process side changes reaches
/// the listeners as well, when the element is polled.
template <typename T>
class ElementDispatcherParamStorage final : public ParamStorage<T> {
public:
    /// Both outlive the storage.
    ElementDispatcherParamStorage(DSP::ElementParamImplBase<T>& newParam,
                                  DSP::DispatchInfo<T>& newTransport);

    void Store(const T& value) override;
    T Load() const override { return param.GetValue(DSP::Context::UI); }

private:
    DSP::ElementParamImplBase<T>& param;
    DSP::DispatchInfo<T>& transport;
    const std::shared_ptr<void> connection; // the transport's listeners include ours
};

extern template class ElementDispatcherParamStorage<float>;
extern template class ElementDispatcherParamStorage<uint32_t>;
extern template class ElementDispatcherParamStorage<bool>;

} // namespace Controller
