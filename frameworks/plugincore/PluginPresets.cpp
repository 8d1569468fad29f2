// SPDX-License-Identifier: ISC
// Presets of an instance as the host asks for them.
#include "frameworks/plugincore/Plugin.h"
#include "frameworks/plugincore/PluginInfo.h"
#include "frameworks/plugincore/preset/PresetManager.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/Realtime.h"

#include <string_view>

namespace {

using Preset::PresetEntry;
using Preset::PresetManager;

bool IsPath(const String& name)
{
    return name.Find("/") || name.View().ends_with(".xml");
}

String GetDefaultPresetFolder(const PluginDefinition& definition)
{
    const String pattern = definition.GetPresetFolder();
    if (!pattern.IsEmpty()) {
        return Util::Path::ExpandUserFolders(pattern);
    }
    const String vendorFolder =
        Util::Path::Join(Util::Path::GetApplicationDataFolder(), definition.GetVendor());
    return Util::Path::Join(Util::Path::Join(vendorFolder, definition.GetShortName()),
                            "Global Presets");
}

String GetFactoryPresetFolder(const PluginDefinition& definition, const String& modulePath)
{
    const String folder = definition.GetFactoryPresetFolder();
    if (folder.IsEmpty() && modulePath.IsEmpty()) {
        return {}; // a wrapper that doesn't tell: no presets, rather than those of another folder
    }
    return folder.IsEmpty() ? Util::Path::Join(Util::Path::GetFolder(modulePath), "Presets")
                            : Util::Path::ExpandUserFolders(folder);
}

String DescribeUnknownName(const String& name, const PresetManager& presets)
{
    String known;
    for (const PresetEntry& entry : presets.GetEntries()) {
        known = known.IsEmpty() ? entry.name : known + ", " + entry.name;
    }
    return "There is no preset \"" + name + "\". There are: " + known;
}

// The text for the user, with what it is about and why.
String Describe(const String& name, const Util::ErrorVariant& error)
{
    const String text = error.GetDescription();
    const String reason = error.GetDetail();
    const bool isReason = error.As<Preset::ManagerError>() != nullptr && !reason.IsEmpty();
    if (!isReason) {
        return text;
    }
    return text.Find(name) ? text + " (" + reason + ")" : text + " (" + name + ": " + reason + ")";
}

void Fail(const String& message, PresetRecord& record)
{
    record.failed = 1;
    CopyText(record.message, message);
}

void List(PresetManager& presets, PresetRecord& record)
{
    presets.Refresh();
    record.count = static_cast<uint32_t>(presets.GetEntries().size());
}

void Show(const PresetEntry& entry, PresetRecord& record)
{
    CopyText(record.presetName, entry.name);
    CopyText(record.presetComment, entry.GetComment());
    CopyText(record.path, entry.path);
    CopyText(record.message, entry.fault);
    record.isReadOnly =
        entry.group == Preset::PresetGroup::BuiltIn || Preset::IsReadOnly(entry.metadata);
    switch (entry.group) {
    case Preset::PresetGroup::BuiltIn:
        record.group = PresetGroupBuiltIn;
        break;
    case Preset::PresetGroup::Factory:
        record.group = PresetGroupFactory;
        break;
    case Preset::PresetGroup::User:
        record.group = PresetGroupUser;
        break;
    }
}

void ApplyFile(PresetManager& presets, const String& path, PresetRecord& record)
{
    if (const auto applied = presets.ApplyFile(path); !applied) {
        Fail(Describe(path, applied.GetError()), record);
        return;
    }
    CopyText(record.presetName, Util::Path::GetStem(path));
    CopyText(record.path, path);
}

void ApplyName(PresetManager& presets, const String& name, PresetRecord& record)
{
    presets.Refresh();
    const auto entry = presets.Find(name);
    if (!entry) {
        Fail(DescribeUnknownName(name, presets), record);
        return;
    }
    Show(*entry, record);
    CopyText(record.message, {});
    if (const auto applied = presets.Apply(*entry); !applied) {
        Fail(Describe(name, applied.GetError()), record);
    }
}

void Save(PresetManager& presets, const String& name, PresetRecord& record)
{
    const String comment = record.comment;
    Util::Expected<String> saved = name;
    if (!IsPath(name)) {
        saved = presets.Save(name, comment);
    } else if (const auto written = presets.SaveFile(name, comment); !written) {
        saved = written.GetError();
    }
    if (saved) {
        CopyText(record.presetName, Util::Path::GetStem(*saved));
        CopyText(record.path, *saved);
    } else {
        Fail(Describe(name, saved.GetError()), record);
    }
}

} // namespace

bool Plugin::MakePresets()
{
    auto* interface = GetSet().GetPresetInterface();
    auto* metadata = GetSet().GetPresetMetadata();
    if (interface == nullptr || metadata == nullptr) {
        return false;
    }
    const PluginDefinition& product = GetDefinition();
    presets = std::make_unique<PresetManager>(
        PresetManager::Setup{{product.GetPresetId(),
                              product.GetStateVersion(),
                              product.GetVersionNumber(),
                              product.GetBuildNumber()},
                             GetDefaultPresetFolder(product),
                             GetFactoryPresetFolder(product, GetModulePath()),
                             configFile,
                             !IsOffline(),
                             *interface,
                             *metadata,
                             [this](const String& /*name*/) {
                                 CheckLatency(DSP::Context::UI);
                                 NotifyHistory();
                                 UserAction(*this).MarkChanged();
                             }});
    return true;
}

uint32_t Plugin::PresetMessage(DSP::Context context, const HostMessageRecord& record)
{
    const bool isWhole = record.data != nullptr && record.length >= sizeof(PresetRecord);
    if (context != DSP::Context::UI || !isWhole || (!presets && !MakePresets())) {
        return PluginCoreUnsupported;
    }
    auto& preset = *static_cast<PresetRecord*>(record.data);
    const String name = preset.name;
    preset.failed = 0;
    CopyText(preset.message, {});
    switch (preset.op) {
    case PresetOpList:
        List(*presets, preset);
        return PluginCoreSuccess;
    case PresetOpDescribe:
        if (preset.index >= presets->GetEntries().size()) {
            return PluginCoreUnsupported;
        }
        Show(presets->GetEntries()[preset.index], preset);
        return PluginCoreSuccess;
    case PresetOpApply: {
        const Util::ScopedDenormalGuard denormalGuard;
        const UserAction action(*this); // one for all that the preset changes
        LoadPendingChunks();
        IsPath(name) ? ApplyFile(*presets, name, preset) : ApplyName(*presets, name, preset);
        return PluginCoreSuccess;
    }
    case PresetOpSave:
        LoadPendingChunks();
        Save(*presets, name, preset);
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}
