// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementParam.h"
#include "frameworks/qobase/util/Bytes.h"

#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace Preset {

/// How a macro slider's way is spread over a parameter's range; files hold the number, 0 to 3.
inline constexpr int32_t HighestScale = 3;

/// Plain values, copied between the elements and files; see PresetDSPInterfaceBase. Threads: as any
/// value.
struct FloatRecord {
    float value = 0.0F;
    std::optional<float> start{}; ///< value at the slider's lower end, when bound to one
    std::optional<float> end{};   ///< value at its upper end
    String units{};
    std::optional<int32_t> sliderId{}; ///< empty: bound to no macro slider
    std::optional<int32_t> scale{};    ///< 0 to HighestScale
    DSP::ValueRange<float> range{};
};

struct EnumRecord {
    std::optional<uint32_t> value{};
    DSP::ValueRange<uint32_t> range{};
};

struct BoolRecord {
    bool value = false;
    std::optional<bool> invert{};        ///< the check box shows the opposite
    std::optional<int32_t> checkboxId{}; ///< empty: bound to no macro check box
};

using ParamRecord = std::variant<FloatRecord, EnumRecord, BoolRecord>;
/// Names of element and parameter.
using ParamKey = std::pair<String, String>;

struct ElementSnapshot {
    bool enabled = true; ///< before a file is read: whether its category is looked at
    std::map<ParamKey, ParamRecord> params{};
    Util::Bytes extraBytes{};
};

/// A control that drives several float parameters.
struct SliderRecord {
    String name{};
    int32_t sliderId = 0; ///< from 0
    int32_t scale = 0;    ///< 0 to HighestScale
    float min = 0.0F;
    float max = 0.0F;
    float defaultValue = 0.0F;
    float value = 0.0F;
    bool biDirectional = false;
    std::vector<ParamKey> params{}; ///< bound to it
};

/// The same for switches.
struct CheckBoxRecord {
    String name{};
    int32_t checkboxId = 0; ///< from 0
    bool value = false;
    std::vector<ParamKey> params{};
};

/// All values of a set of elements at one moment.
struct Snapshot {
    std::map<String, ElementSnapshot> elements{}; ///< by the element's own name
    std::vector<SliderRecord> sliders{};
    std::vector<CheckBoxRecord> checkBoxes{};

    /// Null for an element that isn't there. Names that differ in case only find each other, since
    /// one element of a product goes by two spellings.
    ElementSnapshot* FindElement(const String& name);
    /// Null for a pair that isn't there.
    ParamRecord* FindParam(const String& element, const String& param);
};

} // namespace Preset
