// SPDX-License-Identifier: ISC
// Presets of older forms, by a handler made up for the purpose.
#include "frameworks/plugincore/preset/file/LegacyPresetFileHandler.h"
#include "tests/frameworks/plugincore/preset/file/PresetFixture.h"

#include <gtest/gtest.h>

using namespace Preset;
using namespace PresetTests;

namespace {

// Knows parameters of version 40, under older names and scales.
class OldHandler final : public LegacyPresetFileHandlerBase {
public:
    explicit OldHandler(PresetFileBase& owner)
        : LegacyPresetFileHandlerBase(owner, {{"Pop", "Puffguard"}})
    {
    }

    bool IsLegacyParamsVersion(uint32_t version) const override { return version == 40; }
    bool AcceptsType(const String& type) const override { return type == "OldPop"; }
    bool MapBoolParam(const String& element, const String& param, bool value) override
    {
        if (param == "Switch") {
            GetFile().SetBoolValue(element, "On", value);
        }
        return param == "Switch";
    }
    bool MapEnumParam(const String& element, const String& param, uint32_t value) override
    {
        if (param == "Kind") {
            GetFile().SetEnumValue(element, "Mode", value + 1);
        }
        return param == "Kind";
    }
    bool MapFloatParam(const String& element, const String& param, float value) override
    {
        if (param == "Percent") {
            GetFile().SetFloatValue(element, "Amount", value / 10.0F);
        }
        return param == "Percent";
    }
    // Macro slider 3 of the older form counts in tenths.
    bool MapSliderParam(const String& element,
                        const String& param,
                        uint32_t sliderId,
                        float value) override
    {
        return sliderId == 3 && MapFloatParam(element, param, value * 100.0F);
    }
    std::optional<float> GetDefaultValue(const String& /*element*/,
                                         const String& param) const override
    {
        return param == "Percent" ? std::optional<float>(70.0F) : std::nullopt;
    }
    bool IsCheckboxBound(const String& /*element*/, const String& param) const override
    {
        return param == "Switch" && isSwitchBound;
    }
    void beforeBody(const Util::XmlNode& root) override
    {
        isSwitchBound = root.GetAttribute("Comments") == "bound";
    }
    void afterBody(const Util::XmlNode& /*root*/) override
    {
        GetFile().SetEnumValue("Puffguard", "Mode", isSwitchBound ? 2 : 3);
    }

private:
    bool isSwitchBound = false;
};

class OldFile final : public LmPresetFile {
public:
    using LmPresetFile::LmPresetFile;

protected:
    std::unique_ptr<LegacyPresetFileHandlerBase> MakeLegacyHandler(const String& /*type*/) override
    {
        return std::make_unique<OldHandler>(*this);
    }
};

const std::string OldText = R"(<?xml version="1.0"?>
<OldPop PresetVer="40" PluginVer="6000" Comments="from then">
    <Anything>
        <Param ElementID="Pop" ParamID="Switch" Value="1"/>
        <Param ElementID="Pop" ParamID="Kind" Value="2"/>
        <Param ElementID="Pop" ParamID="Percent" Value="25"/>
        <Param ElementID="Pop" ParamID="Amount" Value="9"/>
        <ExtraBytes ElementID="Pop" Data="AQ=="/>
    </Anything>
    <CheckBoxes><CheckBox Name="Tick" CheckboxID="2" Value="1"/></CheckBoxes>
</OldPop>)";

} // namespace

TEST(LegacyPreset, IsMappedAndNeverWrittenOver)
{
    Fixture fixture;
    OldFile file(fixture.identity, fixture.dsp, nullptr);
    file.TakeSnapshotFromDSP();
    const std::string path = fixture.Write("old.xml", OldText);
    const auto loaded = file.Load(path);
    ASSERT_TRUE(loaded) << loaded.GetDescription().c_str();
    ASSERT_TRUE(fixture.dsp.Apply(file.GetSnapshot()));
    EXPECT_EQ(fixture.Amount(), 2.5F); // not 9: that name means something else today
    EXPECT_EQ(fixture.Element().GetEnumValue(1, DSP::Context::UI), 3U);
    EXPECT_TRUE(fixture.Element().GetBoolValue(2, DSP::Context::UI));
    EXPECT_EQ(fixture.Element().extraBytes, Util::Bytes{1});
    EXPECT_EQ(file.GetMetadata().at("Comments"), "from then");
    ASSERT_EQ(file.GetSnapshot().checkBoxes.size(), 1U);
    EXPECT_TRUE(file.GetSnapshot().checkBoxes[0].value);

    ASSERT_TRUE(file.SaveAgain());
    EXPECT_EQ(Fixture::Read(path), OldText);
    // Under a new name it is a present one, and is written again from then on.
    const std::string newPath = fixture.folder / "new.xml";
    ASSERT_TRUE(file.Save(newPath, file.GetSnapshot(), TouchModified::No));
    std::filesystem::remove(newPath);
    ASSERT_TRUE(file.SaveAgain());
    EXPECT_NE(Fixture::Read(newPath).find("<LM6Pfgd PresetVer=\"1\""), std::string::npos);
}

TEST(LegacyPreset, AsksItsHandlerForSlidersDefaultsAndCheckBoxes)
{
    const std::tuple<const char*, const char*, float, bool> cases[] = {
        {"Value=\"25\"", "Value=\"0.25\" SliderID=\"3\"", 2.5F, true},
        {"Value=\"25\"", "Value=\"25\" SliderID=\"4\"", 2.5F, true},
        {"Value=\"25\"", "", 7.0F, true},
        {"from then", "bound", 2.5F, false}};
    for (const auto& [from, to, amount, isOn] : cases) {
        Fixture fixture;
        OldFile file(fixture.identity, fixture.dsp, nullptr);
        file.TakeSnapshotFromDSP();
        ASSERT_TRUE(file.Load(fixture.Write("old.xml", Replaced(OldText, from, to)))) << to;
        ASSERT_TRUE(fixture.dsp.Apply(file.GetSnapshot()));
        EXPECT_EQ(fixture.Amount(), amount) << to;
        EXPECT_EQ(fixture.Element().GetBoolValue(2, DSP::Context::UI), isOn) << to;
        EXPECT_EQ(fixture.Element().GetEnumValue(1, DSP::Context::UI), isOn ? 3U : 2U) << to;
    }
}

TEST(LegacyPreset, IsRefusedByWhatItsHandlerKnows)
{
    Fixture fixture;
    OldFile file(fixture.identity, fixture.dsp, nullptr);
    file.TakeSnapshotFromDSP();
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"PresetVer=\"40\"", "PresetVer=\"41\"", "Invalid params version, 41"},
        {"PluginVer=\"6000\"", "PluginVer=\"5000\"", "Invalid plugin version, 5000"},
        {"PluginVer=\"6000\"", "", "Invalid plugin version, "},
        {"<Param", "<!--Param--><Param", "Parameter was not a valid XML element."},
        {"<CheckBoxes>",
         "<!--CheckBoxes--><CheckBoxes>",
         "CheckBoxes was not a valid XML element."},
        {"<Param", "<!--ExtraBytes--><Param", "Extra bytes was not a valid XML element."},
    };
    for (const auto& [from, to, message] : cases) {
        const auto loaded = file.Load(fixture.Write("old.xml", Replaced(OldText, from, to)));
        ASSERT_FALSE(loaded) << message;
        EXPECT_EQ(loaded.GetDescription().ToStdString(), message);
    }
    ASSERT_TRUE(fixture.dsp.Apply(file.GetSnapshot()));
    EXPECT_EQ(fixture.Amount(), 5.0F);
}

TEST(LegacyPreset, BelongsToAFamilyByTheFirstWordThatItHolds)
{
    const std::pair<const char*, LegacyFamily> cases[] = {
        {"LMDeclicker", LegacyFamily::Declicker},
        {"xLMDecrackle2", LegacyFamily::Declicker},
        {"LMInterpolate", LegacyFamily::Declicker},
        {"LMDenoiser", LegacyFamily::Denoiser},
        {"FadeGain", LegacyFamily::Gain},
        {"Normalize", LegacyFamily::Gain},
        {"GainDeconstruct", LegacyFamily::Gain},
        {"AdditiveDecomposition", LegacyFamily::Deconstruct},
        {"ChannelOpsGain", LegacyFamily::ChannelOps},
        {"lmdeclick", LegacyFamily::Other},
        {"LM6Pfgd", LegacyFamily::Other},
        {"", LegacyFamily::Other}};
    for (const auto& [type, family] : cases) {
        EXPECT_EQ(FindLegacyFamily(type), family) << type;
    }
}
