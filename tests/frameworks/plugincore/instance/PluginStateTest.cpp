// SPDX-License-Identifier: ISC
// The state of an instance: what a chunk holds, and what one of another form or a damaged one does.
#include "tests/frameworks/plugincore/instance/PluginRig.h"

namespace {

using namespace PluginRig;
using PluginStateTest = StateFixture;

} // namespace

TEST_F(PluginStateTest, SavesWhatTheFormSaysAndNothingElse)
{
    Create();
    SetGain(0.25F);
    // Nothing of "Global" belongs to a session.
    EXPECT_EQ(
        TextOf(Save()).ToStdString(),
        R"({"Context State":{"Type":"Dictionary","Value":{}},)"
        R"("DSP State":{"Type":"Dictionary","Value":{"DSP Elements":{"Type":"Dictionary","Value":{)"
        R"("Box":{"Type":"Dictionary","Value":{"Element Name":{"Type":"String","Value":"Box"},)"
        R"("Extra Bytes":{"Type":"Base64","Value":""},"Gain":{"Type":"Float","Value":2.5},)"
        R"("Param Version":{"Type":"Int","Value":0}}},)"
        R"("Global":{"Type":"Dictionary","Value":{)"
        R"("Element Name":{"Type":"String","Value":"Global"},)"
        R"("Extra Bytes":{"Type":"Base64","Value":""},"Param Version":{"Type":"Int","Value":0}}}}}}},)"
        R"("Major Version":{"Type":"Int","Value":1},"Minor Version":{"Type":"Int","Value":1}})");
}

TEST_F(PluginStateTest, LoadsByFormAndVersionOrChangesNothing)
{
    struct Row {
        String text;
        uint32_t version;
        bool succeeds;
        float gain;
    };
    const float kept = 0.5F;
    const String legacy = String("{%1}").arg(Elements("7"));
    const Row rows[] = {
        {State("7", Version1), 1, true, 0.7F},
        {State("7", Version1), 6000, true, 0.7F},
        {State("7", R"(,"Major Version":{"Type":"UInt","Value":1})"), 1, true, 0.7F},
        {State("7", R"(,"Major Version":{"Type":"Int","Value":2})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"Int","Value":-1})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"Float","Value":1})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"String","Value":"1"})"), 1, true, kept},
        {State("7", ""), 1, true, kept}, // the older form has its elements on top
        {legacy, 1, true, 0.7F},
        {String("{%1%2}").arg(Elements("7")).arg(Version1), 1, true, kept},
        {String("{%1,%2}").arg(Elements("3")).arg(Elements("7")),
         1,
         true,
         0.7F}, // the later one counts
        {"", 1, true, kept},
        {"no JSON", 1, true, kept},
        {"[]", 1, true, kept},
        {legacy + "x", 1, true, kept},
        {State("7", R"(,"Other":1,"Major Version":{"Type":"Int","Value":1})"), 1, true, kept},
        {State("\"7\"", Version1), 1, true, kept},
        {std::string(100'000, '{'), 1, true, kept},
        {State("7", Version1), 0, false, kept},
        {"L", 0, true, kept},
    };
    Create();
    for (const Row& row : rows) {
        SetGain(kept);
        EXPECT_EQ(LoadText(row.text, row.version), row.succeeds) << row.text.Left(200).c_str();
        EXPECT_FLOAT_EQ(Get(), row.gain) << row.text.Left(200).c_str();
        EXPECT_FLOAT_EQ(Get(Gain, Side::UI), row.gain) << row.text.Left(200).c_str();
    }
    EXPECT_EQ(Count(HostOpcodeParamEvent), 0U) << "the host is not told of its own change";
    ASSERT_TRUE(plugin->SetChunk(ChunkOf(legacy), 1, DSP::SourceController));
    EXPECT_EQ(Count(HostOpcodeParamEvent), 1U);
}

TEST_F(PluginStateTest, ADamagedChunkReachesNobody)
{
    Create();
    SetGain(0.5F);
    const Util::Bytes good = ChunkOf(State("7", Version1));
    TestEditor editor(factory.events);
    plugin->AttachEditor(&editor);
    factory.events.clear();
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_FALSE(plugin->SetChunk({good.data(), length}, 1, DSP::SourceHost));
    }
    EXPECT_EQ(factory.events, "");
    EXPECT_EQ(Get(), 0.5F);
    EXPECT_TRUE(plugin->SetChunk(good, 1, DSP::SourceHost));
    EXPECT_EQ(factory.events, "begin loaded history end ");
    factory.events.clear();
    EXPECT_FALSE(plugin->SetChunk(good, 0, DSP::SourceHost)); // the signal path knows no older form
    EXPECT_EQ(factory.events, "begin legacy0 loaded history end ");
    plugin->AttachEditor(nullptr);
}

TEST_F(PluginStateTest, ComparesOnlyTheElementsOnTop)
{
    struct Row {
        String text;
        bool succeeds;
        bool equal;
    };
    const char* const otherTable =
        R"({"DSP Elements":{"Type":"Dictionary","Value":{"Box":{"Type":"Dictionary","Value":{)"
        R"("Param Version":{"Type":"Int","Value":3}}}}}})";
    const Row rows[] = {
        {String("{%1}").arg(Elements("5")), true, true},
        {String("{%1}").arg(Elements("7")), true, false},
        {State("7", Version1), true, true},
        {"no JSON", true, true},
        {otherTable, false, false},
    };
    Create();
    SetGain(0.5F);
    for (const Row& row : rows) {
        bool equal = !row.equal;
        EXPECT_EQ(plugin->CompareChunk(ChunkOf(row.text), equal), row.succeeds) << row.text.c_str();
        if (row.succeeds) {
            EXPECT_EQ(equal, row.equal) << row.text.c_str();
        }
    }
    bool equal = true;
    EXPECT_FALSE(plugin->CompareChunk({}, equal));
}

TEST_F(PluginStateTest, SessionsCarryAnIdentifierOnlyInTheirOwnMode)
{
    const auto identifier = [this] { return Util::FormatUuid(plugin->GetSessionUuid()); };
    Create();
    EXPECT_FALSE(TextOf(Save()).Find("Session UUID"));
    factory.definition.sessionMode = SessionMode::KeptIdentifier;
    Create();
    const String first = identifier();
    const Util::Bytes chunk = Save();
    EXPECT_TRUE(TextOf(chunk).Find(first));
    Create();
    EXPECT_NE(identifier(), first);
    ASSERT_TRUE(plugin->SetChunk(chunk, 1, DSP::SourceHost));
    EXPECT_EQ(identifier(), first);
    ASSERT_TRUE(LoadText(
        State("7", String(Version1) + R"(,"Session UUID":{"Type":"String","Value":"none"})")));
    EXPECT_EQ(identifier(), first);
}
