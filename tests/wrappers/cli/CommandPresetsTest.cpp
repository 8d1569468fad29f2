// SPDX-License-Identifier: ISC
// The presets that there are, and what is refused before anything is touched.
#include "tests/wrappers/cli/support/SessionFixture.h"

#include "frameworks/qobase/util/Compression.h"

#include <sys/stat.h>

namespace {

using namespace CliTest;

// A text as a session holds it: its length, and the text as one zlib stream.
std::string Pack(const std::string& text)
{
    std::string session;
    for (size_t shift = 0; shift < 32; shift += 8) {
        session.push_back(static_cast<char>(text.size() >> shift & 0xFFU));
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    const Util::Bytes packed = Util::Deflate({bytes, text.size()});
    return session.append(packed.begin(), packed.end());
}

class CommandPresets : public SessionFixture {
protected:
    static Json List() { return Json::parse(Say({"--list-presets", "--json"}))["presets"]; }

    static Json Find(const std::string& name)
    {
        for (Json& entry : List()) {
            if (entry["name"] == name) {
                return entry;
            }
        }
        return {};
    }

    const std::string audio = ReadBytes(input);
};

TEST_F(CommandPresets, ThoseOfTheProductAreListedWithWhatTheyAreFor)
{
    for (const char* name : {"Default", "Gentle", "Strong", "Close microphone", "Low voice"}) {
        const Json entry = Find(name);
        ASSERT_TRUE(entry.is_object()) << name;
        EXPECT_EQ(entry["from"], "factory");
        EXPECT_GT(entry["comment"].get<std::string>().size(), 10U) << name;
        EXPECT_TRUE(entry["readOnly"].get<bool>());
        EXPECT_EQ(entry["problem"], nullptr);
    }
    const std::string table = Say({"--list-presets"});
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), static_cast<long>(List().size()) + 1);
    EXPECT_TRUE(table.starts_with("NAME ")) << table;
}

TEST_F(CommandPresets, OneOfTheUsersOwnHasANameAndAComment)
{
    const std::string comment = "H\u00f6rspiel <\"1\" & 2>, loud";
    Say({"--strength", "7.5", "--save-preset", "Mine", "--comment", comment});
    const Json entry = Find("Mine");
    ASSERT_TRUE(entry.is_object());
    EXPECT_EQ(entry["from"], "user");
    EXPECT_EQ(entry["comment"], comment);
    EXPECT_TRUE(std::filesystem::exists(entry["file"].get<std::string>()));
    EXPECT_EQ(Value({"--preset", "Mine"}, Strength), 7.5);
    for (const char* same : {"Mine", "MINE"}) {
        ExpectRefusal({"--strength", "1", "--save-preset", same}, 1, "Mine.xml: exists already");
    }
    EXPECT_EQ(Value({"--preset", "Mine"}, Strength), 7.5);
    Say({"--strength", "2.5", "--save-preset", "Mine", "--force"});
    EXPECT_EQ(Value({"--preset", "Mine"}, Strength), 2.5);
}

TEST_F(CommandPresets, ABrokenOneIsListedAndRefused)
{
    Say({"--save-preset", "Mine"});
    const std::string good = Find("Mine")["file"];
    const std::string bad = std::filesystem::path(good).parent_path() / "Broken.xml";
    WriteBytes(bad, ReadBytes(good).substr(0, 30));
    EXPECT_EQ(Find("Broken")["problem"], "Error: invalid preset, please select another.");
    ExpectRefusal({input, "--preset", "Broken"}, 2, "Broken");
    EXPECT_EQ(Value({"--preset", "Mine"}, Strength), 5.0);
}

TEST_F(CommandPresets, WhatCantBeUsedStopsTheRunBeforeItBegins)
{
    const std::string bad = folder / "bad.xml";
    const auto name = [&](const char* option, const std::string& file, const std::string& reason) {
        ExpectRefusal({input, option, file, "--save-preset", preset}, 2, reason);
    };
    name("--preset", "No such thing", "No such thing");
    name("--preset", bad, bad);
    name("--preset", folder.GetPath() + "/", folder.GetPath());
    Say({"--save-preset", bad, "--state-out", state});
    const std::string whole = ReadBytes(bad);
    for (const std::string& text :
         {std::string(), std::string("no preset"), whole.substr(0, whole.size() / 2), audio}) {
        WriteBytes(bad, text);
        name("--preset", bad, "The file " + bad + " is not a valid preset file.");
    }
    name("--state-in", folder / "none.bin", "none.bin: No such file or directory");
    name("--state-in", folder.GetPath(), "Is a directory");
    const std::string session = ReadBytes(state);
    for (const size_t length : {size_t{0}, size_t{3}, size_t{4}, session.size() - 1}) {
        WriteBytes(state, session.substr(0, length));
        name("--state-in", state, state + ": is not a saved session of Puff-guard");
    }
    WriteBytes(state, "\xFF\xFF\xFF\xFF" + session.substr(4));
    name("--state-in", state, state + ": is not a saved session of Puff-guard");
    name("--state-in", "/dev/zero", "/dev/zero: is too large for a saved session");
}

TEST_F(CommandPresets, ASessionOfSomethingElseIsNoSession)
{
    for (const char* text : {"",
                             "a letter",
                             "{}",
                             R"({"DSP State": {"Type": "Dictionary", "Value": {}}})",
                             R"({"DSP State": {"Type": "Dictionary", "Value": {
                                 "DSP Elements": {"Type": "Dictionary", "Value": {
                                 "Reverb": {"Type": "Dictionary", "Value": {
                                 "Strength": {"Type": "Float", "Value": 5}}}}}}}})"}) {
        WriteBytes(state, Pack(text));
        ExpectRefusal({input, "--state-in", state}, 2, state + ": holds no values of Puff-guard");
    }
    // One is enough, and be it a value at the end of its range.
    for (const char* end : {"0", "10"}) {
        const Words all = {"--sensitivity", end, "--strength", end, "--state-out", state, "-f"};
        Say(all);
        EXPECT_EQ(Value({"--state-in", state}, Strength), std::stod(end));
    }
}

TEST_F(CommandPresets, BothTargetsAreGoodBeforeEitherIsWritten)
{
    const Words both = {"--save-preset", preset, "--state-out", state};
    WriteBytes(state, "mine");
    ExpectRefusal(both, 1, state + ": exists already");
    std::filesystem::rename(state, preset);
    ExpectRefusal(both, 1, preset + ": exists already");
    ExpectRefusal({"--save-preset", folder / "new.xml", "--state-out", folder / "no/session"},
                  1,
                  "No such file or directory");
    ExpectRefusal({"--save-preset", "/proc/no/new.xml", "--state-out", state}, 1, "/proc/no");
    Say({"--save-preset", "Mine"});
    ExpectRefusal({"--save-preset", "Mine", "--state-out", state}, 1, "exists already");
    EXPECT_EQ(ReadBytes(preset), "mine");
}

TEST_F(CommandPresets, WhatHoldsASlashOrEndsInXmlIsAFile)
{
    const RunSetup inside = {.folder = folder.GetPath()};
    for (const char* name : {"mine.xml", "./mine.XML", "./mine"}) {
        Say({"--strength", "7", "--save-preset", name}, inside);
        EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;
        const std::string table = Say({"--preset", name, "--print-params"}, inside);
        EXPECT_EQ(table, Say({"--strength", "7", "--print-params"})) << name;
    }
    // Anything else is the name of a preset, which is one of the user's own.
    Say({"--strength", "7", "--save-preset", "new.XML"}, inside);
    EXPECT_FALSE(std::filesystem::exists(folder / "new.XML"));
    EXPECT_EQ(Find("new.XML")["from"], "user");
}

TEST_F(CommandPresets, WhatTheRunReadsIsNotWrittenOverEvenWithForce)
{
    // libsndfile goes by the content, whatever the name.
    const std::string odd = folder / "talk.xml";
    std::filesystem::copy(input, odd);
    Say({"--save-preset", preset, "--state-out", state});
    const std::string before = ReadBytes(preset) + ReadBytes(state);
    ExpectRefusal({odd, "-f", "--save-preset", odd}, 2, "is a recording of this run");
    ExpectRefusal({odd, "-f", "--state-out", odd}, 2, "is a recording of this run");
    ExpectRefusal({input, "-f", "--preset", preset, "--state-out", preset}, 2, "is the preset");
    ExpectRefusal({input, "-f", "--state-in", state, "--events", state}, 2, "is the session");
    ExpectRefusal({input, "-f", "--preset", preset, "-o", preset}, 1, "is the preset");
    ExpectRefusal({"-f", "--save-preset", preset, "--state-out", preset}, 2, "is already");
    EXPECT_EQ(Bytes{ReadBytes(odd)}, Bytes{audio});
    EXPECT_EQ(ReadBytes(preset) + ReadBytes(state), before);
    // But either may be brought up to date.
    Say({"-f", "--preset", preset, "--strength", "7", "--save-preset", preset});
    EXPECT_EQ(Value({"--preset", preset}, Strength), 7.0);
}

TEST_F(CommandPresets, TargetsThatAreNoFiles)
{
    ASSERT_EQ(::mkfifo((folder / "pipe.xml").c_str(), 0600), 0);
    ExpectRefusal({"-f", "--save-preset", folder / "pipe.xml"}, 1, "is no regular file");
    ExpectRefusal({"-f", "--save-preset", folder.GetPath() + "/."}, 1, "is a directory");
    ExpectRefusal({"-f", "--state-out", folder.GetPath()}, 1, "is a directory");
    ExpectRefusal({"--state-out", folder / "no/such/folder"}, 1, "No such file or directory");
    ExpectRefusal({"--state-out", "/dev/full"}, 1, "No space left on device");
}

TEST_F(CommandPresets, AreImportedRemovedAndKeptInAFolderOfTheUsersChoice)
{
    Say({"--strength", "7.5", "--save-preset", preset, "--comment", "Anna"});
    const std::string copy = std::filesystem::path(preset).stem();
    EXPECT_NE(Say({"--import-preset", preset}).find("preset -> "), std::string::npos);
    EXPECT_EQ(Find(copy)["comment"], "Anna");
    Say({"--strength", "2", "--save-preset", copy, "--force"}); // keeps the comment
    EXPECT_EQ(Find(copy)["comment"], "Anna");
    WriteBytes(folder / "bad.xml", "no preset");
    ExpectRefusal({"--import-preset", folder / "bad.xml"},
                  1,
                  "Preset Import Failed: The file " + (folder / "bad.xml") +
                      " is not a valid preset file.");

    const std::string question =
        "Remove Preset: Are you sure you want to remove '" + copy + "'? [y/N] ";
    const Outcome kept = RunPuffguard({"--remove-preset", copy}, {.input = "n\n"});
    EXPECT_EQ(kept.exitCode, 1);
    EXPECT_TRUE(kept.err.starts_with(question)) << kept.err;
    EXPECT_TRUE(Find(copy).is_object());
    EXPECT_EQ(RunPuffguard({"--remove-preset", copy}, {.input = "y\n"}).exitCode, 0);
    EXPECT_FALSE(Find(copy).is_object());
    ExpectRefusal({"--remove-preset", copy, "--force"}, 1, "There is no preset \"" + copy + "\"");
    ExpectRefusal({"--remove-preset", "Strong", "--force"},
                  1,
                  "Remove Preset: Error removing preset Strong: it is read-only.");

    const std::string team = folder / "team";
    EXPECT_EQ(Say({"--preset-folder", team}), "presets -> " + team + "/\n");
    Say({"--save-preset", "Ours"});
    EXPECT_TRUE(std::filesystem::exists(team + "/Ours.xml"));
    ExpectRefusal({"--preset-folder", "/proc/none"}, 1, "Choose a preset folder: ");
    EXPECT_TRUE(Find("Ours").is_object());
    Say({"--preset-folder", "default"});
    EXPECT_FALSE(Find("Ours").is_object());
}

TEST_F(CommandPresets, AnUndoHistoryIsListedWithTimesTextsAndValues)
{
    const std::string file = RELEASE_FILES "/6.0.0/history.hst";
    const Json steps = Json::parse(Say({"--history", file, "--json"}))["history"];
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_EQ(steps[0]["text"], "Initial state");
    EXPECT_EQ(steps[0]["values"]["strength"], 5.0);
    EXPECT_EQ(steps[0]["time"], nullptr); // that version wrote none
    EXPECT_EQ(steps[1]["slots"], Json::array({3}));
    EXPECT_NE(steps[1]["values"], steps[0]["values"]);
    const std::string table = Say({"--history", file});
    EXPECT_TRUE(table.starts_with("TIME  TEXT")) << table;
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 3);
    ExpectRefusal(
        {"--history", input}, 1, "is not a history that can be read. (Invalid magic number");
    ExpectRefusal({"--history", folder / "none.hst"}, 1, "none.hst");
}

} // namespace
