#pragma once

#include "xml/XMLDocument.h"
#include "xml/XMLParser.h"

#include <cstring>
#include <memory>
#include <string>

/// A tree as text, for comparing: `a x=1 y=2 [b, "text", <!comment>, {cdata}]`.
inline std::string treeText(XMLNode* node) {
    if (!node)
        return "nothing";
    std::string text;
    if (auto* data = dynamic_cast<XMLData*>(node))
        return text.append("\"").append(data->data()).append("\"");
    if (auto* comment = dynamic_cast<XMLComment*>(node))
        return text.append("<!").append(comment->comment()).append(">");
    if (auto* section = dynamic_cast<XMLCDATASection*>(node))
        return text.append("{").append(section->CDATASection()).append("}");
    XMLElement* element = node->toElement();
    text = element->tagName();
    for (const XMLAttribute& attribute : element->getAttributeList())
        text.append(" ").append(attribute.name).append("=").append(attribute.value);
    if (!element->firstChild())
        return text;
    text += " [";
    for (XMLNode* child = element->firstChild(); child; child = child->nextSibling())
        text.append(child == element->firstChild() ? "" : ", ").append(treeText(child));
    return text + "]";
}

/// A parse of a buffer that ends exactly where the text does, so that a sanitizer sees a read behind it.
class ExactParse {
public:
    explicit ExactParse(std::string_view text, bool keepText = false)
        : m_buffer(new char[text.size() + 1]), m_document(keepText) {
        const size_t length = std::min(text.find('\0'), text.size());
        std::memcpy(m_buffer.get(), text.data(), text.size());
        m_buffer[text.size()] = '\0';
        const CurrentPool current(&m_document);
        XMLParser parser(m_document);
        m_root = parser.parse(m_buffer.get(), length);
        m_error = parser.error();
        m_line = parser.line();
    }

    XMLElement* root() const { return m_root; }
    XMLParser::Error error() const { return m_error; }
    unsigned line() const { return m_line; }
    const XMLDocument& document() const { return m_document; }

private:
    std::unique_ptr<char[]> m_buffer;
    XMLDocument m_document;
    XMLElement* m_root = nullptr;
    XMLParser::Error m_error = XMLParser::NoError;
    unsigned m_line = 0;
};
