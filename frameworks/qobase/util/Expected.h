// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Error.h"

#include <cassert>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace Util {

/// What a call that can fail gives back: success with a `T`, or an error. Test it as a bool first;
/// then read the one that is there. Threads: as `T`.
template <typename T>
class [[nodiscard]] Expected {
public:
    static_assert(!std::is_base_of_v<Error, T>, "the result of a success is no error");

    Expected(T newValue) // NOLINT(google-explicit-constructor): `return value;`
        : content(std::in_place_index<0>, std::move(newValue))
    {
    }
    Expected(ErrorVariant newError) // NOLINT(google-explicit-constructor): `return error;`
        : content(std::in_place_index<1>, std::move(newError))
    {
    }
    template <typename Kind>
    requires std::is_base_of_v<Error, Kind>
    Expected(const Kind& newError) // NOLINT(google-explicit-constructor): `return Kind(...);`
        : content(std::in_place_index<1>, newError)
    {
    }

    explicit operator bool() const noexcept { return content.index() == 0; }

    /// The result; only after a success.
    [[nodiscard]] T& Value() & noexcept { return *CheckedValue(); }
    [[nodiscard]] const T& Value() const& noexcept
    {
        assert(*this);
        return *std::get_if<0>(&content);
    }
    [[nodiscard]] T&& Value() && noexcept { return std::move(*CheckedValue()); }
    T& operator*() & noexcept { return Value(); }
    const T& operator*() const& noexcept { return Value(); }
    T&& operator*() && noexcept { return std::move(*CheckedValue()); }
    T* operator->() noexcept { return &Value(); }
    const T* operator->() const noexcept { return &Value(); }

    /// The error; only after a failure.
    [[nodiscard]] const ErrorVariant& GetError() const noexcept
    {
        assert(!*this);
        return *std::get_if<1>(&content);
    }
    /// The error's text; only after a failure.
    [[nodiscard]] String GetDescription() const { return GetError().GetDescription(); }

private:
    T* CheckedValue() noexcept
    {
        assert(*this);
        return std::get_if<0>(&content);
    }

    std::variant<T, ErrorVariant> content;
};

/// Success, or an error.
template <>
class [[nodiscard]] Expected<void> {
public:
    /// Success.
    Expected() noexcept = default;
    Expected(ErrorVariant newError) // NOLINT(google-explicit-constructor): `return error;`
        : error(std::move(newError))
    {
    }
    template <typename Kind>
    requires std::is_base_of_v<Error, Kind>
    Expected(const Kind& newError) // NOLINT(google-explicit-constructor): `return Kind(...);`
        : error(std::in_place, newError)
    {
    }

    explicit operator bool() const noexcept { return !error.has_value(); }

    /// The error; only after a failure.
    [[nodiscard]] const ErrorVariant& GetError() const noexcept
    {
        assert(error);
        return *error;
    }
    /// The error's text; only after a failure.
    [[nodiscard]] String GetDescription() const { return GetError().GetDescription(); }

private:
    std::optional<ErrorVariant> error;
};

} // namespace Util
