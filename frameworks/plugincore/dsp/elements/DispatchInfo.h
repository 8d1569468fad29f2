// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/DSPCommand.h"
#include "frameworks/plugincore/dsp/elements/ElementParam.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace DSP {

template <typename T>
class ChangeSignal;

/// What the element does with all its parameters at once, whatever their type.
class DispatchInfoBase {
public:
    virtual ~DispatchInfoBase() = default;
    /// Takes the process side's value over unless one is on its way there; true when it differed.
    /// [ui]
    virtual bool Poll() = 0;
    /// Tells the listeners what Poll() found. [ui]
    virtual void Notify() = 0;
    /// Shows the process side's value to the element and the observers. [setup]
    virtual void Apply() = 0;
};

/// Transport of one parameter between the two sides, for float, uint32_t and bool.
///
/// The process side's value is the member of the element that the audio code reads, `*target`;
/// only the process side writes it. `uiValue` belongs to the UI side. `inFlight` counts the
/// commands that are on their way: while it isn't 0, the UI value is the newer one.
template <typename T>
class DispatchInfo final : public DispatchInfoBase {
public:
    using ProcessCallback = std::function<void(T value)>;
    using UICallback = std::function<void(T value)>;
    using Observer = std::function<void(Context thread, T value, ValueSource source)>;
    using UIDispatch = std::function<void(T value, ValueSource source)>;
    using Listener = std::function<void(T value)>;

    struct Config {
        ValueRange<T> range;
        T* target = nullptr;             ///< owned by the element
        ProcessCallback onProcessChange; ///< after the value changed there; may be empty
        UICallback onUIChange;           ///< after the value changed here; may be empty
        DSPCommandMailbox* mailbox = nullptr;
    };

    /// The UI side starts with the value that `*target` holds. [setup]
    explicit DispatchInfo(Config newConfig);
    ~DispatchInfo() override;

    /// Clamps, notifies the observers, then sets the value of that side if it differs. Comparison
    /// is exact. A NaN changes nothing. True when the value changed.
    bool SetValue(T value, Context thread, ValueSource source);
    T GetValue(Context thread) const;

    /// The value that the user or host asked for last, also while it is on its way. [ui]
    T GetWantedValue() const;

    bool Poll() override;
    void Notify() override;
    void Apply() override;

    /// Heard before any other effect, on both sides, also without a change. [setup]
    void AddObserver(Observer observer) { observers.push_back(std::move(observer)); }
    /// Replaces the sending of UI values; an empty function brings it back. [setup]
    void SetUIDispatch(UIDispatch dispatch) { uiDispatch = std::move(dispatch); }
    /// Heard after a change of the UI value, until the returned handle is destroyed. [ui]
    std::shared_ptr<void> Connect(const Listener& listener);

    /// The process side's end of a command; see Send(). [process]
    void Arrive(T value, ValueSource source);

private:
    bool SetOnProcessSide(T value, ValueSource source);
    bool SetOnUISide(T value, ValueSource source);
    void Send(T value, ValueSource source);
    void EmitChange(int32_t sourceTag);
    T LoadTarget() const;

    Config config;
    std::atomic<int> inFlight{0};
    std::atomic<int32_t> lastSource; // of the last write on the process side
    T uiValue;
    UIDispatch uiDispatch;
    std::vector<Observer> observers;
    std::unique_ptr<ChangeSignal<T>> signal; // made with the first listener
    bool changed = false;                    // set by Poll(), cleared by Notify()
};

extern template class DispatchInfo<float>;
extern template class DispatchInfo<uint32_t>;
extern template class DispatchInfo<bool>;

} // namespace DSP
