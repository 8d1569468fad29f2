// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Instance.h"
#include "wrappers/common/Parameter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Wrapper {

/// All parameters of an instance, those included that no host automates. Their indices are not
/// those of the automatable ones. All calls are [ui].
class ElementParameters {
public:
    /// None, after a line in the log, when the module doesn't list them. `instance` lives longer.
    static std::optional<ElementParameters> Read(Instance& instance);

    const std::vector<Parameter>& GetList() const { return list; }

    /// Which one is "element.parameter", in whatever case: an element's name has been spelt in two
    /// ways.
    std::optional<uint32_t> Find(std::string_view identifier) const;

    /// One of those that a session keeps and whose value isn't the default.
    struct Changed {
        std::string identifier; ///< "element.parameter"
        std::string value;      ///< as text for people, without the unit
    };
    /// None, after a line in the log, when the module refuses.
    std::optional<std::vector<Changed>> ReadChanged() const;

    /// Normalised. False or none, after a line in the log, when the module refuses.
    bool Set(uint32_t index, float normalised);
    std::optional<float> Get(uint32_t index) const;

private:
    explicit ElementParameters(Instance& newInstance)
        : instance(&newInstance)
    {
    }

    Instance* instance;
    std::vector<Parameter> list;
};

} // namespace Wrapper
