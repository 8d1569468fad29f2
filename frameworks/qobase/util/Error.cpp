// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Error.h"

#include <utility>

namespace Util {

BasicErrorBase::BasicErrorBase(String newDescription,
                               String newDetail,
                               std::vector<String> newArguments)
    : description(std::move(newDescription))
    , detail(std::move(newDetail))
    , arguments(std::move(newArguments))
{
}

std::span<const String> BasicErrorBase::GetArguments() const
{
    if (arguments.empty()) {
        return {};
    }
    return arguments;
}

std::unique_ptr<Error> BasicErrorBase::Clone() const
{
    return std::make_unique<BasicErrorBase>(*this);
}

ErrorVariant& ErrorVariant::operator=(const ErrorVariant& other)
{
    return *this = ErrorVariant(other);
}

} // namespace Util
