// SPDX-License-Identifier: ISC
// What the selectors write into their records, and what they leave alone.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

using namespace TestHost;

/// The description record, built by offsets alone so that a wrong struct shows as well.
class RawInfo {
public:
    void Text(std::size_t offset, std::string_view text)
    {
        std::memcpy(bytes.data() + offset, text.data(), text.size());
    }
    void Word(std::size_t offset, uint32_t word)
    {
        std::memcpy(bytes.data() + offset, &word, sizeof word);
    }
    std::array<unsigned char, 7760> bytes{};
};

RawInfo ExpectedInfo()
{
    RawInfo info;
    info.Text(0, "Norvane");
    info.Text(64, "Norvane, Inc.");
    info.Text(320, "com.norvane.audioplugins");
    info.Text(576, "LM6Pfgd");
    info.Text(640, "LM 6 Puff-guard");
    info.Text(704, "LM 6 Puff-guard");
    info.Text(960, "6.00");
    info.Word(1024, 6000);
    info.Word(1028, 1210);
    info.Word(1032, 3589173);
    info.Word(1036, 1);
    info.Word(1040, 1); // has an editor
    info.Word(1068, 1); // option 33
    info.Word(1076, 1); // option 35
    info.Word(1128, 1); // option 48
    info.Word(1140, 1); // option 110
    info.Word(1144, 1); // bypass: there is no side chain
    info.Word(1148, 440);
    info.Word(1152, 264);
    info.Text(2184, "LM6Pfgd");
    info.Word(2300, 0x576E3642); // "Wn6B"
    info.Word(2304, 1024);
    info.Text(2308, "Norvane, Inc.\nNorvane Inc\nNorvane\nQotp\nQo");
    info.Word(3332, 0x516F7470); // "Qotp"
    info.Text(3336, "LM 6 Puff-guard\nLM6Puffguard\nLM6Pufg\nPg");
    info.Word(6408, 0x57364230); // "W6B0"
    info.Word(6412, 128);
    info.Word(6416, 1); // option 87
    info.Word(6424, 1); // option 86
    info.Word(6516, 1); // stand-alone
    info.Text(6520, "LEARN");
    info.Text(6584, "LM6PUFFGUARD");
    info.Word(6648, 0x61756678); // "aufx"
    info.Word(6652, 0x516F7470);
    info.Word(6656, 0x576E3642);
    info.Text(6660, "LM 6 Puff-guard");
    info.Word(6724, 0x516F7470);
    info.Word(6728, 0x576E3642);
    info.Text(6736,
              "/Restoration/plugin_LM_Puffguard/build/win_vc100/Win32/"
              "Debug CRTStatic DLL_LMPuffguardPlugin");
    return info;
}

TEST(PluginInfo, IsTheProductsToTheByte)
{
    const RawInfo expected = ExpectedInfo();
    std::array<unsigned char, 7760 + 16> written{};
    written.fill(0xAA);
    PluginInfoRequest request{};
    request.info = reinterpret_cast<PluginInfoRecord*>(written.data());
    std::memset(request.identity.options, 'x', sizeof request.identity.options);
    ASSERT_EQ(Call(SelectorGetPluginInfo, UI, nullptr, &request), PluginCoreSuccess);
    EXPECT_EQ(request.identity.options[1023], '\0');
    EXPECT_EQ(request.identity.options[1022], 'x');
    for (std::size_t i = 0; i < expected.bytes.size(); ++i) {
        ASSERT_EQ(written[i], expected.bytes[i]) << "offset " << i;
    }
    for (std::size_t i = expected.bytes.size(); i < written.size(); ++i) {
        ASSERT_EQ(written[i], 0xAA) << "behind the record, offset " << i;
    }
}

class Records : public testing::Test {
protected:
    uint32_t Ask(uint32_t selector, void* record, uint32_t context = UI)
    {
        return Call(selector, context, instance.Get(), record);
    }

    template <typename Row>
    std::vector<Row> ReadList(uint32_t selector, uint32_t count)
    {
        std::vector<Row> rows(count);
        ParamListRecord record{count, 0, rows.data()};
        EXPECT_EQ(Ask(selector, &record), PluginCoreSuccess);
        return rows;
    }

    Instance instance{44100.0F, 1};
};

using ParamLists = Records;
using ParamValues = Records;
using ElementCommand = Records;
using EditorCommand = Records;
using StateCommands = Records;
using OtherRecords = Records;

TEST_F(ParamLists, HoldTheAutomatableRowsInOrder)
{
    uint32_t count = 0;
    Ask(SelectorGetAutomatableParamCount, &count);
    ASSERT_EQ(count, 4U);
    const auto rows = ReadList<ParamInfoRecord>(SelectorGetAutomatableParamList, count);
    EXPECT_STREQ(rows[0].displayName, "Sensitivity");
    EXPECT_STREQ(rows[1].displayName, "Strength");
    EXPECT_STREQ(rows[2].displayName, "Frequency limit [Hz]");
    EXPECT_STREQ(rows[3].displayName, "Global bypass");
    EXPECT_STREQ(rows[0].identifier, "PuffGuard.Sensitivity");
    EXPECT_STREQ(rows[3].identifier, "Global.Global Bypass");
    EXPECT_EQ(rows[0].type, ParamTypeFloat);
    EXPECT_EQ(rows[3].type, ParamTypeBool);
    EXPECT_EQ(rows[2].minimum, 50.0F);
    EXPECT_EQ(rows[2].maximum, 500.0F);
    EXPECT_EQ(rows[2].defaultValue, 200.0F);
}

TEST_F(ParamLists, HoldEveryElementsParametersAndTellWhichAreAutomatable)
{
    uint32_t count = 0;
    Ask(SelectorGetElementParamCount, &count);
    ASSERT_EQ(count, 11U);
    const auto rows = ReadList<ElementParamInfoRecord>(SelectorGetElementParamList, count);
    // Position in the automatable list of each row, -1 for none.
    constexpr std::array<int, 11> Automatable{3, -1, -1, -1, -1, -1, -1, 0, 1, 2, -1};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const bool listed = Automatable[i] >= 0;
        EXPECT_EQ(rows[i].info.isAutomatable, listed ? 1U : 0U) << i;
        EXPECT_EQ(rows[i].info.isAutomatable2, listed ? 1U : 0U) << i;
        if (listed) {
            EXPECT_EQ(rows[i].info.automatableIndex, static_cast<uint32_t>(Automatable[i])) << i;
        }
        EXPECT_EQ(rows[i].elementIndex, i < 7 ? 0U : 1U) << i;
    }
    EXPECT_STREQ(rows[4].info.displayName, "Global History Depth Index");
    EXPECT_STREQ(rows[10].info.displayName, "PuffGuard Latency Scaling");
    EXPECT_STREQ(rows[4].info.labels, "50\t100\t500\tUnlimited");
    EXPECT_EQ(rows[4].info.type, ParamTypeEnum);
    EXPECT_EQ(rows[4].info.steps, 4U);
}

TEST_F(ParamLists, RefuseAWrongCountAndWriteNothing)
{
    for (const auto& [selector, real] : {std::pair{9U, 4U}, std::pair{13U, 11U}}) {
        for (const uint32_t count : {0U, real - 1, real + 1, 0xFFFFFFFFU}) {
            std::vector<ElementParamInfoRecord> rows(12);
            std::memset(rows.data(), 0x55, rows.size() * sizeof rows[0]);
            const auto before = rows;
            ParamListRecord record{count, 0, rows.data()};
            EXPECT_EQ(Ask(selector, &record), PluginCoreUnsupported);
            EXPECT_EQ(std::memcmp(before.data(), rows.data(), rows.size() * sizeof rows[0]), 0);
        }
        ParamListRecord record{real, 0, nullptr};
        EXPECT_EQ(Ask(selector, &record), PluginCoreNullRecord);
    }
}

TEST_F(ParamValues, AreRefusedBehindTheEndOfTheList)
{
    for (const uint32_t index : {4U, 11U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        for (const uint32_t selector : {10U, 11U, 14U, 15U}) {
            ParamValueRecord record{index, 0.25F};
            const bool inElementList = index < 11 && selector >= 14;
            EXPECT_EQ(Ask(selector, &record),
                      inElementList ? PluginCoreSuccess : PluginCoreUnsupported)
                << selector << " " << index;
        }
    }
}

TEST_F(ParamValues, AreNormalisedLinearlyAndSwitchesGoByTheHalf)
{
    EXPECT_EQ(instance.Value(Sensitivity), 0.5F);                     // 5 of 0 to 10
    EXPECT_FLOAT_EQ(instance.Value(UpperFrequency), 150.0F / 450.0F); // 200 of 50 to 500
    EXPECT_EQ(instance.Value(GlobalBypass), 0.0F);
    instance.Set(GlobalBypass, 0.5F); // a bool is set from one half on
    EXPECT_EQ(instance.Value(GlobalBypass), 1.0F);
    instance.Set(GlobalBypass, 0.49F);
    EXPECT_EQ(instance.Value(GlobalBypass), 0.0F);
}

TEST_F(ParamValues, OneParameterIsSeenThroughBothListsAndContexts)
{
    instance.SetElement(8, 0.125F); // strength, by the flat list
    EXPECT_FLOAT_EQ(instance.Value(Strength, UI), 0.125F);
    Audio audio(1, std::vector<float>(64));
    instance.Run(audio, 64);
    EXPECT_FLOAT_EQ(instance.Value(Strength, Process), 0.125F);
    instance.Set(Strength, 1.0F, Process);
    EXPECT_EQ(instance.Value(Strength, Process), 1.0F);
}

TEST_F(ElementCommand, NamesTheElementsOfTheSet)
{
    ElementRecord record{};
    record.op = ElementOpGetCount;
    ASSERT_EQ(Ask(SelectorElementCommand, &record), PluginCoreSuccess);
    ASSERT_EQ(record.count, 2U);
    std::vector<std::string> names;
    record.op = ElementOpGetElement;
    for (record.index = 0; record.index < 2; ++record.index) {
        record.element = nullptr;
        ASSERT_EQ(Ask(SelectorElementCommand, &record), PluginCoreSuccess);
        EXPECT_NE(record.element, nullptr);
        names.emplace_back(record.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Global", "PuffGuard"}));
    EXPECT_EQ(Ask(SelectorElementCommand, &record), PluginCoreUnsupported);
    record.index = 0;
    record.count = 1;
    EXPECT_EQ(Ask(SelectorElementCommand, &record), PluginCoreUnsupported);
    record.op = 6;
    EXPECT_EQ(Ask(SelectorElementCommand, &record), PluginCoreUnsupported);
}

TEST_F(ElementCommand, TheObserverStandsAroundEachElementsReset)
{
    std::vector<std::pair<void*, uint32_t>> seen;
    ElementRecord record{};
    record.op = ElementOpSetObserver;
    record.observer = [](void* context, void* element, uint32_t begins) {
        static_cast<decltype(seen)*>(context)->emplace_back(element, begins);
    };
    record.observerContext = &seen;
    ASSERT_EQ(Ask(SelectorElementCommand, &record), PluginCoreSuccess);
    instance.Settle();
    ASSERT_EQ(seen.size(), 4U);
    for (std::size_t i = 0; i < seen.size(); i += 2) {
        EXPECT_EQ(seen[i].second, 1U);
        EXPECT_EQ(seen[i + 1].second, 0U);
        EXPECT_EQ(seen[i].first, seen[i + 1].first);
    }
    record.observer = nullptr;
    Ask(SelectorElementCommand, &record);
    instance.Settle();
    EXPECT_EQ(seen.size(), 4U);
}

TEST_F(EditorCommand, WithoutAnEditorAnswersAsThereIsNone)
{
    for (int32_t op = 0; op <= 11; ++op) {
        EditorRecord record{};
        record.op = op;
        record.handled = 1;
        record.width = 10'000;
        record.height = 1;
        EXPECT_EQ(Ask(SelectorEditorCommand, &record),
                  op == EditorOpOpen ? PluginCoreNoEditor : PluginCoreSuccess)
            << op;
        if (op == EditorOpCanClose) {
            EXPECT_EQ(record.result, 1U);
        }
        if (op == EditorOpWindowMessage) {
            EXPECT_EQ(record.handled, 0U);
        }
        if (op == EditorOpConstrainSize) {
            EXPECT_EQ(record.width, 440);
            EXPECT_EQ(record.height, 264);
        }
        if (op == EditorOpGetScale) {
            EXPECT_EQ(record.scale, 0U);
            EXPECT_EQ(record.result, 1U);
        }
    }
    for (const int32_t op : {-1, 12, 1000}) {
        EditorRecord record{};
        record.op = op;
        EXPECT_EQ(Ask(SelectorEditorCommand, &record), PluginCoreUnsupported);
    }
    EditorKeyRecord key{};
    key.handled = 1;
    Ask(SelectorEditorKey, &key);
    EXPECT_EQ(key.handled, 0U);
    EditorMouseRecord mouse{};
    mouse.handled = 1;
    Ask(SelectorEditorMouse, &mouse);
    EXPECT_EQ(mouse.handled, 0U);
    ParamAtPointRecord point{1, 1, 0, 1};
    Ask(SelectorGetParamAtPoint, &point);
    EXPECT_EQ(point.found, 0U);
}

TEST_F(StateCommands, AreFiveOperationsThatTellNoStateFromOne)
{
    for (int32_t op = -1; op <= 9; ++op) {
        // Four bytes that are no state: too short to hold anything.
        uint32_t chunk = 0;
        StateRecord record{};
        record.op = op;
        record.buffer = &chunk;
        record.size = sizeof chunk;
        EXPECT_EQ(Ask(SelectorStateCommand, &record),
                  op >= 0 && op <= 4 ? PluginCoreSuccess : PluginCoreUnsupported)
            << op;
        if (op == StateOpSetChunk || op == StateOpCompareChunk) {
            EXPECT_EQ(record.failed, 1) << op;
        }
    }
}

TEST_F(StateCommands, SizeAndChunkBelongTogether)
{
    StateRecord record{};
    record.op = StateOpGetSize;
    ASSERT_EQ(Ask(SelectorStateCommand, &record), PluginCoreSuccess);
    const uint32_t size = record.size;
    std::vector<uint8_t> buffer;
    for (record.op = StateOpGetCompareChunk; record.op >= StateOpGetChunk; --record.op) {
        for (const uint32_t place : {0U, 3U, 4U, size - 1, size, size + 1}) {
            buffer.assign(size + 8, 0xEE);
            record.buffer = buffer.data();
            record.size = place;
            Ask(SelectorStateCommand, &record);
            EXPECT_EQ(record.failed, place == size ? 0 : 1) << record.op << " " << place;
            for (std::size_t i = std::min(place, size); i < buffer.size(); ++i) {
                ASSERT_EQ(buffer[i], 0xEE) << record.op << " " << place << " " << i;
            }
        }
        record.buffer = nullptr;
        record.size = size;
        Ask(SelectorStateCommand, &record);
        EXPECT_EQ(record.failed, 1);
    }
    EXPECT_EQ(instance.SaveState(), instance.SaveState()) << "the same values give the same bytes";
    // Hosts take "equal" for "the session is saved", and rely on it for any chunk of today.
    std::vector<uint8_t> chunk = instance.SaveState();
    instance.Set(Strength, 0.9F);
    for (const uint32_t missing : {0U, 1U}) {
        record = {};
        record.op = StateOpCompareChunk;
        record.buffer = chunk.data();
        record.size = size - missing;
        record.version = 1;
        record.equal = 9;
        Ask(SelectorStateCommand, &record);
        EXPECT_EQ(record.failed, static_cast<int32_t>(missing));
        EXPECT_EQ(record.equal, missing == 0 ? 1U : 9U) << "only a comparison that was made tells";
    }
}

TEST_F(OtherRecords, ThereAreNoExtensions)
{
    uint32_t extensions = 9;
    EXPECT_EQ(Ask(SelectorGetExtensionCount, &extensions), PluginCoreSuccess);
    EXPECT_EQ(extensions, 0U);
}

TEST_F(OtherRecords, AHostMessageIsTakenWhenItIsForTheModule)
{
    for (const auto& [message, answer] : {std::pair{2154864642U, PluginCoreSuccess},
                                          std::pair{2147820476U, PluginCoreNoEditor},
                                          std::pair{1U, PluginCoreUnsupported}}) {
        for (const uint32_t context : {Process, UI}) {
            HostMessageRecord record{message, 0, nullptr};
            EXPECT_EQ(Ask(SelectorHostMessage, &record, context), answer);
        }
    }
}

TEST_F(OtherRecords, TheAllocationTraceHasAStrideOf200AndNothingElse)
{
    uint32_t count = 9;
    uint32_t stride = 9;
    uint32_t words = 9;
    uint64_t construct = 9;
    uint64_t editor = 9;
    AllocationTraceRecord record{&count, &stride, &words, nullptr, &construct, &editor};
    EXPECT_EQ(Ask(SelectorGetAllocationTrace, &record), PluginCoreSuccess);
    EXPECT_EQ(stride, 200U);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(words, 0U);
    EXPECT_EQ(editor, 0U);
}

} // namespace
