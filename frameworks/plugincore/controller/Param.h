// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Object.h"
#include "frameworks/plugincore/controller/ParamStorage.h"
#include "frameworks/plugincore/controller/Trackable.h"
#include "frameworks/plugincore/dsp/elements/ElementParam.h"

#include <any>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Controller {

/// Model of one value that the user interface binds to, for float, uint32_t, bool and String. Where
/// the value lives is the storage's business; neither range nor default limits it. [ui]
template <typename T>
class Param : public Object, public virtual Trackable {
public:
    using Value = T;
    /// Changes a new value to what is acceptable.
    using Constraint = std::function<void(T& value)>;

    /// Without a storage, values that are set go nowhere, and none may be asked for.
    explicit Param(std::unique_ptr<ParamStorage<T>> newStorage)
        : storage(std::move(newStorage))
    {
    }

    /// What the parameter stands for, as only its kind knows it; empty for a plain one.
    virtual std::any GetContext() const { return {}; }
    /// Stores as it is, past constraints and gesture.
    virtual void StoreValue(const T& value);
    virtual T GetValue() const { return storage->Load(); }
    /// Around each outermost SetValue() and around a gesture of the user.
    virtual void BeginChange() {}
    virtual void EndChange() {}

    /// Runs the value through the constraints and stores it. From within a listener of this very
    /// change no second change begins. Throws std::bad_function_call for an empty constraint.
    void SetValue(const T& value);
    /// Runs on every new value, after those that were added before.
    void AddConstraint(Constraint constraint) { constraints.push_back(std::move(constraint)); }
    Signal<T>& ValueChanged() { return storage->ValueChanged(); }

private:
    class ChangeScope;

    bool changing = false; // inside SetValue()
    const std::unique_ptr<ParamStorage<T>> storage;
    std::vector<Constraint> constraints;
};

/// Adds the range.
template <typename T, typename Base>
class RangeParam : public Base {
public:
    using Base::Base;

    /// The present value stays, also outside the new range.
    virtual void SetRange(DSP::ValueRange<T> newRange);
    virtual DSP::ValueRange<T> GetRange() const { return range; }
    Signal<DSP::ValueRange<T>>& RangeChanged() { return rangeChanged; }

private:
    DSP::ValueRange<T> range{};
    Signal<DSP::ValueRange<T>> rangeChanged;
};

/// Adds the default.
template <typename T, typename Base>
class DefaultParam : public Base {
public:
    using Base::Base;

    virtual void SetDefault(const T& newDefault);
    virtual T GetDefault() const { return defaultValue; }
    /// Sets the default, constraints and all.
    virtual void ResetToDefault() { this->SetValue(GetDefault()); }
    /// Whether a default has ever been set.
    bool HasDefault() const { return hasDefault; }
    Signal<T>& DefaultChanged() { return defaultChanged; }

private:
    T defaultValue{};
    bool hasDefault = false;
    Signal<T> defaultChanged;
};

/// The base of the three types that elements have.
template <typename T>
using ValueParam = DefaultParam<T, RangeParam<T, Param<T>>>;

class FloatParam : public ValueParam<float> {
public:
    using DefaultParam::DefaultParam;
    /// Text behind the number, such as "Hz".
    virtual String GetUnits() const { return ""; }
    /// Whether equal steps of a control are equal factors of the value.
    virtual bool IsLogarithmic() const { return false; }
};

class EnumParam : public ValueParam<uint32_t> {
public:
    using DefaultParam::DefaultParam;
    /// What the user reads for a value: here its number.
    virtual String GetValueLabel(uint32_t value) const { return String("%1").arg(value); }
};

class BoolParam : public ValueParam<bool> {
public:
    using DefaultParam::DefaultParam;
};

/// Something that changes, for those to whom the value's type doesn't matter. [ui]
class ChangeNotifier {
public:
    virtual ~ChangeNotifier() = default;
    /// Calls `listener` after each change, until the connection ends.
    [[nodiscard]] virtual Connection ConnectChange(std::function<void()> listener) = 0;
};

/// A text; it has no range.
class StringParam : public DefaultParam<String, Param<String>>, public ChangeNotifier {
public:
    using DefaultParam::DefaultParam;
    [[nodiscard]] Connection ConnectChange(std::function<void()> listener) override
    {
        return ValueChanged().Connect(
            [notify = std::move(listener)](const String& /*text*/) { notify(); });
    }
};

extern template class Param<float>;
extern template class Param<uint32_t>;
extern template class Param<bool>;
extern template class Param<String>;
extern template class RangeParam<float, Param<float>>;
extern template class RangeParam<uint32_t, Param<uint32_t>>;
extern template class RangeParam<bool, Param<bool>>;
extern template class DefaultParam<float, RangeParam<float, Param<float>>>;
extern template class DefaultParam<uint32_t, RangeParam<uint32_t, Param<uint32_t>>>;
extern template class DefaultParam<bool, RangeParam<bool, Param<bool>>>;
extern template class DefaultParam<String, Param<String>>;

} // namespace Controller
