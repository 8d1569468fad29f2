// SPDX-License-Identifier: ISC
// Preset files: what is written, byte by byte, and what comes back.
#include "frameworks/plugincore/preset/file/PresetFileBase.h"
#include "frameworks/qobase/util/Compression.h"
#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"
#include "tests/frameworks/plugincore/preset/file/PresetFixture.h"

#include <gtest/gtest.h>

using namespace Preset;
using namespace PresetTests;

namespace {

struct PresetFile : testing::Test, Fixture {
    LmPresetFile file{identity, dsp, nullptr};

    std::string SaveNow(const std::string& name)
    {
        const std::string path = folder / name;
        const auto saved = file.Save(path, dsp.TakeSnapshot(), TouchModified::No);
        EXPECT_TRUE(saved) << saved.GetDescription().c_str();
        return path;
    }
    // Into the elements.
    void LoadAndApply(const std::string& path)
    {
        file.TakeSnapshotFromDSP();
        const auto loaded = file.Load(path);
        ASSERT_TRUE(loaded) << loaded.GetDescription().c_str();
        ASSERT_TRUE(dsp.Apply(file.GetSnapshot()));
    }
    static std::string Compress(const std::string& text, uint32_t claim)
    {
        std::string result;
        for (int shift = 0; shift < 32; shift += 8) {
            result += static_cast<char>(claim >> shift & 0xFFU);
        }
        const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
        const Util::Bytes stream = Util::Deflate({bytes, text.size()});
        return result.append(stream.begin(), stream.end());
    }
};

} // namespace

TEST_F(PresetFile, IsWrittenAsItsFormSays)
{
    EXPECT_EQ(Read(SaveNow("plain.xml")), DefaultFile);

    // Everything that is there only at times.
    Snapshot values = dsp.TakeSnapshot();
    values.sliders.push_back({"Big \"one\"", 7, 3, -1.5F, 2.0F, 0.25F, 1e-7F, true, {}});
    values.checkBoxes.push_back({"Tick", 2, true, {}});
    ElementSnapshot& element = values.elements.at("Puffguard");
    auto& amount = std::get<FloatRecord>(element.params.at({"Puffguard", "Amount"}));
    amount.value = 12.0F; // above the range
    amount.sliderId = 7;
    amount.start = 0.1F;
    amount.end = 9.0F;
    amount.scale = 1;
    auto& isOn = std::get<BoolRecord>(element.params.at({"Puffguard", "On"}));
    isOn.checkboxId = 2;
    isOn.invert = true;
    element.enabled = false;
    element.extraBytes = {0, 1, 0xFF};
    file.SetMetadata({{"LastUsed", "then"}, {"Comments", "a<b> & \"c\"\n\xC3\xA4\x01"}});
    const std::string path = folder / "sub/all.xml";
    ASSERT_TRUE(file.Save(path, values, TouchModified::No));
    EXPECT_EQ(Read(path), R"(<?xml version="1.0" standalone="yes"?>
<LM6Pfgd PresetVer="1" PluginVer="6000" PluginBuild="1210" Comments="a&lt;b> &amp; &quot;c&quot;&#10;ä?" LastUsed="then">
    <Sliders>
        <Slider Name="Big &quot;one&quot;" SliderID="7" Min="-1.5" Max="2" Default="0.25" Value="1e-07" Scale="3" BiDirectional="1" />
    </Sliders>
    <CheckBoxes>
        <CheckBox Name="Tick" CheckboxID="2" Value="1" />
    </CheckBoxes>
    <Global Enabled="1" />
    <Puffguard Enabled="0">
        <Param ElementID="Puffguard" ParamID="Amount" SliderID="7" Start="0.1" End="9" Scale="1" Value="10" />
        <Param ElementID="Puffguard" ParamID="Mode" Value="2" />
        <Param ElementID="Puffguard" ParamID="On" CheckboxID="2" Invert="1" Value="0" />
        <ExtraBytes ElementID="Puffguard" Data="AAH/" />
    </Puffguard>
</LM6Pfgd>
)");
    FloatRecord stored;
    ASSERT_NO_THROW(
        stored = std::get<FloatRecord>(
            file.GetSnapshot().elements.at("Puffguard").params.at({"Puffguard", "Amount"})));
    EXPECT_EQ(stored.value, 10.0F); // stays clamped

    LmPresetFile reader(identity, dsp, nullptr);
    reader.TakeSnapshotFromDSP();
    const auto loaded = reader.Load(path);
    ASSERT_TRUE(loaded) << loaded.GetDescription().c_str();
    EXPECT_EQ(reader.GetMetadata().at("Comments"), "a<b> & \"c\"\n\xC3\xA4?");
    EXPECT_EQ(reader.GetMetadata().at("ReadOnly"), "");
    ASSERT_EQ(reader.GetSnapshot().sliders.size(), 1U);
    EXPECT_EQ(reader.GetSnapshot().sliders[0].value, 1e-7F);
    EXPECT_TRUE(reader.GetSnapshot().sliders[0].biDirectional);
    ASSERT_EQ(reader.GetSnapshot().checkBoxes.size(), 1U);
    EXPECT_FALSE(reader.GetSnapshot().elements.at("Puffguard").enabled);
    SetAmount(3.0F);
    Element().SetEnumValue(1, 3, DSP::Context::UI, {});
    Element().SetBoolValue(2, true, DSP::Context::UI, {});
    using Keys = std::vector<ParamKey>;
    EXPECT_EQ(reader.GetSnapshot().sliders[0].params, (Keys{{"Puffguard", "Amount"}}));
    EXPECT_EQ(reader.GetSnapshot().checkBoxes[0].params, (Keys{{"Puffguard", "On"}}));
    ASSERT_TRUE(dsp.Apply(reader.GetSnapshot()));
    EXPECT_EQ(Amount(), 10.0F);
    EXPECT_EQ(Element().GetEnumValue(1, DSP::Context::UI), 2U);
    EXPECT_FALSE(Element().GetBoolValue(2, DSP::Context::UI));
    EXPECT_EQ(Element().extraBytes, (Util::Bytes{0, 1, 0xFF}));

    // What was read is written as it was, but for the bytes that the element has by now.
    const std::string text = Read(path);
    ASSERT_TRUE(reader.Save(folder / "again.xml", reader.GetSnapshot(), TouchModified::No));
    const std::string bytes = "        <ExtraBytes ElementID=\"Puffguard\" Data=\"AAH/\" />\n";
    const std::string bound = "SliderID=\"7\" Start=\"0.1\" End=\"9\" Scale=\"1\" ";
    const std::string again = Read(folder / "again.xml");
    EXPECT_EQ(again.substr(again.find("    <Sliders")),
              Replaced(text.substr(text.find("    <Sliders")), bytes, ""));
    // A parameter that another file has without a control isn't bound any more.
    reader.TakeSnapshotFromDSP();
    const std::string on = Replaced(text, "<Puffguard Enabled=\"0\"", "<Puffguard Enabled=\"1\"");
    ASSERT_TRUE(reader.Load(Write("bound.xml", on)));
    EXPECT_EQ(reader.GetSnapshot().sliders[0].params.size(), 1U);
    ASSERT_TRUE(reader.Load(Write("free.xml", Replaced(on, bound, "SliderID=\"x\" "))));
    EXPECT_EQ(reader.GetSnapshot().sliders[0].params, Keys());
}

TEST_F(PresetFile, IsSavedAgainWhereItCameFrom)
{
    const std::string path = SaveNow("first.xml");
    const std::string other = Write("other.xml", "no preset");
    ASSERT_TRUE(file.Load(path));
    EXPECT_FALSE(file.Load(other));
    std::filesystem::remove(path);
    ASSERT_TRUE(file.SaveAgain());
    EXPECT_EQ(Read(other), "no preset");
    EXPECT_NE(Read(path).find("LM6Pfgd"), std::string::npos);
    LmPresetFile fresh(identity, dsp, nullptr);
    EXPECT_FALSE(fresh.Load(other));
    EXPECT_FALSE(fresh.SaveAgain());
    EXPECT_EQ(Read(other), "no preset");
}

TEST_F(PresetFile, SaysMoreWhenTheUserAsksForIt)
{
    const Support::UserFolders user;
    Util::ConfigFile settings("SOFTWARE/Test/Verbose");
    settings.WriteBool("VerbosePreset", true);
    LmPresetFile wordy(identity, dsp, &settings);
    const std::string path = folder / "wordy.xml";
    ASSERT_TRUE(wordy.Save(path, dsp.TakeSnapshot(), TouchModified::Yes));
    const std::string text = Read(path);
    for (const char* const part : {R"(ParamID="Amount" Units="dB" Min="0" Max="10" Value="5")",
                                   R"(ParamID="Mode" Min="1" Max="3" Value="2")",
                                   R"(ParamID="On" Value="0")",
                                   R"( LastModified="2)"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part;
    }
    LoadAndApply(path);
}

// What may differ from what the writer makes; the value is what "Amount", 3 before, ends at.
TEST_F(PresetFile, IsReadInEveryFormThatItMayHave)
{
    const std::string amount = R"(ParamID="Amount" Value="5")";
    std::string utf16;
    for (const char c : DefaultFile) {
        utf16 += {c, '\0'};
    }
    std::string deep; // 5e5 levels, which the program's stack would not hold
    for (const char* const tag : {"<a>", "</a>"}) {
        for (int i = 0; i < 500'000; ++i) {
            deep += tag;
        }
    }
    const std::string unpadded = DefaultFile.substr(0, DefaultFile.size() - 1);
    const auto length = static_cast<uint32_t>(DefaultFile.size());
    const std::pair<std::string, float> cases[] = {
        {DefaultFile, 5.0F},
        {"\xEF\xBB\xBF" + DefaultFile, 5.0F},
        {utf16, 5.0F},
        {unpadded + "<!-- tail -->", 5.0F},
        {Replaced(Replaced(DefaultFile, "<Puffguard", "<PuffGuard"), "</Puffguard", "</PuffGuard"),
         5.0F},
        {Replaced(DefaultFile, R"(ElementID="Puffguard")", R"(ElementID="PuffGuard")"), 5.0F},
        {Replaced(DefaultFile, "    <Global Enabled=\"1\" />\n", ""), 5.0F},
        {Replaced(DefaultFile, R"(<Puffguard Enabled="1")", R"(<Puffguard Enabled="yes")"), 5.0F},
        {Replaced(DefaultFile, amount, R"(ParamID="Amount" Value="1e30")"), 10.0F}, // clamped
        {Replaced(DefaultFile, amount, R"(ParamID="Amount" Value="1e60")"), 10.0F},
        {Replaced(DefaultFile, amount, R"(ParamID="Amount" Value="-1e400")"), 0.0F},
        // What isn't there, or isn't a number, leaves the value alone.
        {Replaced(DefaultFile, amount, R"(ParamID="amount" Value="5")"), 3.0F},
        {Replaced(DefaultFile, amount, R"(ParamID="Amount")"), 3.0F},
        {Replaced(DefaultFile, amount, R"(ParamID="Amount" Value="nan")"), 3.0F},
        {Replaced(DefaultFile, amount, R"(ParamID="Amount" Value="5,0")"), 3.0F},
        {Replaced(DefaultFile, R"(PluginVer="6000")", R"(PluginVer="3500")"), 5.0F},
        {Compress(DefaultFile, length), 5.0F},
        {Compress(DefaultFile, length + 9), 5.0F},
        {Compress(DefaultFile, length) + "what stands behind", 5.0F},
        {Replaced(DefaultFile, "    <Global Enabled=\"1\" />\n", deep), 5.0F},
    };
    for (const auto& [text, value] : cases) {
        SetAmount(3.0F);
        LoadAndApply(Write("form.xml", text));
        EXPECT_EQ(Amount(), value) << text.substr(0, 600);
    }
    // A compressed file whose length starts with the byte of a "<".
    std::string odd = DefaultFile;
    odd.append((0x3C - odd.size()) & 0xFFU, ' ');
    SetAmount(3.0F);
    LoadAndApply(Write("odd.xml", Compress(odd, static_cast<uint32_t>(odd.size()))));
    EXPECT_EQ(Amount(), 5.0F);
}

namespace {

// The text of the first `from` replaced by `to` gives `message`.
struct Damage {
    std::string from;
    std::string to;
    std::string message;
};

const std::string Controls = "<Sliders><Slider SliderID=\"0\" Min=\"0\" Max=\"1\" Default=\"0\" "
                             "Value=\"0\" Scale=\"0\"/></Sliders><CheckBoxes><CheckBox "
                             "CheckboxID=\"0\" Value=\"1\"/></CheckBoxes></LM6Pfgd>";

const Damage Damages[] = {
    {"version=\"1.0\"", "version=\"1.1\"", "Invalid xml version, 1.1. Expected 1.0."},
    {"<?xml version=\"1.0\" standalone=\"yes\"?>", "", "Invalid xml version, . Expected 1.0."},
    {"version=\"1.0\"", "version=\"%1\"", "Invalid xml version, %1. Expected 1.0."},
    {"PresetVer=\"1\"", "PresetVer=\"2\"", "Invalid params version, 2"},
    {"PresetVer=\"1\"", "", "Invalid params version, "},
    {"PresetVer=\"1\"", "PresetVer=\"-1\"", "Invalid params version, "},
    // Files of the own type are first taken for an older form, whose parameters nobody knows.
    {"PluginVer=\"6000\"", "PluginVer=\"7000\"", "Invalid params version, 1"},
    {"PluginVer=\"6000\"", "PluginVer=\"999\"", "Invalid params version, 1"},
    {"<Global Enabled=\"1\" />", "<!--Global-->", "Category was not a valid XML element."},
    {"<Param", "<!--Param--><Param", "Parameter was not a valid XML element."},
    {"<Param", "<!--ExtraBytes--><Param", "Extra bytes was not a valid XML element."},
    {"<Global", "<!--Sliders--><Global", "Sliders was not a valid XML element."},
    {"<Slider ", "<!--Slider--><Slider ", "Slider was not a valid XML element."},
    {"<CheckBoxes>", "<!--CheckBoxes--><CheckBoxes>", "CheckBoxes was not a valid XML element."},
    {"<CheckBox ", "<!--CheckBox--><CheckBox ", "Checkbox was not a valid XML element."},
    {"SliderID=\"0\"", "", "Invalid slider ID."},
    {"SliderID=\"0\"", "SliderID=\"-1\"", "Invalid slider ID."},
    {"Min=\"0\"", "Min=\"x\"", "Invalid min."},
    {"Max=\"1\"", "Max=\"inf\"", "Invalid max."},
    {"Default=\"0\"", "", "Invalid default."},
    {"Default=\"0\" Value=\"0\"", "Default=\"0\" Value=\"\"", "Invalid value."},
    {"Scale=\"0\"", "Scale=\"4\"", "Invalid scale type."},
    {"Scale=\"0\"", "Scale=\"-1\"", "Invalid scale type."},
    {"CheckboxID=\"0\"", "CheckboxID=\"-2\"", "Invalid checkbox ID."},
    {"\" Value=\"1\"/></CheckBoxes>", "\" Value=\"2\"/></CheckBoxes>", "Invalid boolean value."},
};

} // namespace

TEST_F(PresetFile, SaysWhatIsWrongAndKeepsItsSnapshot)
{
    const std::string whole =
        Replaced(Replaced(DefaultFile, "Amount\" Value=\"5\"", "Amount\" Value=\"9\""),
                 "</LM6Pfgd>",
                 Controls);
    std::vector<std::pair<std::string, std::string>> cases;
    for (const auto& [from, to, message] : Damages) {
        ASSERT_NE(whole.find(from), std::string::npos) << from;
        cases.emplace_back(Replaced(whole, from, to), message);
    }
    const auto renamed = [&](const std::string& from, const std::string& to) {
        return Replaced(Replaced(whole, "<" + from, "<" + to), "</" + from, "</" + to);
    };
    cases.emplace_back(renamed("LM6Pfgd", "LM6Other"), "Invalid preset file type, LM6Other");
    cases.emplace_back(renamed("LM6Pfgd", "lm6pfgd"), "Invalid preset file type, lm6pfgd");
    cases.emplace_back(renamed("Puffguard", "Puffgard"), "Missing category: Puffguard");
    cases.emplace_back("<?xml version=\"1.0\"?>", "Missing root element.");
    // Letters that would be a compressed text's, were they not behind a character.
    cases.emplace_back("<!--hb--><LM6Pfgd/>", "Invalid xml version, . Expected 1.0.");
    cases.emplace_back("", folder / "damaged.xml" + ": No document element found");
    cases.emplace_back("<LM6Pfgd a=1/>",
                       folder / "damaged.xml" + ": Error parsing element attribute");
    const auto length = static_cast<uint32_t>(whole.size());
    const std::string packed = Compress(whole, length);
    const std::string bomb = Compress(std::string(20'000'000, ' '), 1000);
    for (const std::string& text : {packed.substr(0, packed.size() - 1),
                                    packed.substr(0, 7),
                                    Compress(whole, length - 1),
                                    Compress(whole, 0),
                                    Compress(whole, 0xFFFFFFFF),
                                    Compress(whole, (4U << 20) + 1),
                                    bomb}) {
        cases.emplace_back(text, "Could not decompress file.");
    }

    SetAmount(3.0F);
    file.TakeSnapshotFromDSP();
    file.SetMetadata({{"Comments", "kept"}});
    for (const auto& [text, message] : cases) {
        const auto loaded = file.Load(Write("damaged.xml", text));
        ASSERT_FALSE(loaded) << message;
        EXPECT_EQ(loaded.GetDescription().ToStdString(), message);
        EXPECT_EQ(loaded.GetError().As<Util::File::Error>(), nullptr);
        ASSERT_TRUE(file.GetSnapshot().sliders.empty()) << message;
        ASSERT_TRUE(dsp.Apply(file.GetSnapshot()));
        EXPECT_EQ(Amount(), 3.0F) << message;
        EXPECT_EQ(file.GetMetadata().at("Comments"), "kept") << message;
    }
}

// What one file switches off isn't looked at in the next, until the snapshot is taken anew.
TEST_F(PresetFile, ReadsTheCategoriesThatTheSnapshotEnables)
{
    const std::string nine = Replaced(DefaultFile, "Amount\" Value=\"5\"", "Amount\" Value=\"9\"");
    const std::string off = Replaced(nine, "<Puffguard Enabled=\"1\"", "<Puffguard Enabled=\"0\"");
    const std::string none =
        Replaced(Replaced(DefaultFile, "<Puffguard", "<Puffgard"), "</Puffguard", "</Puffgard");
    file.TakeSnapshotFromDSP();
    ASSERT_TRUE(file.Load(Write("off.xml", off)));
    EXPECT_TRUE(file.Load(Write("default.xml", DefaultFile)));
    EXPECT_TRUE(file.Load(Write("none.xml", none)));
    ASSERT_TRUE(dsp.Apply(file.GetSnapshot()));
    EXPECT_EQ(Amount(), 9.0F);
    LoadAndApply(folder / "default.xml");
    EXPECT_EQ(Amount(), 5.0F);
}

TEST_F(PresetFile, IsRefusedWhereverItIsCutOff)
{
    const std::string text = DefaultFile.substr(0, DefaultFile.size() - 1); // without the line end
    SetAmount(3.0F);
    file.TakeSnapshotFromDSP();
    for (const std::string& whole : {text, Compress(text, static_cast<uint32_t>(text.size()))}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            ASSERT_FALSE(file.Load(Write("cut.xml", whole.substr(0, length)))) << length;
        }
    }
    ASSERT_TRUE(dsp.Apply(file.GetSnapshot()));
    EXPECT_EQ(Amount(), 3.0F);
}

TEST_F(PresetFile, TellsOpeningFromReading)
{
    const std::string most = DefaultFile + std::string((4U << 20) - DefaultFile.size(), ' ');
    EXPECT_TRUE(file.Load(Write("most.xml", most)));
    EXPECT_TRUE(file.Load(Write("packed.xml", Compress(most, 4U << 20))));
    const std::string huge = Write("huge.xml", most + " ");
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {folder / "missing.xml", "Could not open file.", "No such file or directory"},
        {folder.Path().string(), "Could not open file.", "Is a directory"},
        {huge, "Could not read file.", "larger than 4194304 bytes"},
    };
    for (const auto& [path, message, reason] : cases) {
        const auto loaded = file.Load(path);
        ASSERT_FALSE(loaded);
        EXPECT_EQ(loaded.GetDescription().ToStdString(), message);
        const auto* error = loaded.GetError().As<Util::File::Error>();
        ASSERT_NE(error, nullptr);
        ASSERT_EQ(error->GetArguments().size(), 2U);
        EXPECT_EQ(error->GetArguments()[0].ToStdString(), path);
        EXPECT_EQ(error->GetArguments()[1].ToStdString(), reason);
    }
    const auto packed = file.Load(Write("packed.xml", Compress(most + " ", (4U << 20) + 1)));
    ASSERT_FALSE(packed);
    EXPECT_EQ(packed.GetError().Get().GetArguments().back(), "larger than 4194304 bytes");
}

// How a write may fail is the files' affair; here it is a folder that is a file, and a target that
// is a folder.
TEST_F(PresetFile, KeepsTheOldOneWhenItCannotBeWritten)
{
    const std::string path = SaveNow("kept.xml");
    SetAmount(1.0F);
    const std::pair<std::string, std::string> targets[] = {
        {path + "/below.xml", "_wmkdir() failed"},
        {folder.Path().string(), "Unable to save the file to " + folder.Path().string()}};
    for (const auto& [target, message] : targets) {
        const auto saved = file.Save(target, dsp.TakeSnapshot(), TouchModified::Yes);
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.GetDescription().ToStdString(), message);
    }
    EXPECT_EQ(Read(path), DefaultFile);
    EXPECT_EQ(file.GetPath(), path); // where it was written last
    EXPECT_EQ(file.GetMetadata().count("LastModified"), 0U);
}

TEST(PresetVersion, FollowsTheGenerations)
{
    Fixture fixture;
    // The program's version, the file's, and whether it can be read.
    const std::tuple<uint32_t, std::optional<uint32_t>, bool> cases[] = {
        {6000, std::nullopt, false}, {6000, 0, false},    {6000, 999, false},
        {6000, 1000, false},         {6000, 2999, false}, {6000, 3000, true},
        {6000, 3500, true},          {6000, 4000, true},  {6000, 5999, true},
        {6000, 6999, true},          {6000, 7000, false}, {2000, 3000, false},
        {3000, 3000, true},          {3000, 4000, false}, {4000, 3500, true},
        {4000, 5000, false},         {5000, 5000, true},  {7000, 6000, false},
        {7000, 7001, true},          {7000, 4000, true},  {1000, 1500, true},
        {6000, 4294967295U, false}};
    for (const auto& [own, read, isValid] : cases) {
        fixture.identity.pluginVersion = own;
        const LmPresetFile file(fixture.identity, fixture.dsp, nullptr);
        EXPECT_EQ(file.IsPluginVersionValid(read), isValid) << own << " " << read.value_or(0);
    }
}
