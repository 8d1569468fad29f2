// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Controls.h"
#include "wrappers/cli/effect/History.h"
#include "wrappers/cli/effect/Module.h"
#include "wrappers/cli/effect/Parameters.h"
#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/common/Detections.h"
#include "wrappers/common/ElementParameters.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/Preset.h"
#include "wrappers/common/RegionRenderer.h"
#include "wrappers/common/SilentListener.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// The effect as the command uses it: an instance of the module whose refusals are exceptions. All
/// calls of one object come from one thread; objects of different threads don't meet.
class Effect {
public:
    /// Makes an instance and sets its controls, before any audio runs. All controls are set, chosen
    /// or not, so that nothing kept from another session shows in the result. Throws ModuleError.
    Effect(std::shared_ptr<const Wrapper::Module> module,
           int sampleRate,
           int channels,
           const Settings& settings);
    ~Effect() = default;
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;
    Effect(Effect&&) = delete;
    Effect& operator=(Effect&&) = delete;

    /// Sets what the user chose on top of what is set. Throws ModuleError.
    void Choose(const ChosenControls& chosen);

    /// Takes a saved session; false when it is none, and then nothing has changed.
    bool LoadState(std::string_view state);

    /// Sets every parameter to one end of its range: `normalised` is 0 or 1. Throws ModuleError.
    void SetAll(float normalised);

    /// The session as it stands. Throws ModuleError.
    std::string SaveState();

    /// Sets the effect by a preset's name or file. Throws FileError when it can't be, and then
    /// nothing has changed; its text names the preset. Throws ModuleError.
    Wrapper::Preset ApplyPreset(const std::string& name);

    /// Writes the settings as a preset, under a name or into a file, and returns the file. One that
    /// is there already stays unless `overwrite` allows it. Throws FileError, whose text names it,
    /// and ModuleError.
    std::string
    SavePreset(const std::string& name, const std::string& comment, Overwrite overwrite);

    /// Throws ModuleError.
    std::vector<Wrapper::Preset> ListPresets();

    /// Copies a preset's file into the user's folder, and returns the copy's place. Throws
    /// FileError and ModuleError, as the next does.
    std::string ImportPreset(const std::string& file);

    /// What to ask before RemovePreset().
    std::string AskToRemovePreset(const std::string& name);

    /// Removes one of the user's presets for good, and returns where it was.
    std::string RemovePreset(const std::string& name);

    /// The steps of an undo history's file, oldest first, each with the values of the controls. The
    /// effect itself is set to the last of them. Throws FileError and ModuleError.
    std::vector<HistoryStep> ReadHistory(const std::string& file);

    /// All parameters with their values. Throws ModuleError.
    std::vector<ParameterValue> ReadParameters() const;

    /// Of these, what a session keeps and isn't the default. Throws ModuleError.
    std::vector<Wrapper::ElementParameters::Changed> ReadChanged() const;

    const Controls& GetControls() const { return controls; }

    /// By how much the output is late, in samples.
    uint32_t GetLatency() const { return latency; }

    /// Processes a block in place: `channels` points to one array of `frames` floats a channel.
    /// Throws ModuleError.
    void Process(float** channels, uint32_t frames);

    /// Repairs regions of a recording with these controls, on elements of their own: Process() goes
    /// on as if this hadn't been. Throws FileError with the reason when it can't be done, what
    /// `client` throws, and ModuleError.
    Wrapper::DetectionTotals RenderRegions(Wrapper::RenderClient& client,
                                           const std::vector<Wrapper::RenderRegion>& regions,
                                           double fade) const;

    /// Appends the repairs made since the last call to `found`, oldest first. Throws ModuleError.
    void ReadDetections(std::vector<Wrapper::Detection>& found);

    /// Repairs that were overwritten before they could be read.
    uint64_t GetLostDetections() const { return detections.GetLost(); }

    /// Sums over what has been analysed so far. Throws ModuleError.
    Wrapper::DetectionTotals ReadTotals() const;

private:
    std::unique_ptr<Wrapper::Instance>
    MakeInstance(std::shared_ptr<const Wrapper::Module> module, int sampleRate, int channels);
    template <typename Answer>
    Answer Granted(Answer answer) const;
    uint32_t FindParam(std::string_view identifier) const;
    void SetParam(uint32_t index, double value);
    void SetToDefault(std::string_view identifier);
    void SetControlsToDefaults();
    double ChooseOne(std::string_view identifier, std::optional<double> value);
    double ReadParam(uint32_t index) const;

    std::string complaint; // the instance's last message
    Wrapper::SilentListener listener;
    std::unique_ptr<Wrapper::Instance> instance;
    Wrapper::ElementParameters parameters;
    Wrapper::Detections detections;
    Controls controls;
    uint32_t latency = 0;
};

} // namespace Cli
