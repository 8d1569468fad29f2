// SPDX-License-Identifier: ISC
// Every selector, context, instance and record as hosts get them wrong. The table below is written
// from the protocol's rules: magic, selector, instance, record, context are tested in this order.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace {

using namespace TestHost;

enum class Contexts { ProcessOnly, UIOnly, Both, Any };
enum class Needs { Nothing, Record, RecordAfterContext, Unchecked };

struct Rule {
    uint32_t first; // selector
    uint32_t last;
    Contexts contexts;
    Needs record;
    uint32_t answer = PluginCoreSuccess; ///< with everything right
};

// Selectors that work on an instance; 7 ends one and has tests of its own.
constexpr std::array Rules{
    Rule{2, 2, Contexts::Both, Needs::RecordAfterContext},
    Rule{3, 6, Contexts::Both, Needs::Nothing},
    Rule{8, 20, Contexts::Both, Needs::Record},
    Rule{21, 21, Contexts::ProcessOnly, Needs::Nothing},
    Rule{22, 23, Contexts::ProcessOnly, Needs::Record},
    Rule{24, 24, Contexts::Any, Needs::RecordAfterContext},
    Rule{25, 25, Contexts::Any, Needs::Unchecked},
    Rule{26, 26, Contexts::Any, Needs::Nothing},
    Rule{27, 27, Contexts::Any, Needs::Record},
    Rule{28, 32, Contexts::UIOnly, Needs::Record},
    Rule{33, 34, Contexts::Both, Needs::Record},
    Rule{35, 36, Contexts::Both, Needs::Record, PluginCoreUnsupported},
    Rule{37, 39, Contexts::Both, Needs::Record},
};

bool Allows(Contexts contexts, uint32_t context)
{
    switch (contexts) {
    case Contexts::ProcessOnly:
        return context == 0;
    case Contexts::UIOnly:
        return context == 1;
    case Contexts::Both:
        return context <= 1;
    case Contexts::Any:
        return true;
    }
    return false;
}

uint32_t Expected(const Rule& rule, uint32_t context, bool hasInstance, bool hasRecord)
{
    if (!hasInstance) {
        return PluginCoreNullInstance;
    }
    if (!hasRecord && rule.record == Needs::Record) {
        return PluginCoreNullRecord;
    }
    if (!Allows(rule.contexts, context)) {
        return PluginCoreWrongContext;
    }
    if (!hasRecord && rule.record == Needs::RecordAfterContext) {
        return PluginCoreNullRecord;
    }
    return rule.answer;
}

/// A record that is right for its selector: zeros, but for what must point or count.
class GoodRecord {
public:
    explicit GoodRecord(uint32_t selector)
    {
        switch (selector) {
        case SelectorGetAllocationTrace:
            Put(AllocationTraceRecord{
                words.data(), &words[1], &words[2], nullptr, longs.data(), &longs[1]});
            break;
        case SelectorGetAutomatableParamList:
            Put(ParamListRecord{4, 0, params.data()});
            break;
        case SelectorGetElementParamList:
            Put(ParamListRecord{11, 0, params.data()});
            break;
        case SelectorSetStreamFormat:
            Put(StreamFormatRecord{48000.0F, 1});
            break;
        case SelectorEditorCommand:
            Put(int32_t{EditorOpCanClose}); // the operation stands first
            break;
        case SelectorHostMessage:
            Put(HostMessageRecord{
                2154864642U, 0, nullptr}); // the message that is taken and ignored
            break;
        default:
            break;
        }
    }
    void* Get() { return bytes.data(); }

private:
    template <typename Record>
    void Put(const Record& record)
    {
        std::memcpy(bytes.data(), &record, sizeof record);
    }

    alignas(16) std::array<std::byte, 8192> bytes{};
    std::array<uint32_t, 3> words{};
    std::array<uint64_t, 2> longs{};
    std::vector<ElementParamInfoRecord> params = std::vector<ElementParamInfoRecord>(11);
};

constexpr std::array<uint32_t, 4> ContextsTried{0, 1, 2, 0xFFFFFFFFU};

TEST(Selectors, AnswerEveryCombinationByTheirCode)
{
    for (uint32_t tried = 0; tried < ContextsTried.size() * 4; ++tried) {
        const uint32_t context = ContextsTried[tried / 4];
        const bool hasInstance = tried % 4 / 2 != 0;
        const bool hasRecord = tried % 2 != 0;
        for (const Rule& rule : Rules) {
            if (rule.record == Needs::Unchecked && hasInstance && !hasRecord) {
                continue; // reading a null record is the caller's fault, by contract
            }
            for (uint32_t selector = rule.first; selector <= rule.last; ++selector) {
                Instance instance(44100.0F, 1);
                GoodRecord record(selector);
                EXPECT_EQ(Call(selector,
                               context,
                               hasInstance ? instance.Get() : nullptr,
                               hasRecord ? record.Get() : nullptr),
                          Expected(rule, context, hasInstance, hasRecord))
                    << selector << ", context " << context << ", instance " << hasInstance
                    << ", record " << hasRecord;
            }
        }
    }
}

TEST(Entry, TestsTheMagicNumberBeforeAnythingElse)
{
    for (const uint32_t magic : {0U, 1076U, 1078U, 0xFFFFFFFFU}) {
        for (uint32_t selector = 0; selector < 42; ++selector) {
            EXPECT_EQ(Entry()(magic, selector, 7, nullptr, nullptr), PluginCoreWrongMagic);
        }
    }
}

TEST(Entry, KnowsNoSelectorAbove39)
{
    Instance instance(44100.0F, 1);
    GoodRecord record(40);
    for (const uint32_t selector : {40U, 41U, 1000U, 0xFFFFFFFFU}) {
        for (const uint32_t context : ContextsTried) {
            EXPECT_EQ(Call(selector, context, nullptr, nullptr), PluginCoreUnknownSelector);
            EXPECT_EQ(Call(selector, context, instance.Get(), record.Get()),
                      PluginCoreUnknownSelector);
        }
    }
}

TEST(Entry, DescribesAndCreatesInAnyContextWithoutAnInstance)
{
    auto info = std::make_unique<PluginInfoRecord>();
    for (const uint32_t context : ContextsTried) {
        PluginInfoRequest request{};
        EXPECT_EQ(Call(SelectorGetPluginInfo, context, nullptr, nullptr), PluginCoreNullRecord);
        EXPECT_EQ(Call(SelectorGetPluginInfo, context, nullptr, &request), PluginCoreNullRecord);
        request.info = info.get();
        EXPECT_EQ(Call(SelectorGetPluginInfo, context, nullptr, &request), PluginCoreSuccess);

        PluginCore* instance = nullptr;
        CreateRecord create{};
        EXPECT_EQ(Call(SelectorCreatePlugin, context, nullptr, nullptr), PluginCoreNullRecord);
        EXPECT_EQ(Call(SelectorCreatePlugin, context, nullptr, &create), PluginCoreNullRecord);
        create.instance = &instance;
        EXPECT_EQ(Call(SelectorCreatePlugin, context, nullptr, &create), PluginCoreSuccess);
        ASSERT_NE(instance, nullptr);
        EXPECT_EQ(Call(SelectorDestroyPlugin, context, instance, nullptr), PluginCoreSuccess);
        EXPECT_EQ(Call(SelectorDestroyPlugin, context, nullptr, nullptr), PluginCoreNullInstance);
    }
}

} // namespace
