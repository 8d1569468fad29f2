// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/MemoryParams.h"

namespace Controller {

/// What a control shows: the bound parameter, or, while nothing is bound, one of its own with the
/// range 0 to 1. For float, uint32_t and bool. [ui]
template <typename T>
class ParamView {
public:
    using Param = typename ParamOf<T>::Type;
    using Listener = std::function<void(const T& value)>;

    /// Hears each new value, and the present one after each new binding. May be empty.
    explicit ParamView(Listener newListener)
        : listener(std::move(newListener))
    {
    }

    /// Never null.
    const Param* GetController() const { return IsBound() ? bound : &unbound; }
    /// Null ends the binding. The parameter may go first; then nothing is bound.
    void SetController(Param* param)
    {
        bound = param;
        connection.reset();
        if (param != nullptr) {
            observer = DestructorObserver(*param);
            connection = param->ValueChanged().Connect([this](const T& value) { Tell(value); });
        }
        Tell(GetController()->GetValue());
    }
    bool IsBound() const { return bound != nullptr && !observer.IsDestroyed(); }

private:
    void Tell(const T& value) const
    {
        if (listener) {
            listener(value);
        }
    }

    const Listener listener;
    DefaultController<T> unbound{{T(0), T(1)}, T(0)};
    Param* bound = nullptr; // not owned
    DestructorObserver observer{unbound};
    Connection connection;
};

} // namespace Controller
