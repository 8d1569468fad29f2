// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PresetMessages.h"

#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/plugincore/preset/manager/PresetManager.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/Realtime.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

using Preset::PresetEntry;
using Preset::PresetManager;

bool IsPath(const String& name)
{
    return PluginCoreIsPresetPath(name.c_str()) != 0;
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
        return {}; // a wrapper that doesn't state its place: no presets, rather than those of
                   // another folder
    }
    return folder.IsEmpty() ? Util::Path::Join(Util::Path::GetFolder(modulePath), "Presets")
                            : Util::Path::ExpandUserFolders(folder);
}

String DescribeUnknownName(const String& name, const PresetManager& presets)
{
    std::vector<String> known;
    for (const PresetEntry& entry : presets.GetEntries()) {
        if (entry.fault.IsEmpty()) {
            known.push_back(entry.name);
        }
    }
    const String start = IsPath(name) ? "No such file or preset: \"" : "There is no preset \"";
    const String nearest = Preset::FindNearestName(name, known);
    const String guess = nearest.IsEmpty() ? String("") : " Did you mean \"" + nearest + "\"?";
    const String text = start + name + "\"." + guess + " There are: ";
    const std::size_t left = sizeof PresetRecord::message - 1;
    return text + Preset::JoinNames(known, left - std::min<std::size_t>(left, text.Length()));
}

// The text for the user, with what it is about and why.
String Describe(const String& name, const Util::ErrorVariant& error)
{
    String text = error.GetDescription();
    String subject = name;
    String reason;
    if (error.As<Preset::ManagerError>() != nullptr) {
        reason = error.GetDetail();
    } else if (const auto* fault = error.As<Util::File::Error>()) {
        reason = Preset::GetReason(error);
        subject = fault->GetArguments().empty() ? name : fault->GetArguments().front();
    }
    if (reason.IsEmpty()) {
        return text;
    }
    const bool isNamed = subject.IsEmpty() || text.Find(subject);
    return text + " (" + (isNamed ? reason : subject + ": " + reason) + ")";
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
    CopyText(record.message, entry.fault.IsEmpty() ? entry.note : entry.fault);
    const bool isReadOnly =
        entry.group == Preset::PresetGroup::BuiltIn || Preset::IsReadOnly(entry.metadata);
    record.isReadOnly = isReadOnly ? 1 : 0;
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

// By name; what reads as a path may be a name that was written down for a person, or one with the
// ending of its file.
std::optional<PresetEntry> FindNamed(const PresetManager& presets, const String& name)
{
    auto entry = presets.Find(name);
    if (entry || !IsPath(name)) {
        return entry;
    }
    std::string text = name.ToStdString();
    std::replace(text.begin(), text.end(), '/', '-'); // names of files can't hold it
    entry = presets.Find(text);
    return entry ? entry : presets.Find(Util::Path::GetStem(text));
}

// Also by the name that it was to be saved under.
std::optional<PresetEntry> FindListed(PresetManager& presets, const String& name)
{
    presets.Refresh();
    const auto entry = FindNamed(presets, name);
    return entry ? entry : presets.Find(Preset::MakeGoodName(name));
}

// The preset of that name as it is listed, without what is wrong with it; or why there is none.
std::optional<PresetEntry>
ShowListed(PresetManager& presets, const String& name, PresetRecord& record)
{
    auto entry = FindListed(presets, name);
    if (entry) {
        Show(*entry, record);
        CopyText(record.message, {});
    } else {
        Fail(DescribeUnknownName(name, presets), record);
    }
    return entry;
}

void Apply(PresetManager& presets, const String& name, PresetRecord& record)
{
    if (IsPath(name) && Util::File(name).Exists()) {
        ApplyFile(presets, name, record);
        return;
    }
    const auto entry = ShowListed(presets, name, record);
    if (!entry) {
        return;
    }
    if (const auto applied = presets.Apply(*entry); !applied) {
        Fail(Describe(name, applied.GetError()), record);
    }
}

void Save(PresetManager& presets, const String& name, PresetRecord& record)
{
    const auto comment =
        record.comment != nullptr ? std::optional<String>(record.comment) : std::nullopt;
    const auto existing =
        record.mayReplace != 0 ? Preset::Existing::Replace : Preset::Existing::Keep;
    Util::Expected<String> saved = name;
    if (!IsPath(name)) {
        saved = presets.Save(name, comment, existing);
    } else if (const auto written = presets.SaveFile(name, comment, existing); !written) {
        saved = written.GetError();
    }
    if (saved) {
        CopyText(record.presetName, Util::Path::GetStem(*saved));
        CopyText(record.path, *saved);
    } else {
        Fail(Describe(name, saved.GetError()), record);
    }
}

void Remove(PresetManager& presets, const String& name, PresetRecord& record)
{
    const auto entry = ShowListed(presets, name, record);
    if (!entry) {
        return;
    }
    if (record.mayReplace == 0) {
        CopyText(record.message, Preset::Texts::RemoveQuestion(entry->name));
    } else if (const auto removed = presets.Remove(*entry); !removed) {
        Fail(removed.GetDescription(), record);
    }
}

void Import(PresetManager& presets, const String& path, PresetRecord& record)
{
    if (const auto imported = presets.Import(path); !imported) {
        Fail(Describe(path, imported.GetError()), record);
    } else if (const auto entry = presets.Find(*imported)) {
        Show(*entry, record);
        CopyText(record.message, {});
    }
}

void SetFolder(PresetManager& presets, const String& path, PresetRecord& record)
{
    if (const auto chosen = presets.ChooseFolder(path); !chosen) {
        Fail(Describe(path, chosen.GetError()), record);
    } else {
        CopyText(record.path, *chosen);
    }
}

} // namespace

PresetMessages::PresetMessages(Setup newSetup)
    : setup(std::move(newSetup))
{
}

PresetMessages::~PresetMessages() = default;

bool PresetMessages::MakeManager()
{
    auto* interface = setup.set.GetPresetInterface();
    auto* metadata = setup.set.GetPresetMetadata();
    if (interface == nullptr || metadata == nullptr) {
        return false;
    }
    const PluginDefinition& product = setup.product;
    manager = std::make_unique<PresetManager>(PresetManager::Setup{
        {product.GetPresetId(),
         product.GetStateVersion(),
         product.GetVersionNumber(),
         product.GetBuildNumber()},
        GetDefaultPresetFolder(product),
        GetFactoryPresetFolder(product, setup.modulePath),
        setup.settings,
        setup.keepsSettings,
        *interface,
        *metadata,
        [this](const String& name) {
            setup.onApplied();
            GestureReport::UserAction(setup.gestures, "Preset: " + name).MarkChanged();
        }});
    return true;
}

uint32_t PresetMessages::Answer(PresetRecord& record)
{
    if (!manager && !MakeManager()) {
        return PluginCoreUnsupported;
    }
    const String name = record.name;
    record.failed = 0;
    CopyText(record.message, {});
    switch (record.op) {
    case PresetOpList:
        List(*manager, record);
        return PluginCoreSuccess;
    case PresetOpDescribe:
        if (record.index >= manager->GetEntries().size()) {
            return PluginCoreUnsupported;
        }
        Show(manager->GetEntries()[record.index], record);
        return PluginCoreSuccess;
    case PresetOpApply: {
        const Util::ScopedDenormalGuard denormalGuard;
        const GestureReport::UserAction action(setup.gestures); // one for all that changes
        setup.state.LoadPending();
        Apply(*manager, name, record);
        return PluginCoreSuccess;
    }
    case PresetOpSave:
        setup.state.LoadPending();
        Save(*manager, name, record);
        return PluginCoreSuccess;
    case PresetOpRemove:
        Remove(*manager, name, record);
        return PluginCoreSuccess;
    case PresetOpImport:
        Import(*manager, name, record);
        return PluginCoreSuccess;
    case PresetOpGetFolder:
        CopyText(record.path, manager->GetFolder().Get());
        return PluginCoreSuccess;
    case PresetOpSetFolder:
        if (setup.keepsSettings) {
            SetFolder(*manager, name, record);
        } else {
            Fail("An instance for files changes no settings.", record);
        }
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}
