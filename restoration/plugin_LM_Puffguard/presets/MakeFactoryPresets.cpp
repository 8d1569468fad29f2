// SPDX-License-Identifier: ISC
// Writes the presets that come with the product into a folder. They hold no times, so that each
// build writes the same bytes.
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/preset/file/LmPresetFile.h"
#include "frameworks/plugincore/preset/file/PresetMetadata.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/Path.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"

#include <cstdio>

namespace {

struct FactoryPreset {
    const char* name; ///< of the file; what can't stand in one is left out
    const char* comment;
    float sensitivity;          ///< 0 to 10
    float strength;             ///< 0 to 10
    float upperRepairFrequency; ///< Hz, 50 to 500
    float latencyScaling;       ///< 0 to 1
};

constexpr FactoryPreset FactoryPresets[] = {
    {"Default",
     "A good start for most voices. Takes the boom out of pops and leaves the word as it is.",
     5.0F,
     5.0F,
     200.0F,
     1.0F},
    {"Gentle",
     "Only the clear pops, and only a part of each. For takes that are nearly right.",
     3.5F,
     3.0F,
     160.0F,
     1.0F},
    {"Strong",
     "For takes full of pops and for microphones without a pop filter. Listen to the low end "
     "afterwards.",
     7.0F,
     8.0F,
     250.0F,
     1.0F},
    {"Close microphone",
     "For lips at the microphone, as in radio voices and headsets, where pops reach far up.",
     6.0F,
     7.0F,
     350.0F,
     1.0F},
    {"Low voice",
     "For deep voices: repairs below the voice itself, so that its fundamental stays full.",
     5.0F,
     6.0F,
     100.0F,
     1.0F},
    {"Live - low latency",
     "Live / low latency: the shortest delay, for monitoring and streams. Looks less far around a "
     "pop, so use Default for finished recordings.",
     4.0F,
     5.0F,
     200.0F,
     0.0F},
};

Preset::ProgramIdentity GetIdentity(const PluginDefinition& definition)
{
    return {definition.GetPresetId(),
            definition.GetStateVersion(),
            definition.GetVersionNumber(),
            definition.GetBuildNumber()};
}

Util::Expected<void> Write(const FactoryPreset& preset,
                           Preset::PresetDSPInterfaceBase& dsp,
                           const PluginDefinition& definition,
                           const String& folder)
{
    Preset::PresetMetadata metadata;
    metadata.SetComment(preset.comment);
    metadata.SetReadOnly(true);
    Preset::LmPresetFile file(GetIdentity(definition), dsp, nullptr);
    file.SetMetadata(metadata.GetTexts());
    file.TakeSnapshotFromDSP();
    const String element = "Puffguard";
    file.SetFloatValue(element, "Sensitivity", preset.sensitivity);
    file.SetFloatValue(element, "Strength", preset.strength);
    file.SetFloatValue(element, "Upper Repair Frequency", preset.upperRepairFrequency);
    file.SetFloatValue(element, "Latency Scaling", preset.latencyScaling);
    const String path = Util::Path::Join(folder, String(preset.name) + ".xml");
    return file.Save(path, file.GetSnapshot(), Preset::TouchModified::No);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make-factory-presets FOLDER\n", stderr);
        return 2;
    }
    // An instance that ignores the settings of whoever builds; it hosts the elements.
    const PluginFactory& factory = LMPuffguard::GetPluginFactory();
    PluginSetup setup;
    setup.sampleRate = 48000.0F;
    CopyText(setup.identity.options, "Offline");
    Plugin plugin(factory, setup);
    for (const FactoryPreset& preset : FactoryPresets) {
        const auto written =
            Write(preset, *plugin.GetSet().GetPresetInterface(), factory.GetDefinition(), argv[1]);
        if (!written) {
            std::fprintf(stderr, "%s\n", written.GetDescription().c_str());
            return 1;
        }
    }
    return 0;
}
