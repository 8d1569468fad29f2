// SPDX-License-Identifier: ISC
// The bundle's documents say of ports and presets what the module says of its parameters and
// presets. Hosts believe them without asking the plug-in.
#include "frameworks/qobase/util/Base64.h"
#include "tests/contract/support/Takes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using TestHost::Call;
using TestHost::UI;
using Texts = std::vector<std::string>;

const std::string Address = "https://puffguard.example/lv2/";

// Designations are those of the port groups' own vocabulary, in the order of wave files.
const std::tuple<std::string, std::string, std::vector<String>> Variants[] = {
    {"mono", "MonoGroup", {"center"}},
    {"stereo", "StereoGroup", {"left", "right"}},
    {"surround51",
     "FivePointOneGroup",
     String("left|right|center|lowFrequencyEffects|rearLeft|rearRight").Split('|')},
    {"surround71",
     "SevenPointOneGroup",
     String("left|right|center|lowFrequencyEffects|rearLeft|rearRight|sideLeft|sideRight")
         .Split('|')},
};

// For good: sessions hold them.
const std::array<std::string, 4> Symbols = {
    "sensitivity", "strength", "upper_repair_frequency", "enabled"};

std::string ReadDocument(const std::string& name)
{
    return Support::ReadText(PUFFGUARD_BUNDLE "/" + name + ".ttl");
}

/// The text between the two, from behind `begin` on; empty when there is none.
std::string Between(const std::string& text, const std::string& begin, const std::string& end)
{
    const size_t from = text.find(begin);
    if (from == std::string::npos) {
        return {};
    }
    const size_t start = from + begin.size();
    return text.substr(start, text.find(end, start) - start);
}

/// What stands between separators, without what stands before the first.
Texts Split(const std::string& text, const std::string& separator)
{
    Texts parts;
    size_t begin = text.find(separator);
    while (begin != std::string::npos) {
        const size_t next = text.find(separator, begin + separator.size());
        parts.push_back(text.substr(begin, next - begin));
        begin = next;
    }
    return parts;
}

/// Of a property in a piece of a document, as it stands there.
std::string ValueOf(const std::string& piece, const std::string& property)
{
    std::string value = Between(piece, property + ' ', "\n");
    if (value.ends_with(" ;")) {
        value.resize(value.size() - 2);
    }
    return value;
}

float NumberOf(const std::string& piece, const std::string& property)
{
    const std::string value = ValueOf(piece, property);
    EXPECT_NE(value, "") << property << " in" << piece;
    return value.empty() ? -1.0F : std::stof(value);
}

std::string Quoted(const std::string& text)
{
    return '"' + text + '"';
}

class Lv2DocumentsTest : public testing::Test {
protected:
    void SetUp() override
    {
        ParamListRecord list{static_cast<uint32_t>(rows.size()), 0, rows.data()};
        ASSERT_EQ(Call(SelectorGetAutomatableParamList, UI, module.Get(), &list),
                  PluginCoreSuccess);
    }

    std::set<std::string> ListProductPresets()
    {
        std::set<std::string> names;
        const uint32_t count = module.RunPreset(PresetOpList).count;
        for (uint32_t index = 0; index < count; ++index) {
            const PresetRecord preset = module.RunPreset(PresetOpDescribe, "", index);
            if (preset.group == PresetGroupFactory) {
                names.insert(&preset.presetName[0]);
            }
        }
        return names;
    }

    float Denormalise(uint32_t index, float normalised) const
    {
        return rows[index].minimum + normalised * (rows[index].maximum - rows[index].minimum);
    }

    const Support::UserFolders folders; // the user has no presets
    TestHost::Instance module{48000.0F, 2};
    std::array<ParamInfoRecord, 4> rows{};
};

} // namespace

TEST_F(Lv2DocumentsTest, ControlsAreTheModulesParameters)
{
    for (const auto& [variant, group, designations] : Variants) {
        const Texts ports = Split(ReadDocument(variant), "lv2:index ");
        ASSERT_EQ(ports.size(), Lv2Host::FirstAudio + 2 * designations.size()) << variant;
        for (uint32_t index = 0; index < rows.size(); ++index) {
            const std::string& port = ports[index];
            SCOPED_TRACE(variant + port);
            EXPECT_EQ(ValueOf(port, "lv2:index"), std::to_string(index));
            EXPECT_EQ(ValueOf(port, "lv2:symbol"), Quoted(Symbols[index]));
            const ParamInfoRecord& row = rows[index];
            if (index == TestHost::GlobalBypass) { // the opposite
                EXPECT_EQ(NumberOf(port, "lv2:minimum"), 1 - row.maximum);
                EXPECT_EQ(NumberOf(port, "lv2:maximum"), 1 - row.minimum);
                EXPECT_EQ(NumberOf(port, "lv2:default"), 1 - row.defaultValue);
                EXPECT_EQ(ValueOf(port, "lv2:designation"), "lv2:enabled");
                continue;
            }
            EXPECT_EQ(NumberOf(port, "lv2:minimum"), row.minimum);
            EXPECT_EQ(NumberOf(port, "lv2:maximum"), row.maximum);
            EXPECT_EQ(NumberOf(port, "lv2:default"), row.defaultValue);
            const std::string unit = &row.units[0];
            EXPECT_EQ(ValueOf(port, "units:unit"), unit == "Hz" ? "units:hz" : "");
            const std::string name = Between(port, "lv2:name \"", "\"");
            EXPECT_EQ(name + (unit.empty() ? "" : " [" + unit + "]"), &row.displayName[0]);
        }
        EXPECT_EQ(ValueOf(ports[Lv2Host::Latency], "lv2:designation"), "lv2:latency");
    }
}

TEST_F(Lv2DocumentsTest, AudioPortsAreTheSpeakersOfTheirGroup)
{
    for (const auto& [variant, group, designations] : Variants) {
        SCOPED_TRACE(variant);
        const std::string document = ReadDocument(variant);
        const Texts ports = Split(document, "lv2:index ");
        size_t index = Lv2Host::FirstAudio;
        for (const std::string direction : {"in", "out"}) {
            const std::string uri = "<" + Address + variant + "#" + direction + ">";
            EXPECT_NE(document.find(uri + "\n\ta pg:" + group + " ,"), std::string::npos);
            for (const String& designation : designations) {
                ASSERT_LT(index, ports.size());
                const std::string& port = ports[index];
                EXPECT_EQ(ValueOf(port, "lv2:index"), std::to_string(index));
                EXPECT_TRUE(ValueOf(port, "lv2:symbol").starts_with("\"" + direction + "_"));
                EXPECT_EQ(ValueOf(port, "pg:group"), uri);
                EXPECT_EQ(ValueOf(port, "lv2:designation"), "pg:" + designation.ToStdString());
                ++index;
            }
        }
    }
}

TEST_F(Lv2DocumentsTest, PresetsAreTheProductsAndSetWhatTheModuleSets)
{
    const std::string manifest = ReadDocument("manifest");
    for (const auto& [variant, group, designations] : Variants) {
        std::set<std::string> labels;
        for (const std::string& preset : Split(ReadDocument(variant + "-presets"), "#preset_")) {
            const std::string label = Between(preset, "rdfs:label \"", "\"");
            SCOPED_TRACE(variant + ", " + label);
            EXPECT_EQ(ValueOf(preset, "lv2:appliesTo"), "<" + Address + variant + ">");
            const std::string uri = variant + preset.substr(0, preset.find('\n'));
            EXPECT_NE(manifest.find(uri + "\n\ta pset:Preset ;"), std::string::npos) << uri;
            ASSERT_EQ(module.RunPreset(PresetOpApply, label).failed, 0);
            const Texts ports = Split(preset, "lv2:symbol ");
            ASSERT_EQ(ports.size(), 3U) << "a preset leaves the bypass alone";
            for (uint32_t index = 0; index < ports.size(); ++index) {
                EXPECT_EQ(ValueOf(ports[index], "lv2:symbol"), Quoted(Symbols[index]));
                EXPECT_FLOAT_EQ(NumberOf(ports[index], "pset:value"),
                                Denormalise(index, module.Value(index)));
            }
            // The state has what no port sets, such as a shorter delay.
            const auto channels = static_cast<uint32_t>(designations.size());
            Lv2Host::Plugin plugin(channels, 48000);
            const auto chunk = Util::DecodeBase64(Between(preset, Address + "state> \"", "\""));
            ASSERT_EQ(plugin.Restore(plugin.MakeSaved(chunk.value())), LV2_STATE_SUCCESS);
            Contract::PlaySilence(plugin, channels, 64);
            EXPECT_EQ(plugin.GetLatency(), module.Latency());
            labels.insert(label);
        }
        EXPECT_EQ(labels, ListProductPresets()) << variant;
    }
    ASSERT_EQ(module.RunPreset(PresetOpApply, "Live - low latency").failed, 0);
    EXPECT_LT(module.Latency(), TestHost::Instance(48000.0F, 2).Latency());
}
