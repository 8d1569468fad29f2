// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/DispatchInfo.h"

#include <boost/signals2/signal.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace DSP {

template <typename T>
class ChangeSignal : public boost::signals2::signal<void(T)> {
};

namespace {

// Stands for an empty source where only a number can be stored.
constexpr int32_t NoSource = -1;

// A value on its way to the process side. The step there is all that it does: afterwards it only
// travels back to be deleted.
template <typename T>
class DispatcherCommand final : public DSPCommand {
public:
    DispatcherCommand(DispatchInfo<T>& newInfo, T newValue, ValueSource newSource)
        : info(newInfo)
        , value(newValue)
        , source(newSource)
    {
    }

    bool ProcessThreadStep() override
    {
        info.Arrive(value, source);
        return false;
    }
    bool UIThreadStep() override { return false; }

private:
    DispatchInfo<T>& info;
    const T value;
    const ValueSource source;
};

} // namespace

template <typename T>
DispatchInfo<T>::DispatchInfo(Config newConfig)
    : config(std::move(newConfig))
    , lastSource(NoSource)
    , uiValue(*config.target)
{
}

template <typename T>
DispatchInfo<T>::~DispatchInfo() = default;

// The UI side reads the element's member while the process side may write it; both go through an
// atomic view of it. The audio code itself reads it plainly, on the side that writes.
template <typename T>
T DispatchInfo<T>::LoadTarget() const
{
    return std::atomic_ref<T>(*config.target).load(std::memory_order_acquire);
}

template <typename T>
bool DispatchInfo<T>::SetValue(T value, Context thread, ValueSource source)
{
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(value)) {
            return false;
        }
    }
    const T clamped = std::clamp(value, config.range.min, config.range.max);
    for (const Observer& observer : observers) {
        observer(thread, clamped, source);
    }
    return thread == Context::Process ? SetOnProcessSide(clamped, source)
                                      : SetOnUISide(clamped, source);
}

template <typename T>
bool DispatchInfo<T>::SetOnProcessSide(T value, ValueSource source)
{
    if (*config.target == value) {
        return false;
    }
    // The source first: who sees the new value sees also where it came from.
    lastSource.store(source.value_or(NoSource), std::memory_order_relaxed);
    std::atomic_ref<T>(*config.target).store(value, std::memory_order_release);
    if (config.onProcessChange) {
        config.onProcessChange(value);
    }
    return true;
}

template <typename T>
bool DispatchInfo<T>::SetOnUISide(T value, ValueSource source)
{
    if (uiValue == value) {
        return false;
    }
    uiValue = value;
    if (uiDispatch) {
        uiDispatch(value, source);
    } else {
        Send(value, source);
    }
    EmitChange(source.value_or(NoSource));
    return true;
}

template <typename T>
void DispatchInfo<T>::Send(T value, ValueSource source)
{
    // What doesn't arrive must not leave the count raised.
    auto command = std::make_unique<DispatcherCommand<T>>(*this, value, source);
    inFlight.fetch_add(1, std::memory_order_relaxed);
    try {
        config.mailbox->PostCommand(command.release());
    } catch (...) {
        inFlight.fetch_sub(1, std::memory_order_release);
        throw;
    }
}

template <typename T>
void DispatchInfo<T>::Arrive(T value, ValueSource source)
{
    SetValue(value, Context::Process, source);
    // Pairs with Poll(): who sees the lower count sees the value.
    inFlight.fetch_sub(1, std::memory_order_release);
}

template <typename T>
T DispatchInfo<T>::GetValue(Context thread) const
{
    return thread == Context::Process ? LoadTarget() : uiValue;
}

template <typename T>
T DispatchInfo<T>::GetWantedValue() const
{
    return inFlight.load(std::memory_order_acquire) != 0 ? uiValue : LoadTarget();
}

template <typename T>
bool DispatchInfo<T>::Poll()
{
    if (inFlight.load(std::memory_order_acquire) != 0) {
        return false;
    }
    const T processValue = LoadTarget();
    if (uiValue == processValue) {
        return false;
    }
    uiValue = processValue;
    changed = true;
    return true;
}

template <typename T>
void DispatchInfo<T>::Notify()
{
    if (!changed) {
        return;
    }
    changed = false;
    EmitChange(lastSource.load(std::memory_order_relaxed));
}

template <typename T>
void DispatchInfo<T>::EmitChange(int32_t sourceTag)
{
    if (signal) {
        (*signal)(uiValue);
    }
    if (config.onUIChange && sourceTag != SourceHost) {
        config.onUIChange(uiValue);
    }
}

template <typename T>
void DispatchInfo<T>::Apply()
{
    const T value = LoadTarget();
    if (config.onProcessChange) {
        config.onProcessChange(value);
    }
    for (const Observer& observer : observers) {
        observer(Context::Process, value, SourceController);
    }
}

template <typename T>
std::shared_ptr<void> DispatchInfo<T>::Connect(const Listener& listener)
{
    if (!signal) {
        signal = std::make_unique<ChangeSignal<T>>();
    }
    return std::make_shared<boost::signals2::scoped_connection>(signal->connect(listener));
}

template class DispatchInfo<float>;
template class DispatchInfo<uint32_t>;
template class DispatchInfo<bool>;

} // namespace DSP
