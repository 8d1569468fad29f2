// SPDX-License-Identifier: ISC
// What a host learns of the plug-in before audio runs, and calls in an order of its own.
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <gtest/gtest.h>

#include <cmath>

using Vst3Host::Held;
using Vst3Host::Query;
using Vst3Host::Text16;
using Vst3Host::TextOf;
using Vst3Host::Id::Bypass;
using Vst3Host::Id::Strength;
using Vst3Host::Id::UpperFrequency;

namespace {

constexpr v3_tuid UnknownIid = V3_ID(0x01234567, 0x89ABCDEF, 0x01234567, 0x89ABCDEF);

constexpr v3_tuid HostEditingIid = V3_ID(0xC1271208, 0x70594098, 0xB9DD34B3, 0x6BB0195E);

class Vst3PluginTest : public testing::Test {
protected:
    Support::UserFolders folders;
};

} // namespace

TEST_F(Vst3PluginTest, TheFactorySaysTheSameInAllItsVersions)
{
    const Held<Vst3Host::IFactory> factory = Vst3Host::GetFactory();
    ASSERT_NE(factory, nullptr);
    for (const uint8_t* iid : {v3_funknown_iid,
                               v3_plugin_factory_iid,
                               v3_plugin_factory_2_iid,
                               v3_plugin_factory_3_iid}) {
        EXPECT_EQ(Query<Vst3Host::IFactory>(*factory, iid).get(), factory.get());
    }
    v3_factory_info info = {};
    v3_class_info first = {};
    v3_class_info_2 second = {};
    v3_class_info_3 third = {};
    ASSERT_EQ(factory->GetFactoryInfo(&info), V3_OK);
    ASSERT_EQ(factory->CountClasses(), 1);
    ASSERT_EQ(factory->GetClassInfo(0, &first), V3_OK);
    ASSERT_EQ(factory->GetClassInfo2(0, &second), V3_OK);
    ASSERT_EQ(factory->GetClassInfoUnicode(0, &third), V3_OK);
    EXPECT_STREQ(first.category, "Audio Module Class");
    EXPECT_STRNE(first.name, "");
    EXPECT_STREQ(second.name, first.name);
    EXPECT_EQ(TextOf(third.name), first.name);
    EXPECT_STREQ(second.sub_categories, "Fx|Restoration");
    EXPECT_STREQ(third.sub_categories, second.sub_categories);
    EXPECT_STREQ(second.vendor, info.vendor);
    EXPECT_EQ(TextOf(third.vendor), info.vendor);
    EXPECT_EQ(TextOf(third.version), second.version);
    EXPECT_TRUE(v3_tuid_match(first.class_id, second.class_id));
    EXPECT_TRUE(v3_tuid_match(first.class_id, third.class_id));
    EXPECT_TRUE(v3_tuid_match(first.class_id, Vst3Host::Id::Effect));
}

TEST_F(Vst3PluginTest, TheFactoryDeclinesWhatItDoesNotHave)
{
    const Held<Vst3Host::IFactory> factory = Vst3Host::GetFactory();
    v3_class_info info = {};
    v3_class_info_2 second = {};
    v3_class_info_3 third = {};
    for (const int32_t index : {-1, 1}) {
        EXPECT_NE(factory->GetClassInfo(index, &info), V3_OK);
        EXPECT_NE(factory->GetClassInfo2(index, &second), V3_OK);
        EXPECT_NE(factory->GetClassInfoUnicode(index, &third), V3_OK);
    }
    ASSERT_EQ(factory->GetClassInfo(0, &info), V3_OK);
    int mark = 0;
    const std::pair<const uint8_t*, const uint8_t*> cases[] = {{UnknownIid, v3_component_iid},
                                                               {info.class_id, UnknownIid},
                                                               {nullptr, v3_component_iid},
                                                               {info.class_id, nullptr}};
    for (const auto& [classId, iid] : cases) {
        void* object = &mark;
        EXPECT_NE(factory->CreateInstance(classId, iid, &object), V3_OK);
        if (classId != nullptr && iid != nullptr) {
            EXPECT_EQ(object, nullptr);
        }
    }
    EXPECT_NE(factory->CreateInstance(info.class_id, v3_component_iid, nullptr), V3_OK);
    EXPECT_EQ(factory->SetHostContext(nullptr), V3_OK);
}

TEST_F(Vst3PluginTest, EveryInterfaceLeadsToEveryOtherAndTheLastReferenceEndsThePlugin)
{
    Held<Vst3Host::IComponent> component = Vst3Host::Create(*Vst3Host::GetFactory());
    ASSERT_NE(component, nullptr);
    const std::array<const uint8_t*, 6> iids = {v3_funknown_iid,
                                                v3_plugin_base_iid,
                                                v3_component_iid,
                                                v3_audio_processor_iid,
                                                v3_process_context_requirements_iid,
                                                v3_edit_controller_iid};
    const auto unknown = Query<Vst3Host::IUnknown>(*component, v3_funknown_iid);
    for (const uint8_t* from : iids) {
        const auto start = Query<Vst3Host::IUnknown>(*component, from);
        ASSERT_NE(start, nullptr);
        EXPECT_EQ(Query<Vst3Host::IUnknown>(*start, v3_funknown_iid), unknown);
        for (const uint8_t* to : iids) {
            EXPECT_EQ(Query<Vst3Host::IUnknown>(*start, to),
                      Query<Vst3Host::IUnknown>(*component, to));
        }
        void* object = static_cast<void*>(&object);
        EXPECT_EQ(start->QueryInterface(UnknownIid, &object), V3_NO_INTERFACE);
        EXPECT_EQ(object, nullptr);
        EXPECT_NE(start->QueryInterface(from, nullptr), V3_OK);
    }
    EXPECT_EQ(component->AddRef(), 3U);
    EXPECT_EQ(component->Release(), 2U);
}

TEST_F(Vst3PluginTest, ThereIsOneBusEachWayWithWhatTheHostArranges)
{
    Vst3Host::Plugin plugin;
    ASSERT_TRUE(plugin);
    const std::tuple<uint64_t, uint64_t, uint64_t, int32_t> cases[] = {
        {Vst3Host::Mono, Vst3Host::Mono, Vst3Host::Mono, 1},
        {V3_SPEAKER_C, V3_SPEAKER_C, V3_SPEAKER_C, 1},
        {Vst3Host::Surround51, Vst3Host::Surround51, Vst3Host::Surround51, 6},
        {Vst3Host::Surround71, Vst3Host::Surround71, Vst3Host::Surround71, 8},
        {0xFF, 0xFF, 0xFF, 8}, // with speakers between those in front
        {Vst3Host::Stereo, Vst3Host::Stereo, Vst3Host::Stereo, 2},
        // What can't be leaves the input's, if that is served, else what there was.
        {Vst3Host::Mono, Vst3Host::Stereo, Vst3Host::Mono, 1},
        {0x33, 0x33, Vst3Host::Mono, 1},
        {0, 0, Vst3Host::Mono, 1},
        {~uint64_t{0}, Vst3Host::Stereo, Vst3Host::Mono, 1},
    };
    for (const auto& [inputs, outputs, result, channels] : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << inputs << " to " << outputs);
        const bool isServed = inputs == outputs && inputs == result;
        EXPECT_EQ(plugin.Arrange(inputs, outputs), isServed ? V3_OK : V3_FALSE);
        for (const int32_t direction : {V3_INPUT, V3_OUTPUT}) {
            uint64_t mask = 0;
            EXPECT_EQ(plugin.processor->GetBusArrangement(direction, 0, &mask), V3_OK);
            EXPECT_EQ(mask, result);
            v3_bus_info info = {};
            ASSERT_EQ(plugin.component->GetBusCount(V3_AUDIO, direction), 1);
            ASSERT_EQ(plugin.component->GetBusInfo(V3_AUDIO, direction, 0, &info), V3_OK);
            EXPECT_EQ(info.channel_count, channels);
            EXPECT_EQ(info.direction, direction);
            EXPECT_EQ(info.bus_type, V3_MAIN);
            EXPECT_EQ(info.flags, static_cast<uint32_t>(V3_DEFAULT_ACTIVE));
            EXPECT_NE(TextOf(info.bus_name), "");
        }
    }
    uint64_t two[2] = {Vst3Host::Stereo, Vst3Host::Stereo};
    EXPECT_EQ(plugin.processor->SetBusArrangements(two, 2, two, 1), V3_FALSE);
    EXPECT_EQ(plugin.processor->SetBusArrangements(nullptr, 0, two, 1), V3_FALSE);
    EXPECT_NE(plugin.processor->SetBusArrangements(nullptr, 1, nullptr, 1), V3_OK);
    EXPECT_NE(plugin.processor->SetBusArrangements(two, -1, two, -1), V3_OK);
}

TEST_F(Vst3PluginTest, ThereAreNoOtherBuses)
{
    Vst3Host::Plugin plugin;
    uint64_t mask = 0;
    v3_bus_info info = {};
    EXPECT_EQ(plugin.component->GetBusCount(V3_EVENT, V3_INPUT), 0);
    EXPECT_EQ(plugin.component->GetBusCount(V3_AUDIO, 2), 0);
    for (const int32_t index : {-1, 1}) {
        EXPECT_NE(plugin.component->GetBusInfo(V3_AUDIO, V3_INPUT, index, &info), V3_OK);
        EXPECT_NE(plugin.processor->GetBusArrangement(V3_INPUT, index, &mask), V3_OK);
        EXPECT_NE(plugin.component->ActivateBus(V3_AUDIO, V3_INPUT, index, 1), V3_OK);
    }
    EXPECT_EQ(plugin.component->ActivateBus(V3_AUDIO, V3_INPUT, 0, 0), V3_OK);
    EXPECT_EQ(plugin.component->ActivateBus(V3_AUDIO, V3_OUTPUT, 0, 1), V3_OK);
    EXPECT_EQ(plugin.processor->CanProcessSampleSize(V3_SAMPLE_32), V3_OK);
    EXPECT_EQ(plugin.processor->CanProcessSampleSize(V3_SAMPLE_64), V3_FALSE);
}

TEST_F(Vst3PluginTest, ParametersHaveNumbersForGoodAndOneIsTheBypass)
{
    Vst3Host::Plugin plugin;
    std::map<std::string, uint32_t> expected = {{"Sensitivity", Vst3Host::Id::Sensitivity},
                                                {"Strength", Strength},
                                                {"Frequency limit", UpperFrequency},
                                                {"Global bypass", Bypass}};
    int bypasses = 0;
    for (const v3_param_info& info : plugin.parameters) {
        const std::string title = TextOf(info.title);
        SCOPED_TRACE(title);
        ASSERT_TRUE(expected.contains(title));
        EXPECT_EQ(info.param_id, expected.extract(title).mapped());
        EXPECT_EQ(info.unit_id, 0);
        const bool isBypass = (info.flags & V3_PARAM_IS_BYPASS) != 0;
        bypasses += isBypass ? 1 : 0;
        EXPECT_EQ(info.flags, V3_PARAM_CAN_AUTOMATE | (isBypass ? V3_PARAM_IS_BYPASS : 0));
        EXPECT_EQ(info.step_count, isBypass ? 1 : 0);
        EXPECT_EQ(plugin.controller->GetValue(info.param_id), info.default_normalised_value);
    }
    EXPECT_TRUE(expected.empty());
    EXPECT_EQ(bypasses, 1);
    v3_param_info info = {};
    EXPECT_NE(plugin.controller->GetParameterInfo(-1, &info), V3_OK);
    EXPECT_NE(plugin.controller->GetParameterInfo(4, &info), V3_OK);
}

TEST_F(Vst3PluginTest, ValuesAreTextAndPlainNumbersBothWays)
{
    Vst3Host::Plugin plugin;
    Vst3Host::IEditController& controller = *plugin.controller;
    const std::tuple<uint32_t, double, double, const char*> cases[] = {
        {Strength, 0.0, 0.0, "0.00"},
        {Strength, 0.75, 7.5, "7.50"},
        {UpperFrequency, 0.5, 275.0, "275.0"},
        {UpperFrequency, 1.0, 500.0, "500.0"},
        {Bypass, 0.0, 0.0, "off"},
        {Bypass, 1.0, 1.0, "on"},
    };
    for (const auto& [id, normalised, plain, text] : cases) {
        SCOPED_TRACE(testing::Message() << id << ": " << text);
        v3_str_128 field = {};
        ASSERT_EQ(controller.GetStringByValue(id, normalised, field), V3_OK);
        EXPECT_EQ(TextOf(field), text);
        double back = -1;
        ASSERT_EQ(controller.GetValueByString(id, field, &back), V3_OK);
        EXPECT_NEAR(back, normalised, 1e-6);
        EXPECT_NEAR(controller.ToPlain(id, normalised), plain, 1e-4);
        EXPECT_NEAR(controller.ToNormalised(id, plain), normalised, 1e-6);
    }
    double value = -1;
    EXPECT_EQ(controller.GetValueByString(UpperFrequency, Text16("60 Hz").data(), &value), V3_OK);
    EXPECT_NEAR(controller.ToPlain(UpperFrequency, value), 60.0, 1e-4);
    for (const char* text : {"", "loud", "5 dB"}) {
        EXPECT_NE(controller.GetValueByString(Strength, Text16(text).data(), &value), V3_OK);
    }
    // A character beyond the first 65536, and halves of one alone.
    for (std::basic_string<int16_t> text :
         {std::basic_string<int16_t>{static_cast<int16_t>(0xD83D), static_cast<int16_t>(0xDE00)},
          std::basic_string<int16_t>{static_cast<int16_t>(0xD83D)},
          std::basic_string<int16_t>{static_cast<int16_t>(0xDE00), '1'}}) {
        EXPECT_NE(controller.GetValueByString(Strength, text.data(), &value), V3_OK);
    }
}

TEST_F(Vst3PluginTest, NumbersThatAreNoneAreRefusedOrBroughtIntoTheRange)
{
    Vst3Host::Plugin plugin;
    Vst3Host::IEditController& controller = *plugin.controller;
    v3_str_128 field = {};
    double value = 0;
    for (const double number : {-1e300, 1e300, std::nan("")}) {
        EXPECT_EQ(controller.SetValue(Strength, number) == V3_OK, !std::isnan(number));
        EXPECT_EQ(controller.GetStringByValue(Strength, number, field), V3_OK);
        EXPECT_TRUE(std::isfinite(controller.ToPlain(Strength, number)));
        EXPECT_TRUE(std::isfinite(controller.ToNormalised(Strength, number)));
    }
    EXPECT_EQ(controller.SetValue(Strength, 0.123456789), V3_OK);
    EXPECT_EQ(controller.GetValue(Strength), 0.123456789) << "finer than the module keeps it";
    EXPECT_NE(controller.SetValue(1, 0.5), V3_OK);
    EXPECT_EQ(controller.GetValue(1), 0.0);
    EXPECT_NE(controller.GetStringByValue(1, 0.5, field), V3_OK);
    EXPECT_NE(controller.GetValueByString(1, field, &value), V3_OK);
    EXPECT_NE(controller.GetStringByValue(Strength, 0.5, nullptr), V3_OK);
}

TEST_F(Vst3PluginTest, CallsBeforeTheBeginningAndAfterTheEndAreRefused)
{
    const Held<Vst3Host::IComponent> component = Vst3Host::Create(*Vst3Host::GetFactory());
    const auto processor = Query<Vst3Host::IAudioProcessor>(*component, v3_audio_processor_iid);
    const auto controller = Query<Vst3Host::IEditController>(*component, v3_edit_controller_iid);
    for (int round = 0; round < 2; ++round) {
        Vst3Host::Stream stream({1, 2, 3});
        v3_param_info info = {};
        v3_str_128 text = {};
        double value = 0;
        v3_process_data data = {};
        EXPECT_NE(component->SetActive(1), V3_OK);
        EXPECT_NE(component->SetState(&stream), V3_OK);
        EXPECT_NE(component->GetState(&stream), V3_OK);
        EXPECT_NE(processor->SetProcessing(1), V3_OK);
        EXPECT_NE(processor->Process(&data), V3_OK);
        EXPECT_EQ(processor->GetLatencySamples(), 0U);
        EXPECT_EQ(controller->GetParameterCount(), 0);
        EXPECT_NE(controller->GetParameterInfo(0, &info), V3_OK);
        EXPECT_NE(controller->SetValue(Strength, 0.5), V3_OK);
        EXPECT_NE(controller->GetStringByValue(Strength, 0.5, text), V3_OK);
        EXPECT_NE(controller->GetValueByString(Strength, text, &value), V3_OK);
        EXPECT_NE(controller->SetComponentState(&stream), V3_OK);
        EXPECT_EQ(controller->CreateView("editor"), nullptr);
        EXPECT_EQ(component->Terminate(), V3_OK);

        // Rates and arrangements may come early, and the second beginning is none.
        v3_process_setup setup = {V3_OFFLINE, V3_SAMPLE_32, 512, 96000};
        EXPECT_EQ(processor->SetupProcessing(&setup), V3_OK);
        for (const double none : {1.0, 1e9, std::nan("")}) {
            setup.sample_rate = none;
            EXPECT_NE(processor->SetupProcessing(&setup), V3_OK) << none;
        }
        EXPECT_EQ(component->Initialize(nullptr), V3_OK);
        EXPECT_EQ(controller->Initialize(nullptr), V3_FALSE);
        EXPECT_GT(processor->GetLatencySamples(), 0U);
        EXPECT_EQ(controller->GetParameterCount(), 4);
        EXPECT_NE(component->SetState(nullptr), V3_OK);
        EXPECT_NE(component->GetState(nullptr), V3_OK);
        EXPECT_NE(processor->Process(nullptr), V3_OK);
        EXPECT_NE(processor->SetupProcessing(nullptr), V3_OK);
        EXPECT_EQ(component->SetActive(1), V3_OK);
        EXPECT_EQ(component->Terminate(), V3_OK);
    }
}

TEST_F(Vst3PluginTest, ATouchInTheHostsOwnViewIsAStepOfTheUndoHistory)
{
    {
        Vst3Host::Plugin plugin;
        const auto editing = Query<Vst3Host::IHostEditing>(*plugin.controller, HostEditingIid);
        ASSERT_NE(editing, nullptr);
        EXPECT_EQ(editing->BeginEditFromHost(Strength), V3_OK);
        EXPECT_EQ(plugin.controller->SetValue(Strength, 0.6), V3_OK);
        EXPECT_EQ(plugin.controller->SetValue(Strength, 0.7), V3_OK);
        EXPECT_EQ(editing->EndEditFromHost(Strength), V3_OK);
        EXPECT_EQ(editing->BeginEditFromHost(12345), V3_INVALID_ARG);
    }
    const std::string file =
        Support::ReadText(folders.Home() / "data/Norvane/LM6Pfgd/QoLM6Pfgd.hst");
    EXPECT_NE(file.find("Strength: 7.0"), std::string::npos);
    EXPECT_EQ(file.find("Strength: 6.0"), std::string::npos);
}
