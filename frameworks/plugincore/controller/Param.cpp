// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/Param.h"

namespace Controller {
namespace {

// The standard one's text depends on the library.
class EmptyConstraint final : public std::bad_function_call {
public:
    const char* what() const noexcept override { return "bad function call"; }
};

} // namespace

/// Brackets the outermost change, also when a constraint or a listener throws.
template <typename T>
class Param<T>::ChangeScope {
public:
    explicit ChangeScope(Param& newParam)
        : param(newParam)
        , isOutermost(!param.changing)
    {
        if (isOutermost) {
            param.changing = true; // first: what begins a change may set the value, too
            BeginChange();
        }
    }
    ChangeScope(const ChangeScope&) = delete;
    ChangeScope& operator=(const ChangeScope&) = delete;
    ~ChangeScope()
    {
        if (isOutermost) {
            param.EndChange();
            param.changing = false;
        }
    }

private:
    // A change that can't begin is none: the next one begins anew.
    void BeginChange()
    {
        try {
            param.BeginChange();
        } catch (...) {
            param.changing = false;
            throw;
        }
    }

    Param& param;
    const bool isOutermost;
};

template <typename T>
void Param<T>::StoreValue(const T& value)
{
    if (storage) {
        storage->Store(value);
    }
}

template <typename T>
void Param<T>::SetValue(const T& value)
{
    const ChangeScope scope(*this);
    T accepted = value;
    for (const Constraint& constraint : constraints) {
        if (!constraint) {
            throw EmptyConstraint();
        }
        constraint(accepted);
    }
    StoreValue(accepted);
}

template <typename T, typename Base>
void RangeParam<T, Base>::SetRange(DSP::ValueRange<T> newRange)
{
    range = newRange;
    rangeChanged.Emit(newRange);
}

template <typename T, typename Base>
void DefaultParam<T, Base>::SetDefault(const T& newDefault)
{
    defaultValue = newDefault;
    hasDefault = true;
    defaultChanged.Emit(newDefault);
}

template class Param<float>;
template class Param<uint32_t>;
template class Param<bool>;
template class Param<String>;
template class RangeParam<float, Param<float>>;
template class RangeParam<uint32_t, Param<uint32_t>>;
template class RangeParam<bool, Param<bool>>;
template class DefaultParam<float, RangeParam<float, Param<float>>>;
template class DefaultParam<uint32_t, RangeParam<uint32_t, Param<uint32_t>>>;
template class DefaultParam<bool, RangeParam<bool, Param<bool>>>;
template class DefaultParam<String, Param<String>>;

} // namespace Controller
