// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/PresetDSPInterface.h"
#include "frameworks/plugincore/preset/file/PresetHead.h"

#include <memory>

namespace Util {
class ConfigFile;
}

namespace Preset {

class LegacyPresetFileHandlerBase;

enum class TouchModified { No, Yes };
/// What becomes of a file in the place of a new one.
enum class Existing { Keep, Replace };

/// A preset file: an XML document with the values of a set of elements, some descriptive texts, and
/// perhaps macro controls. Reading goes into the snapshot, so that what a file lacks keeps the
/// value that the snapshot had: take one from the elements first. Nothing here touches the elements
/// but TakeSnapshotFromDSP(). [ui]
class PresetFileBase {
public:
    /// Both outlive the file object. Without settings, files are written without the optional
    /// attributes.
    PresetFileBase(PresetDSPInterfaceBase& newDsp, const Util::ConfigFile* newSettings);
    PresetFileBase(const PresetFileBase&) = delete;
    PresetFileBase& operator=(const PresetFileBase&) = delete;
    virtual ~PresetFileBase();

    /// Reads a plain or compressed file. A failure leaves path, snapshot and metadata as they were.
    virtual Util::Expected<void> Load(const String& newPath);
    /// Load() of the path of the last Load() or Save() that worked.
    virtual Util::Expected<void> Reload();
    /// Writes a plain file, whole or not at all, and makes its folder when it is missing.
    /// `TouchModified::Yes` sets "LastModified" to now.
    virtual Util::Expected<void>
    Save(const String& newPath, const Snapshot& newSnapshot, TouchModified touch);
    /// Save() that may keep a file which is there, and then gives false. That none is there is made
    /// sure by the making itself, so that no other process can come in between.
    Util::Expected<bool> Write(const String& newPath,
                               const Snapshot& newSnapshot,
                               TouchModified touch,
                               Existing existing);
    /// Save() to the stored path of the stored snapshot. Does nothing, with success, when the file
    /// was read from an older form: that one is kept.
    virtual Util::Expected<void> SaveAgain();
    virtual void TakeSnapshotFromDSP();

    /// The program's own, as they are written.
    virtual String GetType() const = 0;
    virtual uint32_t GetPluginVersion() const = 0; ///< major * 1000 + minor
    virtual uint32_t GetPluginBuild() const = 0;
    virtual uint32_t GetParamsVersion() const = 0;

    virtual bool IsCurrentFormat(const Util::XmlNode& root);
    /// Fills an empty document. Values outside their range are clamped, in the snapshot too.
    virtual void WriteDocument(Util::XmlDocument& document, Snapshot& values);
    virtual Util::Expected<void> ReadCurrent(const Util::XmlNode& root);
    /// Reads through the legacy handler.
    virtual Util::Expected<void> ReadLegacy(std::optional<uint32_t> version,
                                            std::optional<uint32_t> pluginVersion,
                                            const Util::XmlNode& root);

    /// Reads sliders and check boxes into the snapshot, with the parameters there that are bound to
    /// each.
    Util::Expected<void> ReadMacroControls(const Util::XmlNode& root);
    /// Stores in the snapshot; a pair that isn't there, or has another type, is ignored.
    virtual void SetBoolValue(const String& element, const String& param, bool value);
    virtual void SetEnumValue(const String& element, const String& param, uint32_t value);
    virtual void SetFloatValue(const String& element, const String& param, float value);
    /// By the parameter's type; a text that isn't of it is ignored.
    virtual void SetTextValue(const String& element, const String& param, const String& value);
    virtual void SetExtraBytes(const String& element, Util::Bytes bytes);

    virtual bool IsParamsVersionValid(std::optional<uint32_t> version) const = 0;
    virtual bool IsPluginVersionValid(std::optional<uint32_t> version) const = 0;
    virtual bool IsTypeValid(const String& type) const = 0;

    const Snapshot& GetSnapshot() const { return snapshot; }
    const MetadataMap& GetMetadata() const { return metadata; }
    void SetMetadata(MetadataMap newMetadata) { metadata = std::move(newMetadata); }
    const String& GetPath() const { return path; }
    /// File name without extension.
    const String& GetName() const { return name; }
    /// Of the last file that was read, also when it was refused.
    const PresetHead& GetHeadRead() const { return head; }
    bool WasWritten() const { return wasWritten; }
    bool WasLegacy() const { return wasLegacy; }

protected:
    virtual Util::Expected<void> ReadCompressed(Util::ByteSpan bytes);
    virtual Util::Expected<void> ReadPlain(Util::ByteSpan text);

    /// Makes the reader of older forms for the type that a file has; never null.
    virtual std::unique_ptr<LegacyPresetFileHandlerBase> MakeLegacyHandler(const String& type) = 0;
    /// Whether a file must have the element's category.
    virtual bool IsCategoryRequired(const String& element) const = 0;
    /// Whether the parameter carries the optional attributes even when the user didn't ask for
    /// them.
    virtual bool IsAlwaysVerbose(const ParamKey& /*key*/) const { return false; }

private:
    // PresetFileReader.cpp
    Util::Expected<void> ReadDocument(const Util::XmlDocument& document);
    Util::Expected<void> RefuseFormat() const;
    Util::Expected<void> ReadCategories(const Util::XmlNode& root);
    Util::Expected<void> ReadCategory(const Util::XmlNode& category);

    // PresetFileWriter.cpp
    void WriteCategory(const String& element, ElementSnapshot& values, Util::XmlNode& root);

    Util::Expected<void> LoadBytes();
    void StorePath(const String& newPath);
    bool IsVerbose();

    PresetDSPInterfaceBase& dsp;
    const Util::ConfigFile* const settings; // not owned; may be null
    String path;
    String name;
    PresetHead head;
    MetadataMap metadata;
    Snapshot snapshot;
    bool wasWritten = false;
    bool wasLegacy = false;
    std::optional<bool> verbose; // empty until the first use
    std::unique_ptr<LegacyPresetFileHandlerBase> legacyHandler;
};

} // namespace Preset
