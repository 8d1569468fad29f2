// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "tests/wrappers/common/support/ModuleTest.h"
#include "wrappers/common/Editor.h"

#include <algorithm>

namespace {

struct InstanceTest : ModuleTest {
    const std::unique_ptr<Wrapper::Instance> instance = Create(FAKE_MODULE);
};

} // namespace

TEST_F(InstanceTest, AStateThatGrowsWhileItIsSavedIsSavedWhole)
{
    EXPECT_EQ(instance->SaveState(), (std::vector<uint8_t>{'a', 'b', 'c'}));
}

TEST_F(InstanceTest, FromARefusedPieceOnABlockStaysAsItWas)
{
    constexpr uint32_t Piece = Wrapper::BlockBuffers::PieceFrames;
    for (const uint32_t refused : {0U, Piece}) {
        std::vector<float> input(3 * Piece, 0.25F);
        input[refused] = 2.0F; // is refused
        std::vector<float> expected = input;
        std::fill_n(expected.begin(), refused, -0.25F);
        std::vector<float> output(input.size());
        const float* inputs[2] = {input.data(), input.data()};
        float* outputs[2] = {output.data(), nullptr}; // so that it goes in pieces
        EXPECT_FALSE(instance->Process({inputs, outputs, 3 * Piece}, std::nullopt));
        EXPECT_EQ(output, expected);
    }
    EXPECT_TRUE(logged.empty()); // no log on the audio thread
}

TEST_F(InstanceTest, AModuleThatRefusesToBeginMakesNoInstanceAndTheLogSaysWhy)
{
    const std::pair<uint32_t, const char*> cases[] = {
        {SelectorCreatePlugin, "the module makes no instance (answer 6)"},
        {SelectorInitialize, "the module refuses to be initialised (answer 6)"},
        {SelectorGetAutomatableParamCount, "the module refuses to count its parameters (answer 6)"},
        {SelectorGetAutomatableParamList, "the module refuses to list its parameters (answer 6)"},
    };
    for (const auto& [selector, line] : cases) {
        Refuse(selector);
        EXPECT_EQ(Create(FAKE_MODULE), nullptr);
        EXPECT_EQ(logged, std::vector<std::string>{line});
    }
}

TEST_F(InstanceTest, AnEditorIsOpenedOnceAndClosedOnce)
{
    int window = 0;
    {
        Wrapper::Editor editor(*instance);
        EXPECT_FALSE(editor.Open(nullptr, 0));
    }
    {
        Wrapper::Editor editor(*instance);
        EXPECT_EQ(editor.GetNativeWindow(), 0U);
        EXPECT_TRUE(editor.Open(&window, 0));
        EXPECT_TRUE(editor.Open(&window, 0));
        EXPECT_EQ(editor.GetNativeWindow(), 1U); // the fake counts its windows
        editor.Close();
        EXPECT_EQ(editor.GetNativeWindow(), 0U);
    }
    EditorRecord record = {};
    record.op = EditorOpGetNativeWindow;
    instance->CallEditor(record);
    EXPECT_EQ(record.nativeWindow, 0U);
}
