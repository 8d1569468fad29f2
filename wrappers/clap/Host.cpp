// SPDX-License-Identifier: ISC
#include "wrappers/clap/Host.h"

namespace Clap {

Host::Host(const clap_host_t* newHost)
    : host(newHost)
{
}

template <typename Extension>
void Host::Find(const char* id, const Extension*& extension) const
{
    extension = static_cast<const Extension*>(host->get_extension(host, id));
}

void Host::FindExtensions()
{
    Find(CLAP_EXT_LATENCY, latency);
    Find(CLAP_EXT_PARAMS, params);
    Find(CLAP_EXT_STATE, state);
    Find(Abi::ExtLog, log);
    Find(Abi::ExtTail, tail);
}

void Host::RequestRestart() const noexcept
{
    host->request_restart(host);
}

void Host::RequestCallback() const noexcept
{
    host->request_callback(host);
}

void Host::RequestFlush() const noexcept
{
    if (params != nullptr) {
        params->request_flush(host);
    }
}

void Host::TailChanged() const noexcept
{
    if (tail != nullptr) {
        tail->changed(host);
    }
}

void Host::LatencyChanged() const noexcept
{
    if (latency != nullptr) {
        latency->changed(host);
    }
}

void Host::MarkDirty() const noexcept
{
    if (state != nullptr) {
        state->mark_dirty(host);
    }
}

void Host::RescanValues() const noexcept
{
    if (params != nullptr) {
        params->rescan(host, CLAP_PARAM_RESCAN_VALUES);
    }
}

void Host::Log(const std::string& text) const
{
    if (log != nullptr) {
        log->log(host, Abi::LogError, ("puffguard.clap: " + text).c_str());
    } else {
        LogToStandardError(text);
    }
}

void LogToStandardError(const std::string& text)
{
    Wrapper::LogToStandardError("puffguard.clap", text);
}

} // namespace Clap
