// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/PresetMetadata.h"

namespace Preset {

Util::Expected<void> PresetMetadata::ReadFromFile(const String& path)
{
    auto head = ReadPresetHead(path);
    if (!head) {
        return head.GetError();
    }
    type = head->type;
    texts = std::move(head->metadata);
    return {};
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
