// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/LmPresetFile.h"
#include "frameworks/plugincore/preset/file/PresetMetadata.h"
#include "frameworks/plugincore/preset/manager/PresetFolder.h"
#include "frameworks/plugincore/preset/manager/PresetNames.h"
#include "frameworks/plugincore/preset/manager/PresetTexts.h"

#include <functional>
#include <vector>

namespace Preset {

enum class PresetGroup {
    BuiltIn, ///< made on the spot; has no file
    Factory, ///< came with the product
    User     ///< in the user's folder
};

/// A line of the list of presets.
struct PresetEntry {
    String name;
    String path; ///< empty for BuiltIn
    PresetGroup group = PresetGroup::User;
    MetadataMap metadata;
    String fault; ///< shown in place of the comment; empty for a preset that looks usable
    String note;  ///< what else a list shows of it; may be empty

    String GetComment() const;
};

/// What the preset dialog does, without its looks: lists, applies, stores, removes and imports
/// presets. Failures carry the text that the user is shown and leave the elements' values as they
/// were. [ui]
class PresetManager {
public:
    /// All that is referred to outlives the manager.
    struct Setup {
        ProgramIdentity identity;
        String defaultFolder; ///< of the user's presets, while the settings name none
        String factoryFolder;
        Util::ConfigFile& settings;
        bool keepsSettings = true; ///< false: settings are looked at, never changed
        PresetDSPInterfaceBase& dsp;
        PresetMetadataBase& metadata;                     ///< of the preset last applied or saved
        std::function<void(const String& name)> onLoaded; ///< a preset has been applied
    };

    explicit PresetManager(Setup newSetup);

    /// What the dialog does when it opens: keeps the settings of now for the entry that brings
    /// them back, and lists.
    void Open();
    /// Looks at the folders anew, and into each file. A folder that is there but can't be looked
    /// into has a line of its own, with a fault, and so has a chosen one that is refused.
    void Refresh();
    /// Built-in ones first, then factory, then user presets, these two in order of their names.
    const std::vector<PresetEntry>& GetEntries() const { return entries; }
    /// By exact name the user's, then the factory's, then the built-in; then without case in the
    /// same order. Empty for an unknown name.
    std::optional<PresetEntry> Find(const String& name) const;

    /// One that fails has its fault in the list from then on.
    Util::Expected<void> Apply(const PresetEntry& entry);
    Util::Expected<void> ApplyFile(const String& path);
    /// Writes the values of now under a name into the user's folder, or to a path; gives the path.
    /// A name that differs in case only is that of a preset which is there; one that some file
    /// system refuses is made good. Read-only ones stay in any case. No name: a new one that is
    /// free. Without a comment, a preset that is replaced hands on its own.
    Util::Expected<String>
    Save(const String& name, const std::optional<String>& comment, Existing existing);
    Util::Expected<void>
    SaveFile(const String& path, const std::optional<String>& comment, Existing existing);
    /// Removes a preset's file for good. Read-only ones stay.
    Util::Expected<void> Remove(const PresetEntry& entry);
    /// Copies a preset's file into the user's folder under a free name, which it gives: its own,
    /// made good, with a number where that is taken or reserved. The copy is the file byte by byte,
    /// so that one which its author made read-only stays so: it may be what a group works with, and
    /// whoever wants it gone can remove its file.
    Util::Expected<String> Import(const String& path);

    /// A name that is neither in the list as a user's or built-in one nor among `others`: the
    /// wanted one, or with a number behind it.
    String MakeFreeName(const String& wanted, const std::vector<String>& others = {}) const;
    /// The text for the comment field, and back.
    static String GetShownComment(const String& comment);
    static String GetStoredComment(const String& shown);

    PresetFolder& GetFolder() { return folder; }
    /// Another folder for the user's presets, or none for the default, and lists it; gives the
    /// folder. One that can't be made or written isn't taken.
    Util::Expected<String> ChooseFolder(const String& path);
    String GetLastActive() const;
    /// Where the last import came from; empty before the first.
    String GetImportFolder() const;
    bool IsShownAtStartup() const;
    void SetShownAtStartup(bool isShown);

private:
    void ListAll(const String& userFolder);
    void ListFolder(const String& path, PresetGroup group);
    void NoteHidden();
    LmPresetFile MakeFile() const;
    /// Whose text a failure carries: that of the list, or that of a file.
    enum class Naming { Entry, File };
    Util::Expected<void> LoadAndSet(const String& path, Naming naming);
    Util::Expected<void> Load(LmPresetFile& file, const String& path, Naming naming) const;
    void NoteApplied(const String& name);
    /// False when there is a file that is kept.
    Util::Expected<bool>
    Write(const String& path, const std::optional<String>& comment, Existing existing);
    Util::Expected<void> ApplyValues(const PresetEntry& entry);
    /// Calls `create(path)` with free names until it makes the file; gives the path.
    template <typename Create>
    Util::Expected<String>
    CreateUnderFreeName(const String& userFolder, const String& wanted, Create create);

    const Setup setup;
    PresetFolder folder;
    std::vector<PresetEntry> entries;
    std::optional<Snapshot> formerSettings; // as of Open()
};

} // namespace Preset
