// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/XmlDocument.h"

#include "frameworks/qobase/util/CleanText.h"

#include <pugixml.hpp>

#include <string_view>

namespace Util {
namespace {

pugi::xml_node ToLibrary(void* node)
{
    return pugi::xml_node(static_cast<pugi::xml_node_struct*>(node));
}

std::string_view NameOf(const pugi::xml_node& node)
{
    return node.type() == pugi::node_element ? node.name() : node.value();
}

class BytesWriter final : public pugi::xml_writer {
public:
    Bytes bytes;

    void write(const void* data, size_t size) override
    {
        const auto* begin = static_cast<const uint8_t*>(data);
        bytes.insert(bytes.end(), begin, begin + size);
    }
};

} // namespace

bool XmlNode::IsElement() const
{
    return ToLibrary(node).type() == pugi::node_element;
}

String XmlNode::GetName() const
{
    return NameOf(ToLibrary(node));
}

String XmlNode::GetAttribute(const char* name) const
{
    return ToLibrary(node).attribute(name).value();
}

std::vector<XmlNode> XmlNode::GetChildren(const String& name) const
{
    std::vector<XmlNode> result;
    for (const pugi::xml_node& child : ToLibrary(node).children()) {
        if (NameOf(child) == name.View()) {
            result.push_back(XmlNode(child.internal_object()));
        }
    }
    return result;
}

std::vector<XmlNode> XmlNode::GetElements() const
{
    std::vector<XmlNode> result;
    for (const pugi::xml_node& child : ToLibrary(node).children()) {
        if (child.type() == pugi::node_element) {
            result.push_back(XmlNode(child.internal_object()));
        }
    }
    return result;
}

std::optional<XmlNode> XmlNode::FindChild(const String& name) const
{
    std::optional<XmlNode> similar;
    const String folded = name.ToLower();
    for (const pugi::xml_node& child : ToLibrary(node).children()) {
        const std::string_view childName = NameOf(child);
        if (childName == name.View()) {
            return XmlNode(child.internal_object());
        }
        const bool isSimilar = childName.size() == name.Length() && !similar;
        if (isSimilar && String(childName).ToLower() == folded) {
            similar = XmlNode(child.internal_object());
        }
    }
    return similar;
}

XmlNode XmlNode::AddElement(const String& name)
{
    return XmlNode(ToLibrary(node).append_child(name.c_str()).internal_object());
}

void XmlNode::AddAttribute(const char* name, const String& text)
{
    ToLibrary(node).append_attribute(name).set_value(CleanText(text).c_str());
}

class XmlDocument::Content {
public:
    pugi::xml_document document;
};

XmlDocument::XmlDocument()
    : content(std::make_unique<Content>())
{
}

XmlDocument::~XmlDocument() = default;

Expected<void> XmlDocument::Parse(ByteSpan text, const String& path)
{
    constexpr unsigned EveryNode =
        pugi::parse_default | pugi::parse_comments | pugi::parse_pi | pugi::parse_declaration;
    const pugi::xml_parse_result result =
        content->document.load_buffer(text.data(), text.size(), EveryNode);
    const bool isWithoutRoot = result.status == pugi::status_no_document_element &&
                               !content->document.first_child().empty();
    if (result || isWithoutRoot) {
        return {};
    }
    // Joined, not filled in: a path may hold what looks like a placeholder.
    return XmlError(path + ": " + result.description(), "Util::Xml");
}

std::optional<XmlNode> XmlDocument::GetRoot() const
{
    const pugi::xml_node root = content->document.document_element();
    return root.empty() ? std::nullopt : std::optional(XmlNode(root.internal_object()));
}

String XmlDocument::GetXmlVersion() const
{
    for (const pugi::xml_node& node : content->document.children()) {
        if (node.type() == pugi::node_declaration) {
            return node.attribute("version").value();
        }
    }
    return {};
}

XmlNode XmlDocument::Start(const String& xmlVersion, const String& rootName)
{
    content->document.reset();
    pugi::xml_node declaration = content->document.append_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value(xmlVersion.c_str());
    declaration.append_attribute("standalone").set_value("yes");
    return XmlNode(content->document.append_child(rootName.c_str()).internal_object());
}

Bytes XmlDocument::GetText() const
{
    BytesWriter writer;
    content->document.save(writer, "    ", pugi::format_default, pugi::encoding_utf8);
    return std::move(writer.bytes);
}

} // namespace Util
