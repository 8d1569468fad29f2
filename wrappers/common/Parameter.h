// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ParamInfoRecord;

namespace Wrapper {

/// Which parameter takes the repair out of the signal.
inline constexpr const char* BypassIdentifier = "Global.Global Bypass";

/// One automatable parameter: what it is, and its values as numbers of its own unit, normalised (0
/// to 1, linear over the range) and as text.
struct Parameter {
    enum class Kind { Number, Switch, Choice };

    std::string identifier; ///< "element.parameter"; stays the same from version to version
    std::string name;       ///< for people, without the unit
    std::string unit;       ///< may be empty
    std::vector<std::string> labels; ///< of a choice, one a value
    Kind kind = Kind::Number;
    bool isLogarithmic = false; ///< a control for it moves by ratios
    double minimum = 0;         ///< in its own unit, as are the next two
    double maximum = 0;
    double defaultValue = 0;

    /// A value outside the range counts as the nearest inside it; NaN stays NaN.
    float ToNormalised(double value) const noexcept;
    /// Whole for a switch or a choice.
    double FromNormalised(float normalised) const noexcept;

    /// "150.0 Hz", "on", or the label; the same in every locale.
    std::string Format(float normalised) const;
    /// What Format() writes, and what people type: the unit may be left out, case doesn't matter,
    /// numbers outside the range are brought into it. None when the text is no value.
    std::optional<float> Parse(std::string_view text) const;
};

/// The module's description of a parameter.
Parameter MakeParameter(const ParamInfoRecord& record);

} // namespace Wrapper
