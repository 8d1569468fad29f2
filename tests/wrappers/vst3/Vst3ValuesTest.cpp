// SPDX-License-Identifier: ISC
// Who has the last word on a value, on a module that says which one it takes.
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <functional>

using Vst3Host::Changes;

namespace {

constexpr double First = 0.0; // of a new instance
constexpr double OfUi = 0.875;
constexpr double OfHost = 0.125;

class Vst3ValuesTest : public testing::Test {
protected:
    Vst3ValuesTest()
    {
        setenv("PUFFGUARD_MODULE", USER_MODULE, 1);
        module = dlopen(USER_MODULE, RTLD_NOW | RTLD_LOCAL);
        stepIn = static_cast<std::function<void()>*>(dlsym(module, "userModuleStepIn"));
        turn = reinterpret_cast<float (*)(float)>(dlsym(module, "TurnUserModule"));
        plugin = std::make_unique<Vst3Host::Plugin>(1);
        id = plugin->parameters.at(0).param_id;
        transport.state = 0;
    }
    ~Vst3ValuesTest() override
    {
        *stepIn = nullptr;
        plugin.reset();
        dlclose(module);
        unsetenv("PUFFGUARD_MODULE");
    }

    void Play(bool isPlaying) { transport.state = isPlaying ? V3_PROCESS_CTX_PLAYING : 0; }
    /// The value that a block ends with; `points` come at its beginning.
    double Run(const std::vector<double>& points = {}, uint32_t frames = 16)
    {
        Changes changes;
        for (const double point : points) {
            changes.Add(id, {{0, point}});
        }
        std::vector<float> audio(frames, -1.0F);
        float* channels[1] = {audio.data()};
        plugin->Send(channels, channels, frames, {&changes, nullptr, &transport});
        return frames > 0 ? static_cast<double>(audio.back()) : -1.0;
    }
    void Show(double value) { EXPECT_EQ(plugin->controller->SetValue(id, value), V3_OK); }
    double Saved() { return plugin->Save().back() / 8.0; }

    Support::UserFolders folders;
    void* module = nullptr;
    std::function<void()>* stepIn = nullptr; // called while the UI side sets
    float (*turn)(float) = nullptr;          // plays the user
    v3_process_context transport = {};
    std::unique_ptr<Vst3Host::Plugin> plugin;
    uint32_t id = 0;
};

} // namespace

TEST_F(Vst3ValuesTest, APointStaysWhateverTheUiSideHasSetBefore)
{
    Show(OfUi);
    const std::vector<uint8_t> session = plugin->Save();
    const struct {
        const char* name;
        std::function<void()> set;
        bool isPlaying;
    } cases[] = {
        {"a value", [this] { Show(OfUi); }, false},
        {"a session", [&] { EXPECT_EQ(plugin->LoadComponent(session), V3_OK); }, false},
        {"a session while playing",
         [&] { EXPECT_EQ(plugin->LoadComponent(session), V3_OK); },
         true},
        {"a session for the controller",
         [&] { EXPECT_EQ(plugin->LoadController(session), V3_OK); },
         false},
        {"the user", [this] { turn(static_cast<float>(OfUi)); }, false},
        {"the user while playing", [this] { turn(static_cast<float>(OfUi)); }, true},
    };
    for (const auto& [name, set, isPlaying] : cases) {
        SCOPED_TRACE(name);
        Play(isPlaying);
        for (const uint32_t frames : {0U, 1U, 16U}) {
            SCOPED_TRACE(frames);
            for (const bool isRestarted : {false, true}) {
                plugin->Start();
                EXPECT_EQ(Run({0.25}), 0.25);
                set();
                EXPECT_EQ(Run({}, 0), -1.0);
                EXPECT_EQ(Run(), OfUi);
                set();
                Run({OfHost}, frames);
                if (isRestarted) {
                    plugin->processor->SetProcessing(0);
                    plugin->processor->SetProcessing(1);
                }
                EXPECT_EQ(Run(), OfHost);
                EXPECT_EQ(Saved(), OfHost);
                plugin->Deactivate();
            }
        }
    }
}

TEST_F(Vst3ValuesTest, APointOfABlockThatRunsWhileTheUiSideSetsIsNotLost)
{
    for (const uint32_t frames : {0U, 16U}) {
        SCOPED_TRACE(frames);
        plugin->Start();
        Run({0.25});
        *stepIn = [&] { Run({OfHost}, frames); };
        Show(OfUi);
        *stepIn = nullptr;
        EXPECT_EQ(Run(), OfHost);
        EXPECT_EQ(Run(), OfHost);
        plugin->Deactivate();
    }
}

TEST_F(Vst3ValuesTest, WhatIsOnlyShownIsSavedWhereNoBlockHasComeSince)
{
    plugin->Start();
    Play(true);
    EXPECT_EQ(Run({OfHost}), OfHost);
    Show(OfUi);
    EXPECT_EQ(Saved(), OfUi);
    EXPECT_EQ(Run(), OfHost) << "the audio is the host's";
    EXPECT_EQ(Saved(), OfHost);
}

TEST_F(Vst3ValuesTest, WhatIsOnlyShownActsWhenTheAudioEnds)
{
    for (const bool isHeard : {false, true}) {
        SCOPED_TRACE(isHeard);
        plugin->Start();
        Play(true);
        Run({0.25});
        Show(OfUi);
        EXPECT_EQ(Run(), 0.25);
        if (isHeard) {
            EXPECT_EQ(Run({OfHost}), OfHost);
        }
        plugin->Deactivate();
        const double expected = isHeard ? OfHost : OfUi;
        EXPECT_EQ(Saved(), expected);
        plugin->Start();
        Play(false);
        EXPECT_EQ(Run(), expected);
        plugin->Deactivate();
    }
}

TEST_F(Vst3ValuesTest, ALoadedSessionTakesThePlaceOfWhatIsOnlyShown)
{
    const std::vector<uint8_t> session = plugin->Save();
    plugin->Start();
    Play(true);
    Run();
    Show(OfUi);
    EXPECT_EQ(plugin->LoadComponent(session), V3_OK);
    EXPECT_EQ(plugin->Save(), session);
    plugin->Deactivate();
    EXPECT_EQ(plugin->Save(), session);
}

TEST_F(Vst3ValuesTest, NothingOutlivesTheInstance)
{
    Show(OfUi);
    plugin->Start();
    Run({OfHost}, 0); // waits for a block
    EXPECT_EQ(plugin->component->Terminate(), V3_OK);
    EXPECT_EQ(plugin->component->Initialize(nullptr), V3_OK);
    Show(0.25);
    plugin->Start();
    EXPECT_EQ(Run(), 0.25);
    EXPECT_EQ(plugin->component->Terminate(), V3_OK);
    EXPECT_EQ(plugin->component->Initialize(nullptr), V3_OK);
    plugin->Start();
    EXPECT_EQ(Run(), First);
}
