// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/Expected.h"

#include <memory>
#include <optional>
#include <vector>

namespace Util {

struct XmlErrorKind;

/// A text is no XML document; the detail is "Util::Xml".
using XmlError = BasicError<XmlErrorKind>;

/// One node of a document: a handle, valid for as long as the document is. Threads: as the
/// document's.
class XmlNode {
public:
    bool IsElement() const;
    /// Of an element its name, of a comment or a text its content.
    String GetName() const;
    /// Empty when there is no attribute of this name.
    String GetAttribute(const char* name) const;
    /// Children of this name, in the order of the document. They need not be elements.
    std::vector<XmlNode> GetChildren(const String& name) const;
    /// All children that are elements.
    std::vector<XmlNode> GetElements() const;
    /// The first child of this name, or else the first whose name differs in case only.
    std::optional<XmlNode> FindChild(const String& name) const;

    /// Appends. Characters that no document may hold, such as control codes, become "?".
    XmlNode AddElement(const String& name);
    void AddAttribute(const char* name, const String& text);

private:
    friend class XmlDocument;
    explicit XmlNode(void* newNode)
        : node(newNode)
    {
    }

    void* node; // owned by the document
};

/// An XML document in memory. Nesting, however deep, costs no stack. One object belongs to one
/// thread at a time.
class XmlDocument {
public:
    XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;
    ~XmlDocument();

    /// Takes the place of what was there. `path` is for the text of a failure only, an XmlError
    /// that goes on with the parser's own words. A document that lacks its root passes.
    Expected<void> Parse(ByteSpan text, const String& path);
    /// The first element on top.
    std::optional<XmlNode> GetRoot() const;
    /// What the XML declaration gives; empty without one.
    String GetXmlVersion() const;

    /// An empty document with a declaration of this version and a root element.
    XmlNode Start(const String& xmlVersion, const String& rootName);
    Bytes GetText() const;

private:
    class Content;

    std::unique_ptr<Content> content;
};

} // namespace Util
