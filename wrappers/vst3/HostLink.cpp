// SPDX-License-Identifier: ISC
#include "wrappers/vst3/HostLink.h"

#include <utility>

namespace Vst3 {

namespace {

constexpr uint64_t TickMilliseconds = 100;

} // namespace

void HostLink::Releaser::operator()(RunLoopTimer* made) const
{
    made->Release();
}

HostLink::HostLink(std::function<void()> onTick)
    : timer(new RunLoopTimer([this, onTick = std::move(onTick)] {
        MarkUiThread();
        onTick();
    }))
{
}

HostLink::~HostLink()
{
    Disconnect();
}

void HostLink::SetContext(v3_funknown** context)
{
    StartTimer(HostReference<v3_run_loop>::Query(context, v3_run_loop_iid));
}

void HostLink::SetHandler(v3_component_handler** newHandler)
{
    if (isLoopOfHandler) {
        timer->Stop();
    }
    handler = HostReference<v3_component_handler>(newHandler);
    handler2 = HostReference<v3_component_handler2>::Query(newHandler, v3_component_handler2_iid);
    if (!timer->IsRunning()) {
        StartTimer(HostReference<v3_run_loop>::Query(newHandler, v3_run_loop_iid));
        isLoopOfHandler = timer->IsRunning();
    }
}

void HostLink::StartTimer(HostReference<v3_run_loop> loop)
{
    if (loop) {
        timer->Start(std::move(loop), TickMilliseconds);
    }
}

void HostLink::Disconnect()
{
    timer->Stop();
    isLoopOfHandler = false;
    handler.Reset();
    handler2.Reset();
}

void HostLink::BeginEdit(v3_param_id id) const
{
    if (handler) {
        handler.Call(&v3_component_handler::begin_edit, id);
    }
}

void HostLink::PerformEdit(v3_param_id id, double normalised) const
{
    if (handler) {
        handler.Call(&v3_component_handler::perform_edit, id, normalised);
    }
}

void HostLink::EndEdit(v3_param_id id) const
{
    if (handler) {
        handler.Call(&v3_component_handler::end_edit, id);
    }
}

void HostLink::Restart(int32_t flags) const
{
    if (handler) {
        handler.Call(&v3_component_handler::restart_component, flags);
    }
}

void HostLink::SetDirty() const
{
    if (handler2) {
        handler2.Call(&v3_component_handler2::set_dirty, v3_bool{1});
    }
}

} // namespace Vst3
