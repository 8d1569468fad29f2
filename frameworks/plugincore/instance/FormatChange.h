// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HostParams.h"
#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/instance/Preferences.h"
#include "frameworks/plugincore/instance/StateKeeper.h"
#include "frameworks/plugincore/instance/StreamFormat.h"

/// A new stream format for an instance: the signal path is made anew, everything that is bound to
/// its elements lets go before and follows after, and the values of now come back.
///
/// Threads: whoever makes one holds both locks for as long as it lives. [setup]
class FormatChange {
public:
    /// What has to do with a format. All outlive the change.
    struct Parts {
        StreamFormat& format; ///< of now; the new one afterwards
        DSP::TransformBase& path;
        LatencyReport& latency;
        HostParams& params;
        Preferences& preferences;
        EditorLink& editor;
        StateKeeper& state;
    };
    explicit FormatChange(const Parts& newParts)
        : parts(newParts)
    {
    }

    /// The instance stays as it was when it can't have the format, and this throws the reason.
    void Run(const StreamFormat& wanted);

private:
    void Take(const StreamFormat& format);
    void Follow(const Util::Bytes& saved);
    void ReturnTo(const StreamFormat& former, const Util::Bytes& saved) noexcept;

    const Parts parts;
};
