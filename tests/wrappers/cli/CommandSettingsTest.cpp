// SPDX-License-Identifier: ISC
// What lasts from one run to the next: values go into a preset or a session and come back whole,
// and nothing else does.
#include "tests/wrappers/cli/support/SessionFixture.h"

#include "frameworks/qobase/util/ConfigFile.h"

#include <algorithm>
#include <map>

namespace {

using namespace CliTest;

class CommandSettings : public SessionFixture {
protected:
    static Words Controls(const char* sensitivity, const char* strength, const char* frequency)
    {
        Words words = {"--sensitivity", sensitivity, "--strength", strength};
        return Join(words, {"--upper-frequency", frequency});
    }
};

TEST_F(CommandSettings, ComeBackFromPresetsAndSessionsToTheLastBit)
{
    const Words chosen = {"--preset", "Strong", "--upper-frequency", "113.7"};
    const Bytes first = Repair(Join({"--save-preset", preset, "--state-out", state}, chosen));
    EXPECT_NE(first, Repair({}));
    EXPECT_EQ(Repair({"--preset", "Default"}), Repair({}));
    EXPECT_EQ(Repair({"--preset", preset}), first);
    EXPECT_EQ(Repair({"--state-in", state}), first);
    // Through a second generation of both.
    Say({"--preset", preset, "--save-preset", preset, "--force"});
    Say({"--state-in", state, "--state-out", state, "--force"});
    EXPECT_EQ(Repair({"--preset", preset}), first);
    EXPECT_EQ(Repair({"--state-in", state}), first);
}

TEST_F(CommandSettings, ValuesKeepTheirBitsThroughTextAndBack)
{
    // Values whose floats lie close to each other on the decimal scale, and the ends. A session
    // holds floats' own digits, so that two presets agree exactly when their sessions do.
    const std::map<std::string, Words> cases = {
        {"--sensitivity", {"9.9999990463256836", "8.1234567"}},
        {"--strength", {"0.1", "0.10000001", "0.1137", "0.11000001", "0.12499999", "9.87654321"}},
        {"--upper-frequency", {"255.99998"}},
        {"--latency-scaling", {"0", "0.33333334"}}};
    for (const auto& [option, values] : cases) {
        for (const std::string& value : values) {
            Say({option, value, "--save-preset", preset, "--state-out", state, "-f"});
            Say({"--preset", preset, "--state-out", folder / "again.bin", "-f"});
            EXPECT_EQ(ReadBytes(folder / "again.bin"), ReadBytes(state)) << option << ' ' << value;
        }
    }
}

TEST_F(CommandSettings, AnOptionWinsOverThePresetAndThePresetOverTheSession)
{
    Say(Join(Controls("1", "2", "111"), {"--state-out", state}));
    Say(Join(Controls("3", "4", "222"), {"--save-preset", preset}));
    // A preset that says nothing of one parameter leaves it to the session.
    std::string text = ReadBytes(preset);
    const size_t begin = text.rfind('<', text.find("\"Sensitivity\""));
    ASSERT_NE(begin, std::string::npos);
    text.erase(begin, text.find('>', begin) + 1 - begin);
    WriteBytes(preset, text);
    const Words all = {"--state-in", state, "--preset", preset, "--upper-frequency", "333"};
    EXPECT_EQ(Value(all, Sensitivity), 1.0);
    EXPECT_EQ(Value(all, Strength), 4.0);
    EXPECT_EQ(Value(all, UpperFrequency), 333.0);
    EXPECT_EQ(Value(all, LatencyScaling), 1.0);
    EXPECT_EQ(Repair(all), Repair(Controls("1", "4", "333")));
}

TEST_F(CommandSettings, TheBypassIsSavedNowhere)
{
    Say({"--bypass", "--strength", "8", "--save-preset", preset, "--state-out", state});
    const Bytes expected = Repair({"--strength", "8"});
    EXPECT_EQ(Repair({"--preset", preset}), expected);
    EXPECT_EQ(Repair({"--state-in", state}), expected);
    Repair({"--preset", preset, "--bypass"});
    EXPECT_TRUE(ReadAudio(folder / "result.wav").samples == ReadAudio(input).samples);
}

TEST_F(CommandSettings, EveryRecordingOfARunGetsThem)
{
    Words names;
    Words inputs;
    for (const int rate : {8000, 44100, 48000, 96000}) {
        names.push_back(std::to_string(rate) + ".wav");
        inputs.push_back(folder / names.back());
        WriteAudio(inputs.back(), MakeSpeech(rate, rate == 44100 ? 6 : 1, 1.5));
    }
    const Words chosen = {"--strength", "9.1", "--sensitivity", "7.3"};
    Say(Join({"--save-preset", preset, "--state-out", state}, chosen));
    Say(Join(Join(inputs, {"-O", folder / "direct"}), chosen));
    Say(Join(inputs, {"-O", folder / "preset", "--jobs", "2", "--preset", preset}));
    // A session is read once: standard input would give nothing to the second recording.
    const Words fromSession = {"-O", folder / "session", "--jobs", "2", "--state-in", "-"};
    Say(Join(inputs, fromSession), {.input = ReadBytes(state)});
    for (const std::string& name : names) {
        const Bytes expected = {ReadBytes(folder / "direct/" + name)};
        EXPECT_EQ(Bytes{ReadBytes(folder / "preset/" + name)}, expected) << name;
        EXPECT_EQ(Bytes{ReadBytes(folder / "session/" + name)}, expected) << name;
    }
}

TEST_F(CommandSettings, TheUsersSettingsAndTheCommandLeaveEachOtherAlone)
{
    const Bytes expected = Repair({"--preset", "Gentle"});
    Util::ConfigFile settings("SOFTWARE/Norvane/LM6Pfgd");
    settings.WriteBool("DelayCompensationEnable", false);
    settings.WriteInt("FrozenSystemDelay", 1000);
    const std::string file = user.Home() / "config/Norvane/LM6Pfgd.json";
    const std::string before = ReadBytes(file);
    EXPECT_EQ(Repair({"--preset", "Gentle"}), expected);
    Say({"--list-presets"});
    Say({"--preset", "Strong", "--save-preset", preset, "--state-out", state});
    EXPECT_EQ(ReadBytes(file), before);
    const std::filesystem::directory_iterator home(user.Home().Path());
    EXPECT_EQ(std::distance(begin(home), end(home)), 1) << "more than the settings";
}

TEST_F(CommandSettings, ThePrintedTableHoldsWhatIsInForce)
{
    Say({"--strength", "8.25", "--state-out", state});
    const Words words = {"--state-in", state, "--upper-frequency", "113.7"};
    const std::string table = Say(Join({"--print-params"}, words));
    std::string squeezed = table;
    const auto isRun = [](char a, char b) { return a == ' ' && b == ' '; };
    squeezed.erase(std::unique(squeezed.begin(), squeezed.end(), isRun), squeezed.end());
    for (const char* line : {"\nPuffGuard.Upper Repair Frequency 113.7 50 to 500 200 Hz *\n",
                             "\nPuffGuard.Strength 8.25 0 to 10 5 *\n",
                             "\nGlobal.Global Bypass off off, on off\n"}) {
        EXPECT_NE(squeezed.find(line), std::string::npos) << table;
    }
    // With a recording, and even when nothing else is to be said.
    EXPECT_EQ(Say(Join({input, "-nq", "--print-params"}, words)), table);
    const Json json = Json::parse(Say(Join({input, "-n", "--print-params", "--json"}, words)));
    EXPECT_EQ(json["parameters"].size(),
              static_cast<size_t>(std::count(table.begin(), table.end(), '\n')) - 1);
    EXPECT_EQ(json["files"].size(), 1U);
}

TEST_F(CommandSettings, ASessionGoesThroughPipes)
{
    Say({"--strength", "8.25", "--state-out", state});
    const RunSetup setup = {.input = ReadBytes(state)};
    EXPECT_EQ(Say({"--state-in", "-", "--state-out", "-"}, setup), setup.input);
    // What else there is to say goes the other way.
    EXPECT_EQ(Say({"--state-in", "-", "--state-out", "-", "--print-params"}, setup), setup.input);
}

TEST_F(CommandSettings, TheSummaryNamesThePreset)
{
    EXPECT_NE(Say({input, "-n", "--preset", "Strong"}).find("; preset Strong;"), std::string::npos);
    Say({"--save-preset", preset});
    const Json json = Json::parse(Say({input, "-n", "--json", "--preset", preset}));
    EXPECT_EQ(json["preset"]["name"], "my");
    EXPECT_EQ(json["preset"]["file"], preset);
    EXPECT_EQ(Json::parse(Say({input, "-n", "--json"}))["preset"], nullptr);
}

} // namespace
