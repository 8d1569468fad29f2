// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetHead.h"

#include "frameworks/plugincore/preset/file/PresetBytes.h"
#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/NumberText.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Preset {
namespace {

// Enough for any head that the writer makes of a comment of common length.
constexpr uint64_t FirstBytes = 4096;

// Position behind the first `end` at or behind `from`.
std::size_t Behind(std::string_view text, std::string_view end, std::size_t from)
{
    const std::size_t found = text.find(end, from);
    return found == std::string_view::npos ? found : found + end.size();
}

// Position of the ">" or "/>" that ends the tag whose name starts at `from`.
std::size_t FindTagEnd(std::string_view text, std::size_t from)
{
    char quote = 0;
    for (std::size_t at = from; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            quote = c == quote ? char{0} : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            return text[at - 1] == '/' ? at - 1 : at;
        }
    }
    return std::string_view::npos;
}

// A whole document of the text's first element without its contents. Empty when the element's tag
// doesn't end within the text, and for what no preset of ours starts with, such as a document type.
std::optional<std::string> CutHead(std::string_view text)
{
    const bool isWide = text.find('\0') != std::string_view::npos; // two bytes a character
    std::size_t at = isWide ? std::string_view::npos : 0;
    while (at != std::string_view::npos) {
        at = text.find('<', at);
        if (at == std::string_view::npos || at + 1 >= text.size()) {
            break;
        }
        const std::string_view tag = text.substr(at);
        if (tag.starts_with("<?")) {
            at = Behind(text, "?>", at);
        } else if (tag.starts_with("<!--")) {
            at = Behind(text, "-->", at + 4);
        } else if (tag.starts_with("<!")) {
            break;
        } else {
            const std::size_t end = FindTagEnd(text, at + 1);
            return end == std::string_view::npos
                       ? std::nullopt
                       : std::optional(std::string(text.substr(0, end)) + "/>");
        }
    }
    return std::nullopt;
}

Util::Expected<PresetHead> ParseHead(Util::ByteSpan text, const String& path)
{
    Util::XmlDocument document;
    if (auto parsed = document.Parse(text, path); !parsed) {
        return MakeParseError(parsed.GetError().GetDescription());
    }
    const auto root = document.GetRoot();
    if (!root) {
        return MakeParseError("Missing root element.");
    }
    return GetHead(document, *root);
}

std::string_view AsText(Util::ByteSpan bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Util::ByteSpan AsBytes(std::string_view text)
{
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

// The first bytes of a plain file; none when it takes more to know.
Util::Bytes ReadFirstBytes(const String& path)
{
    Util::File file(path);
    if (!file.Open(Util::File::Mode::Read)) {
        return {};
    }
    const auto size = file.GetSize();
    Util::Bytes bytes(size ? std::min(*size, FirstBytes) : 0);
    if (!file.Read(bytes.data(), bytes.size()) || IsCompressedPreset(bytes)) {
        return {};
    }
    return bytes;
}

} // namespace

bool IsReadOnly(const MetadataMap& metadata)
{
    const auto found = metadata.find(MetadataName::ReadOnly);
    return found != metadata.end() && !found->second.IsEmpty() && found->second != "0";
}

PresetHead GetHead(const Util::XmlDocument& document, const Util::XmlNode& root)
{
    PresetHead head;
    head.xmlVersion = document.GetXmlVersion();
    head.type = root.GetName();
    head.paramsVersion = Util::ParseUInt(root.GetAttribute("PresetVer"));
    head.pluginVersion = Util::ParseUInt(root.GetAttribute("PluginVer"));
    for (const char* name : MetadataName::All) {
        head.metadata[name] = root.GetAttribute(name);
    }
    return head;
}

Util::Expected<PresetHead> ReadPresetHead(const String& path)
{
    const Util::Bytes first = ReadFirstBytes(path);
    if (const auto text = CutHead(AsText(first))) {
        return ParseHead(AsBytes(*text), path);
    }
    auto whole = ReadPresetText(path);
    if (!whole) {
        return whole.GetError();
    }
    const auto text = CutHead(AsText(*whole));
    return ParseHead(text ? AsBytes(*text) : *whole, path);
}

} // namespace Preset
