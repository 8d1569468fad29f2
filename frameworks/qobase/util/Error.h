// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

namespace Util {

/// A fault as a value. Threads: [any] for reading.
class Error {
public:
    Error() = default;
    virtual ~Error() = default;

    /// What failed and why, for a person.
    [[nodiscard]] virtual String GetDescription() const = 0;
    [[nodiscard]] virtual uint32_t GetCategoryFlag() const = 0;
    /// More than the description holds; may be null.
    [[nodiscard]] virtual String GetDetail() const = 0;
    /// The values that the description was built from; they live as long as the error.
    [[nodiscard]] virtual std::span<const String> GetArguments() const = 0;
    /// A copy of the same type.
    [[nodiscard]] virtual std::unique_ptr<Error> Clone() const = 0;

protected:
    Error(const Error&) = default;
    Error(Error&&) = default;
    Error& operator=(const Error&) = default;
    Error& operator=(Error&&) = default;
};

/// An error that carries its texts.
class BasicErrorBase : public Error {
public:
    explicit BasicErrorBase(String newDescription,
                            String newDetail = {},
                            std::vector<String> newArguments = {});

    [[nodiscard]] String GetDescription() const override { return description; }
    /// Always 0.
    [[nodiscard]] uint32_t GetCategoryFlag() const override { return 0; }
    [[nodiscard]] String GetDetail() const override { return detail; }
    /// A span without memory when there are none.
    [[nodiscard]] std::span<const String> GetArguments() const override;
    [[nodiscard]] std::unique_ptr<Error> Clone() const override;

private:
    String description;
    String detail;
    std::vector<String> arguments;
};

/// Errors of one kind: `Kind` is any type and serves to distinguish them.
template <typename Kind>
class BasicError final : public BasicErrorBase {
public:
    using BasicErrorBase::BasicErrorBase;

    [[nodiscard]] std::unique_ptr<Error> Clone() const override
    {
        return std::make_unique<BasicError>(*this);
    }
};

/// Holds one error of any type by value: a copy clones it. Never empty, except after a move.
class ErrorVariant {
public:
    /// Takes a copy of `error`.
    template <typename Kind>
    requires std::is_base_of_v<Error, Kind>
    ErrorVariant(const Kind& error) // NOLINT(google-explicit-constructor): errors are results
        : held(error.Clone())
    {
    }
    ErrorVariant(const ErrorVariant& other)
        : held(other.held->Clone())
    {
    }
    ErrorVariant(ErrorVariant&&) noexcept = default;
    ErrorVariant& operator=(const ErrorVariant& other);
    ErrorVariant& operator=(ErrorVariant&&) noexcept = default;
    ~ErrorVariant() = default;

    [[nodiscard]] const Error& Get() const noexcept { return *held; }
    [[nodiscard]] String GetDescription() const { return held->GetDescription(); }
    [[nodiscard]] String GetDetail() const { return held->GetDetail(); }
    /// The error when it is of this type (or derived), else null. Lives as long as the holder.
    template <typename Kind>
    [[nodiscard]] const Kind* As() const noexcept
    {
        return dynamic_cast<const Kind*>(held.get());
    }

private:
    std::unique_ptr<const Error> held;
};

} // namespace Util
