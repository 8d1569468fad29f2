// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Trackable.h"

#include <functional>
#include <memory>

namespace Controller {

/// Keeps a slot connected: the connection ends with the last copy. An empty one is no connection.
using Connection = std::shared_ptr<void>;

/// Calls the connected slots one after another, in the order of connecting. Takes next to no room
/// while nothing is connected. Slots may connect and end connections, and destroy the signal. [ui]
///
/// There is one for each type of value, for each type's range, and for texts.
template <typename T>
class Signal {
public:
    using Slot = std::function<void(const T& value)>;

    Signal();
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal();

    [[nodiscard]] Connection Connect(const Slot& slot);
    /// The connection ends with its owner.
    void Connect(const Trackable& owner, const Slot& slot);
    void Emit(const T& value) const;

private:
    struct Slots;
    Slots& GetSlots();

    std::shared_ptr<Slots> slots; // made by the first connection; shared with a running Emit()
};

} // namespace Controller
