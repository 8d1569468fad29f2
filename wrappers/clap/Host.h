// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"
#include "wrappers/common/Log.h"

#include <clap/ext/latency.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/host.h>

#include <string>

namespace Clap {

/// The host of an instance. What it doesn't offer is left out; without a log lines go to standard
/// error.
class Host {
public:
    /// `newHost` is the host's own and outlives the instance.
    explicit Host(const clap_host_t* newHost);
    /// Asks for what the host offers; the constructor may not. [main]
    void FindExtensions();

    void RequestRestart() const noexcept;  ///< [any]
    void RequestCallback() const noexcept; ///< [any]
    void RequestFlush() const noexcept;    ///< [any but audio]

    void TailChanged() const noexcept;    ///< [audio]
    void LatencyChanged() const noexcept; ///< [main, while activate() runs]
    void MarkDirty() const noexcept;      ///< [main]
    void RescanValues() const noexcept;   ///< [main]

    void Log(const std::string& text) const; ///< [any]

private:
    template <typename Extension>
    void Find(const char* id, const Extension*& extension) const;

    const clap_host_t* host;
    const clap_host_latency_t* latency = nullptr;
    const clap_host_params_t* params = nullptr;
    const clap_host_state_t* state = nullptr;
    const Abi::HostLog* log = nullptr;
    const Abi::HostTail* tail = nullptr;
};

/// Without a host to report to. [any]
void LogToStandardError(const std::string& text);

} // namespace Clap
