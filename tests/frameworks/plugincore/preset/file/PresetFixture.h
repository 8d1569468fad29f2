// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "frameworks/plugincore/preset/file/LmPresetFile.h"
#include "frameworks/plugincore/preset/file/PresetDSPSetInterface.h"
#include "tests/support/SavedElement.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestElementHost.h"

#include <string>

namespace PresetTests {

using TestElement = Support::SavedElement;

/// Under another spelling than the element's own, and beside one that has nothing for presets.
class TestSet final : public DSP::DSPSetImpl {
public:
    explicit TestSet(DSP::ElementHost& owner)
        : DSPSetImpl(owner)
    {
        BuildElements(48000.0F, 1);
    }

    void BuildElements(float rateHz, uint32_t layout) override
    {
        AddElement("Global", rateHz, layout, [&] {
            return std::make_shared<DSP::ElementDispatcher>(
                DSP::ElementImpl::Setup{GetHost(), "Global", rateHz, layout});
        });
        AddElement("PuffGuard", rateHz, layout, [&] {
            auto element = std::make_shared<TestElement>(GetHost());
            main = element.get();
            return element;
        });
    }

    TestElement* main = nullptr;
};

/// A set, its interface and a folder; floats by name on the UI side.
struct Fixture {
    Support::TemporaryFolder folder;
    Support::TestElementHost host;
    TestSet set{host};
    Preset::PresetDSPSetInterface dsp{set};
    Preset::ProgramIdentity identity{"LM6Pfgd", 1, 6000, 1210};

    TestElement& Element() { return *set.main; }
    float Amount() { return Element().GetFloatValue(0, DSP::Context::UI); }
    void SetAmount(float value)
    {
        Element().SetFloatValue(0, value, DSP::Context::UI, DSP::SourceHost);
    }
    std::string Write(const std::string& name, const std::string& text) const
    {
        const std::string path = folder / name;
        Support::WriteText(path, text);
        return path;
    }
    static std::string Read(const std::string& path) { return Support::ReadText(path); }
};

/// `text` with the first `from` replaced.
inline std::string Replaced(std::string text, const std::string& from, const std::string& to)
{
    return text.replace(text.find(from), from.size(), to);
}

/// As the writer makes it of a set at its defaults.
inline const std::string DefaultFile =
    R"(<?xml version="1.0" standalone="yes"?>
<LM6Pfgd PresetVer="1" PluginVer="6000" PluginBuild="1210">
    <Global Enabled="1" />
    <Puffguard Enabled="1">
        <Param ElementID="Puffguard" ParamID="Amount" Value="5" />
        <Param ElementID="Puffguard" ParamID="Mode" Value="2" />
        <Param ElementID="Puffguard" ParamID="On" Value="0" />
    </Puffguard>
</LM6Pfgd>
)";

} // namespace PresetTests
