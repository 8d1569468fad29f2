// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/Signal.h"

#include "frameworks/plugincore/dsp/elements/ElementParam.h"

#include <boost/signals2/signal.hpp>

namespace Controller {

template <typename T>
struct Signal<T>::Slots {
    boost::signals2::signal<void(const T&)> signal;
};

template <typename T>
Signal<T>::Signal() = default;

template <typename T>
Signal<T>::~Signal() = default;

template <typename T>
typename Signal<T>::Slots& Signal<T>::GetSlots()
{
    if (!slots) {
        slots = std::make_shared<Slots>();
    }
    return *slots;
}

template <typename T>
Connection Signal<T>::Connect(const Slot& slot)
{
    return std::make_shared<boost::signals2::scoped_connection>(GetSlots().signal.connect(slot));
}

template <typename T>
void Signal<T>::Connect(const Trackable& owner, const Slot& slot)
{
    using Tracked = typename boost::signals2::signal<void(const T&)>::slot_type;
    GetSlots().signal.connect(Tracked(slot).track_foreign(DestructorObserver(owner).GetLife()));
}

template <typename T>
void Signal<T>::Emit(const T& value) const
{
    if (const auto kept = slots) {
        kept->signal(value);
    }
}

template class Signal<float>;
template class Signal<uint32_t>;
template class Signal<bool>;
template class Signal<String>;
template class Signal<DSP::ValueRange<float>>;
template class Signal<DSP::ValueRange<uint32_t>>;
template class Signal<DSP::ValueRange<bool>>;

} // namespace Controller
