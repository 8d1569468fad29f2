// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/XmlDocument.h"

#include <cstdint>
#include <map>
#include <optional>

namespace Preset {

namespace MetadataName {
inline constexpr const char* ReadOnly = "ReadOnly";
inline constexpr const char* Comments = "Comments";
inline constexpr const char* LastUsed = "LastUsed";
inline constexpr const char* LastModified = "LastModified";
/// In the order in which files have them.
inline constexpr const char* All[] = {ReadOnly, Comments, LastUsed, LastModified};
} // namespace MetadataName

/// Descriptive texts by name; a missing one is as good as an empty one.
using MetadataMap = std::map<String, String>;

/// Any text but none and "0" counts.
bool IsReadOnly(const MetadataMap& metadata);

/// What a preset's head holds: everything but its values.
struct PresetHead {
    String xmlVersion; ///< of the XML declaration
    String type;       ///< the root's name
    std::optional<uint32_t> paramsVersion;
    std::optional<uint32_t> pluginVersion; ///< major * 1000 + minor
    MetadataMap metadata;
};

/// Of a document's root element.
PresetHead GetHead(const Util::XmlDocument& document, const Util::XmlNode& root);

/// Of the preset file at `path`. Of a plain file only the bytes up to the end of the root's tag are
/// looked at, so that a fault behind it goes unseen. [ui]
Util::Expected<PresetHead> ReadPresetHead(const String& path);

} // namespace Preset
