// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetMetadata.h"

namespace Preset {

Util::Expected<void> PresetMetadata::ReadFromFile(const String& path)
{
    const auto head = ReadPresetHead(path);
    if (!head) {
        return head.GetError();
    }
    Assign(head->type, head->metadata);
    return {};
}

void PresetMetadata::Assign(const String& newType, const MetadataMap& newTexts)
{
    type = newType;
    texts = newTexts;
}

String PresetMetadata::GetComment() const
{
    const auto found = texts.find(MetadataName::Comments);
    return found != texts.end() ? found->second : String();
}

void PresetMetadata::SetComment(const String& comment)
{
    texts[MetadataName::Comments] = comment;
}

void PresetMetadata::SetReadOnly(bool isReadOnly)
{
    texts[MetadataName::ReadOnly] = isReadOnly ? "1" : "";
}

} // namespace Preset
