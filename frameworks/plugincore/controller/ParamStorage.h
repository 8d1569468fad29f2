// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Signal.h"

#include <utility>

namespace Controller {

/// Where the value of a parameter lives. [ui]
template <typename T>
class ParamStorage {
public:
    ParamStorage() = default;
    ParamStorage(const ParamStorage&) = delete;
    ParamStorage& operator=(const ParamStorage&) = delete;
    virtual ~ParamStorage() = default;

    virtual void Store(const T& value) = 0;
    virtual T Load() const = 0;

    /// Heard after a change of the value, whoever made it.
    Signal<T>& ValueChanged() { return valueChanged; }

private:
    Signal<T> valueChanged;
};

/// The value is a member. It is taken as it is given.
template <typename T>
class ParamMemoryStorage : public ParamStorage<T> {
public:
    explicit ParamMemoryStorage(T initialValue)
        : value(std::move(initialValue))
    {
    }

    void Store(const T& newValue) override
    {
        if (value != newValue) {
            value = newValue;
            // A copy: a listener may store again.
            const T told = value;
            this->ValueChanged().Emit(told);
        }
    }
    T Load() const override { return value; }

private:
    T value;
};

} // namespace Controller
