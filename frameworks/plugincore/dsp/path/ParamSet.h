// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"

#include <optional>
#include <string_view>
#include <vector>

namespace DSP {

/// One parameter that the plug-in host may automate.
struct AutomatableParam {
    String displayName;
    String elementName; ///< as the set knows it
    String paramName;
    Element* element = nullptr; ///< owned by the set
    ParamObject param;
};

/// The automatable parameters; their place is the host's index.
class ParamSetBase {
public:
    virtual ~ParamSetBase() = default;
    virtual const std::vector<AutomatableParam>& GetParams() const = 0;
    /// Host index of a parameter; empty when it isn't automatable. Compares the element object,
    /// so that an element is found under each of its names.
    virtual std::optional<uint32_t> FindIndex(const Element& element,
                                              const String& paramName) const = 0;
};

/// Reads the list from text: rows of display name, element and parameter, separated by tabs and
/// ended by CR LF. A row that names what the set doesn't have goes to the debug trace and is left
/// out. [setup]
class ParamSetImpl final : public ParamSetBase {
public:
    ParamSetImpl(const DSPSetBase& set, std::string_view rows);

    const std::vector<AutomatableParam>& GetParams() const override { return params; }
    std::optional<uint32_t> FindIndex(const Element& element,
                                      const String& paramName) const override;

private:
    void AddRow(const DSPSetBase& set, const String& row);

    std::vector<AutomatableParam> params;
};

} // namespace DSP
