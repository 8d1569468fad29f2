// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/IdleTimer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

namespace {

struct Notices {
    std::string text;
    std::atomic<int> count{0};
};

uint32_t Note(uint32_t, uint32_t opcode, uint32_t, void* refcon, void* data)
{
    auto& notices = *static_cast<Notices*>(refcon);
    const auto number = opcode == HostOpcodeParamEvent
                            ? static_cast<uint32_t>(static_cast<ParamEventRecord*>(data)->value * 8)
                            : *static_cast<uint32_t*>(data);
    if (notices.count < 2) {
        notices.text += std::to_string(opcode) + ": " + std::to_string(number) + "; ";
        ++notices.count;
    }
    return PluginCoreSuccess;
}

// Between the work and the notification audio may have started, or the host have set a value.
TEST(IdleTimer, NotifiesOfWhatThereIsWhenItNotifies)
{
    Notices notices;
    Util::CriticalSection uiLock("UI");
    HostCallback host(Note, &notices);
    const std::atomic<bool> isActive = true;
    IdleTimer timer({uiLock,
                     host,
                     isActive,
                     [&] {
                         host.NotifyLatency(DSP::Context::UI, 100);
                         host.NotifyParam({1, 0, 0.25F});
                     },
                     [](ParamEventRecord& event) { event.value = 0.75F; },
                     [](DSP::Context) { return 200U; }});
    timer.Start(1);
    while (notices.count < 2) {
        std::this_thread::yield();
    }
    timer.Stop();
    const auto opcode = [](int number) { return std::to_string(number) + ": "; };
    EXPECT_EQ(notices.text,
              opcode(HostOpcodeLatencyChanged) + "200; " + opcode(HostOpcodeParamEvent) + "6; ");
}

} // namespace
