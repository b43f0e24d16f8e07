#include "xml/XMLNode.h"

#include "foundation/Text.h"

#include <algorithm>
#include <cstring>

/// The link that holds `child`, or the null link at the end of the children.
XMLNode** XMLNode::linkTo(XMLNode* child) {
    XMLNode** link = &m_firstChild;
    while (*link && *link != child)
        link = &(*link)->m_nextSibling;
    return link;
}

void XMLNode::appendChild(XMLNode* child) {
    *linkTo(nullptr) = child;
    child->m_parent = this;
}

void XMLNode::prependChild(XMLNode* child) {
    child->m_nextSibling = m_firstChild;
    child->m_parent = this;
    m_firstChild = child;
}

void XMLNode::removeChild(XMLNode* child) {
    XMLNode** link = linkTo(child);
    if (*link)
        *link = child->m_nextSibling;
}

void XMLNode::replaceChild(XMLNode* oldChild, XMLNode* newChild) {
    XMLNode** link = linkTo(oldChild);
    if (!*link)
        return;
    newChild->m_parent = this;
    newChild->m_nextSibling = oldChild->m_nextSibling;
    *link = newChild;
}

void XMLNode::reparentChildrenAfter(XMLNode* after, XMLNode* chain) {
    if (!chain)
        return;
    XMLNode*& link = linkAfter(m_firstChild ? after : nullptr);
    XMLNode* last = chain;
    for (XMLNode* node = chain; node; node = node->m_nextSibling) {
        node->m_parent = this;
        last = node;
    }
    last->m_nextSibling = link;
    link = chain;
}

void XMLNode::removeChildAfter(XMLNode* previous) {
    XMLNode*& link = linkAfter(previous);
    link = link->m_nextSibling;
}

void XMLNode::replaceChildAfter(XMLNode* previous, XMLNode* newChild) {
    XMLNode*& link = linkAfter(previous);
    newChild->m_parent = this;
    newChild->m_nextSibling = link->m_nextSibling;
    link = newChild;
}

const char* XMLNode::mkString(const char* text, size_t length) {
    auto* copy = static_cast<char*>(PoolObject::operator new(length + 1));
    std::copy_n(text, length, copy);
    copy[length] = '\0';
    return copy;
}

const char* XMLNode::mkString(const QString& text) {
    auto* bytes = static_cast<char*>(PoolObject::operator new(static_cast<size_t>(text.size()) + 1));
    char* end = std::transform(text.begin(), text.end(), bytes,
                               [](QChar c) { return c.unicode() < 0x100 ? c.toLatin1() : '?'; });
    *end = '\0';
    return bytes;
}

XMLAttribute* XMLElement::find(const char* name) const {
    XMLAttribute* end = m_attributes + m_attributeCount;
    XMLAttribute* found = std::find_if(
        m_attributes, end, [name](const XMLAttribute& a) { return std::strcmp(a.name, name) == 0; });
    return found == end ? nullptr : found;
}

void XMLElement::setAttribute(const char* name, const char* value) {
    if (XMLAttribute* attribute = find(name)) {
        attribute->value = value;
        return;
    }
    if (m_attributeCount == m_attributeCapacity) {
        m_attributeCapacity = std::max(4u, 2 * m_attributeCapacity);
        auto* grown =
            static_cast<XMLAttribute*>(PoolObject::operator new(m_attributeCapacity * sizeof(XMLAttribute)));
        std::copy_n(m_attributes, m_attributeCount, grown);
        m_attributes = grown;
    }
    m_attributes[m_attributeCount++] = {name, value};
}

void XMLElement::removeAttribute(const char* name) {
    if (XMLAttribute* attribute = find(name)) {
        std::copy(attribute + 1, m_attributes + m_attributeCount, attribute);
        --m_attributeCount;
    }
}

const char* XMLElement::attribute(const char* name) const {
    const XMLAttribute* attribute = find(name);
    return attribute ? attribute->value : nullptr;
}

void XMLElement::copyAttributes(const XMLElement& other) {
    const uint32_t count = other.m_attributeCount;
    m_attributes = nullptr;
    if (count)
        m_attributes = static_cast<XMLAttribute*>(PoolObject::operator new(count * sizeof(XMLAttribute)));
    std::copy_n(other.m_attributes, count, m_attributes);
    m_attributeCount = m_attributeCapacity = count;
}

QString XMLElement::attributeText(const char* name) const {
    const char* value = attribute(name);
    return value ? toText(value) : QString();
}
