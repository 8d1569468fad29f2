// SPDX-License-Identifier: ISC
#include "wrappers/vst3/RunLoopTimer.h"

#include <array>
#include <utility>

namespace Vst3 {

namespace {

// Tables are handed on by the address of an interface's pointer to one.
v3_timer_handler** HandlerOf(Interface* interface)
{
    return reinterpret_cast<v3_timer_handler**>(interface);
}

} // namespace

const v3_timer_handler_cpp RunLoopTimer::Functions = {UnknownTable, {Slot<&RunLoopTimer::OnTimer>}};

RunLoopTimer::RunLoopTimer(std::function<void()> newOnTick)
    : Interface{&Functions, this}
    , onTick(std::move(newOnTick))
{
}

Interface* RunLoopTimer::Find(const uint8_t* iid) noexcept
{
    const std::array<Offer, 2> offers = {{{v3_funknown_iid, this}, {v3_timer_handler_iid, this}}};
    return FindOffer(offers, iid);
}

void RunLoopTimer::Start(HostReference<v3_run_loop> newLoop, uint64_t milliseconds)
{
    Stop();
    loop = std::move(newLoop);
    if (loop.Call(&v3_run_loop::register_timer, HandlerOf(this), milliseconds) != V3_OK) {
        loop.Reset();
    }
}

void RunLoopTimer::Stop()
{
    if (loop) {
        loop.Call(&v3_run_loop::unregister_timer, HandlerOf(this));
        loop.Reset();
    }
}

void RunLoopTimer::OnTimer() noexcept
{
    if (loop) {
        onTick();
    }
}

} // namespace Vst3
