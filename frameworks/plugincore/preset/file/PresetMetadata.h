// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/PresetHead.h"

namespace Preset {

/// What describes a preset, apart from its values. [ui]
class PresetMetadataBase {
public:
    PresetMetadataBase() = default;
    PresetMetadataBase(const PresetMetadataBase&) = delete;
    PresetMetadataBase& operator=(const PresetMetadataBase&) = delete;
    virtual ~PresetMetadataBase() = default;

    /// Type word of the preset; empty until one has been read.
    virtual String GetType() const = 0;
    /// Reads the head of a preset file only; a failure leaves everything as it was.
    virtual Util::Expected<void> ReadFromFile(const String& path) = 0;
    /// Takes over what has been read or written already.
    virtual void Assign(const String& newType, const MetadataMap& newTexts) = 0;
    virtual String GetComment() const = 0;
    virtual void SetComment(const String& comment) = 0;
    virtual void SetReadOnly(bool isReadOnly) = 0;
    /// All of it, as files hold it.
    virtual const MetadataMap& GetTexts() const = 0;
};

class PresetMetadata final : public PresetMetadataBase {
public:
    String GetType() const override { return type; }
    Util::Expected<void> ReadFromFile(const String& path) override;
    void Assign(const String& newType, const MetadataMap& newTexts) override;
    String GetComment() const override;
    void SetComment(const String& comment) override;
    void SetReadOnly(bool isReadOnly) override;
    const MetadataMap& GetTexts() const override { return texts; }

private:
    String type;
    MetadataMap texts;
};

} // namespace Preset
