// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/HostParameters.h"
#include "wrappers/common/Instance.h"
#include "wrappers/vst3/HostLink.h"
#include "wrappers/vst3/Speakers.h"

#include <travesty/edit_controller.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace Vst3 {

/// What the interfaces of one plug-in share: the instance from initialize to terminate, its format,
/// its values as the host's UI side has them, and what is to be reported to the host.
///
/// Values have two ways in. Those of the audio side come with the blocks and act there; the host
/// sends them to the UI side as well, later, to be shown. So while its transport runs the UI side
/// only shows them: acted on, they would overtake the audio's, and a render would come out
/// otherwise each time. While it stands, and while nothing is active, they act. What is only shown
/// and never comes with a block acts when the audio ends, and is saved where no block has come
/// since.
///
/// A new latency is reported from the UI thread only: hosts stop and start the audio from within
/// that call. What comes up elsewhere waits for a timer in the host's run loop and, where a host
/// has none, for its next call about a state or a value.
class Effect final : private Wrapper::Listener {
public:
    explicit Effect(std::shared_ptr<const Wrapper::Module> newModule);
    ~Effect();
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    Effect(Effect&&) = delete;
    Effect& operator=(Effect&&) = delete;

    /// Makes the instance; false when there is one, or none can be had. `context` may be null. [ui]
    bool Start(v3_funknown** context);
    /// Ends it; format and rate stay. [ui]
    void Stop();
    /// Null before Start() and after Stop(). [any]
    Wrapper::Instance* GetInstance() const noexcept { return instance.get(); }

    /// False, and nothing changed, while active. [ui]
    bool SetArrangement(const Arrangement& newArrangement);
    const Arrangement& GetArrangement() const noexcept { return arrangement; }
    /// Hz. False, and nothing changed, for one that is none, or for another one while active. [ui]
    bool SetRate(double rate);
    void SetActive(bool newActive); ///< [ui]
    /// Of any number of frames; whether the host's transport runs in it. With an instance.
    /// [process]
    void BeginBlock(Wrapper::HostBlock& block, bool newPlaying) noexcept;

    /// The latency as reported, which the host remembers. [any]
    uint32_t GetLatency() noexcept;

    /// 0 without an instance.
    uint32_t CountParameters() const noexcept { return parameters ? parameters->Count() : 0; }
    /// By parameter; with an instance.
    const std::vector<v3_param_id>& GetIds() const noexcept { return parameters->GetIds(); }
    v3_param_id GetId(uint32_t index) const noexcept { return GetIds()[index]; }
    /// Null when there is none of that id, or no instance.
    const Wrapper::Parameter* FindParameter(v3_param_id id) const noexcept;
    /// As the host's UI side has it; normalised, 0 for an unknown id. [ui]
    double GetValue(v3_param_id id) noexcept;
    bool SetValue(v3_param_id id, double normalised) noexcept; ///< [ui]
    /// Around a row of SetValue() that is one touch of the user's in a view of the host's own.
    /// False for an unknown id. [ui]
    bool BeginEdit(v3_param_id id);
    bool EndEdit(v3_param_id id);
    /// A value of a block, 0 to 1. [process]
    void HearValue(uint32_t index, double normalised) noexcept;
    /// Parameters, one a bit, that the user has changed and could not be reported to the host; each
    /// is given once, and LeaveUntold() gives one back. [any]
    uint32_t TakeUntold() noexcept { return untold.exchange(0); }
    void LeaveUntold(uint32_t index) noexcept;
    double GetShown(uint32_t index) const noexcept { return values[index].shown; } ///< [any]

    std::vector<uint8_t> Save();                 ///< empty when there is nothing to save [ui]
    bool Load(std::span<const uint8_t> session); ///< false, and nothing changed, if it's none [ui]

    void SetHandler(v3_component_handler** handler); ///< null takes it away [ui]

private:
    struct Value {
        std::atomic<double> shown{0};       // as the host's UI side has it
        std::atomic<bool> isWaiting{false}; // shown, but not yet in force on the audio side
    };

    void OnLatencyChanged(Wrapper::Side side, uint32_t samples) noexcept override;
    void OnGestureBegun(uint32_t parameter) noexcept override;
    void OnParameterChanged(uint32_t parameter, float normalised) noexcept override;
    void OnGestureEnded(uint32_t parameter) noexcept override;
    void OnStateChanged() noexcept override;

    std::optional<uint32_t> IndexOf(v3_param_id id) const noexcept;
    bool IsKnown(uint32_t parameter) const noexcept;
    void ActOn(uint32_t index, double value) noexcept;
    void ActOnWaiting() noexcept;
    bool SetFormat(double rate, const Arrangement& wanted);
    void TellHost() noexcept;
    bool HasNewLatency() const noexcept;

    const std::shared_ptr<const Wrapper::Module> module;
    Arrangement arrangement = DefaultArrangement;
    double sampleRate = 44100;          // Hz
    std::atomic<bool> isStarted{false}; // all is there for the instance's notices
    bool isActive = false;
    std::atomic<bool> isPlaying{false};
    std::atomic<bool> hasBlockBegun{false};            // since a value has been shown only
    std::vector<Value> values;                         // by parameter
    std::optional<Wrapper::HostParameters> parameters; // as long as there is an instance
    std::atomic<uint32_t> untold{0};                   // see TakeUntold()
    std::atomic<bool> isDirty{false};                  // to be reported to the host
    std::atomic<bool> hasNews{false};                  // TellHost() has something to look at
    std::atomic<int64_t> toldLatency{-1};              // samples; -1: the host hasn't asked
    bool isTelling = false;                            // a call of the host within a call to it
    HostLink host;
    std::unique_ptr<Wrapper::Instance> instance; // last: it calls this object
};

} // namespace Vst3
