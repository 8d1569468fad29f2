// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"
#include "wrappers/common/Listener.h"
#include "wrappers/common/Log.h"
#include "wrappers/common/Module.h"
#include "wrappers/common/Parameter.h"
#include "wrappers/common/Preset.h"
#include "wrappers/common/SoftBypass.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct EditorRecord;
struct ParamEventRecord;
struct PluginCore;
struct StateRecord;

namespace Wrapper {

/// Who loads the module. The module has no number of its own for the formats that it didn't know.
enum class Format { Program, VST3, Other };

/// Whose settings an instance follows. One for files neither looks at the user's nor writes any,
/// and its bypass switches hard, since nobody is listening.
enum class Use { Live, Files };

struct Setup {
    Format format = Format::Other;
    Use use = Use::Live;
    double sampleRate = 0; ///< Hz; one that can't be served counts as 44100
    uint32_t channels = 0; ///< 1 to 24
};

/// Opens the entry of an instance to the classes of this folder, and to nobody else: no other code
/// fills its records.
class EntryKey {
    EntryKey() = default;
    friend class Detections;
    friend class ElementParameters;
    friend class History;
    friend class Presets;
    friend class RegionRenderer;
    friend class SoftBypass;
};

/// One instance of the module. Detections, Editor, ElementParameters, History, Presets and
/// RegionRenderer stand beside it for the wrappers that need them.
///
/// Threads: [process] calls come from one thread at a time, [ui] calls from another one at a time;
/// both may come at once. [setup] excludes all others. The process side takes no lock but the
/// module's own, and no heap.
class Instance {
public:
    /// Makes and initialises an instance. Null, after a line in the log, when the module makes
    /// none. `listener` and what `log` refers to live as long as the instance. [setup]
    static std::unique_ptr<Instance> Create(std::shared_ptr<const Module> module,
                                            const Setup& setup,
                                            Listener& listener,
                                            const LogFunction& log);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    Instance(Instance&&) = delete;
    Instance& operator=(Instance&&) = delete;

    const Module& GetModule() const noexcept { return *module; }

    /// Whether there is a format of this rate, in Hz, and number of channels. [any]
    static bool CanServe(double sampleRate, uint32_t channels);
    /// A new stream format; values stay, the signal starts anew. False, and nothing changed, for a
    /// rate or a number of channels that can't be served. Not from within a callback. [setup]
    bool SetFormat(double sampleRate, uint32_t channels);
    uint32_t GetChannels() const noexcept { return buffers.GetChannels(); }

    /// Before audio runs and after it: forgets the signal, and lets the UI side act without it.
    /// What the UI side has set until Activate() is in force from there on, its latency too. Audio
    /// runs also without these. [setup]
    void Activate();
    void Deactivate();

    /// Forgets the signal. [process]
    void Reset() noexcept;

    /// Any number of frames; of 0 frames the block's pointers don't matter. `position` is that of
    /// the first in the host's transport, in samples. False when the module refuses: the outputs
    /// hold the inputs from there on. [process]
    bool Process(const Block& block, std::optional<double> position) noexcept;

    /// By how much the output is late, in samples. On the thread of `side`; that of the UI side
    /// takes a lock.
    uint32_t GetLatency(Side side) const noexcept;

    /// The automatable ones, in the order of their indices. [any]
    const std::vector<Parameter>& GetParameters() const noexcept { return parameters; }
    /// Which of them takes the repair out of the signal, at the same latency: see SoftBypass. [any]
    std::optional<uint32_t> GetBypassIndex() const noexcept { return bypassIndex; }
    /// Normalised; an index out of range does nothing. On the thread of `side`.
    void SetParameter(Side side, uint32_t index, float normalised) noexcept;
    float GetParameter(Side side, uint32_t index) const noexcept;

    /// The user has taken hold of a parameter in a view of the host's own, where it stood at
    /// `before`, normalised, and has let it go. What changes in between becomes one step of the
    /// undo history. An index out of range does nothing. [ui]
    void BeginGesture(uint32_t index, float before);
    void EndGesture(uint32_t index);

    /// What a session keeps; empty, after a line in the log, when it can't be had. The bypass is no
    /// part of it: a format whose hosts don't keep it themselves saves it beside this. [ui]
    std::vector<uint8_t> SaveState();
    /// False, and nothing changed, when the bytes are no state. [ui]
    bool LoadState(std::span<const uint8_t> state);

    /// Empty, after a line in the log, when the module has none. [ui]
    std::vector<Preset> ListPresets();
    /// By name or file. False, after a line in the log and nothing changed, when it can't be. [ui]
    bool ApplyPreset(const std::string& name);

    /// One command to the editor; the answer is a PluginCoreResult. [ui]
    uint32_t CallEditor(EditorRecord& record) noexcept;

    /// One call of the entry; the answer is a PluginCoreResult. [any]
    uint32_t Call(EntryKey, uint32_t selector, Side side, void* data) const noexcept
    {
        return Call(selector, side, data);
    }
    /// The same from the UI side. When it's refused, the log notes that the module refuses to
    /// `purpose`. [ui]
    bool Request(EntryKey, uint32_t selector, void* data, const char* purpose) const
    {
        return Request(selector, data, purpose);
    }
    /// [ui]
    void Log(EntryKey, const std::string& text) const { log(text); }

private:
    Instance(std::shared_ptr<const Module> newModule, Listener& newListener, LogFunction newLog);

    static uint32_t HostCallback(
        uint32_t magic, uint32_t opcode, uint32_t context, void* refcon, void* data) noexcept;
    uint32_t OnHostCall(uint32_t opcode, uint32_t context, const void* data) noexcept;
    void OnParamEvent(const ParamEventRecord& event) noexcept;
    bool Start(const Setup& setup);
    bool ReadParameters();
    bool SetModuleFormat(double sampleRate, uint32_t channels);
    bool Repair(float** channels, uint32_t frames, std::optional<double> position) noexcept;
    bool CallState(StateRecord& record);
    void ReportGesture(ParamEventRecord event);
    bool Request(uint32_t selector, void* data, const char* purpose) const;
    uint32_t Call(uint32_t selector, Side side, void* data) const noexcept
    {
        return module->Call(selector, static_cast<uint32_t>(side), core, data);
    }

    const std::shared_ptr<const Module> module;
    Listener& listener;
    const LogFunction log;
    PluginCore* core = nullptr;
    BlockBuffers buffers;
    double rate = 0; // Hz
    std::optional<SoftBypass> softBypass;
    std::vector<Parameter> parameters;
    std::optional<uint32_t> bypassIndex;
};

} // namespace Wrapper
