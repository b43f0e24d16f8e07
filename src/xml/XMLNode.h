#pragma once

#include "foundation/Pool.h"

#include <QString>
#include <cstdint>
#include <span>

class XMLElement;

/// A node of an XML tree. Nodes and their texts live in a pool, as a rule their document's, and are never
/// freed one by one. Texts are byte strings that end with a zero byte; a node keeps the reference that it is
/// given, so the text must live as long as the node.
class XMLNode : public PoolObject {
public:
    XMLNode() = default;
    virtual ~XMLNode() = default;
    XMLNode(const XMLNode&) = delete;
    XMLNode& operator=(const XMLNode&) = delete;

    /// Puts `child` behind the last child, which takes a walk along the children. The child's own next
    /// sibling stays as it is, so a whole chain can be appended.
    virtual void appendChild(XMLNode* child);
    virtual void prependChild(XMLNode* child);
    /// Unlinks `child`; nothing happens if it is no child of this node. The fields of the child itself stay,
    /// so a walk that stands on it can go on.
    virtual void removeChild(XMLNode* child);
    /// Puts `newChild` in the place of `oldChild`; nothing happens if that is no child of this node.
    virtual void replaceChild(XMLNode* oldChild, XMLNode* newChild);
    /// Splices the siblings that begin with `chain` into the children, right behind the child `after`, or in
    /// front of all if that is null. Without any child the chain becomes the children.
    virtual void reparentChildrenAfter(XMLNode* after, XMLNode* chain);
    /// As removeChild and replaceChild, for the child right behind `previous`, or the first one if that is
    /// null; there must be one. These take no walk.
    void removeChildAfter(XMLNode* previous);
    void replaceChildAfter(XMLNode* previous, XMLNode* newChild);
    /// This node as an element, or null if it is of another kind.
    virtual XMLElement* toElement() { return nullptr; }

    /// Null for the root and for a node outside any tree; so are the other two at the end of their road.
    XMLNode* parent() const { return m_parent; }
    XMLNode* nextSibling() const { return m_nextSibling; }
    XMLNode* firstChild() const { return m_firstChild; }
    /// The first child, or the next sibling, that is an element; null if there is none.
    XMLElement* firstChildElement() const { return elementFrom(m_firstChild); }
    XMLElement* nextSiblingElement() const { return elementFrom(m_nextSibling); }

    /// A copy of the text, with a zero byte behind it, in the current pool.
    static const char* mkString(const char* text, size_t length);
    static const char* mkString(const QString& text);

private:
    friend class XMLParser;

    XMLNode** linkTo(XMLNode* child);
    XMLNode*& linkAfter(XMLNode* previous) { return previous ? previous->m_nextSibling : m_firstChild; }
    static XMLElement* elementFrom(XMLNode* node);

    XMLNode* m_parent = nullptr;
    XMLNode* m_nextSibling = nullptr;
    XMLNode* m_firstChild = nullptr;
};

struct XMLAttribute {
    const char* name;
    const char* value;
};

/// An element: a tag name, and attributes in the order in which they came. Names compare exactly.
class XMLElement : public XMLNode {
public:
    explicit XMLElement(const char* tagName) : m_tagName(tagName) {}

    virtual void setTagName(const char* name) { m_tagName = name; }
    /// Never null, but may be empty.
    virtual const char* tagName() const { return m_tagName; }

    /// Replaces the value of the attribute of this name, or appends one. Both texts must live in the pool; so
    /// does the list, which grows in the current pool.
    virtual void setAttribute(const char* name, const char* value);
    virtual void removeAttribute(const char* name);
    virtual bool hasAttribute(const char* name) const { return find(name) != nullptr; }
    /// The value, or null if there is no such attribute.
    virtual const char* attribute(const char* name) const;
    /// The attributes in order. The view stands until the next attribute is set or removed.
    virtual std::span<XMLAttribute> getAttributeList() { return {m_attributes, m_attributeCount}; }
    std::span<const XMLAttribute> getAttributeList() const { return {m_attributes, m_attributeCount}; }

    /// Takes the attributes of another element, names and values shared, in the place of its own.
    void copyAttributes(const XMLElement& other);
    /// The value as text; null if there is no such attribute.
    QString attributeText(const char* name) const;

    XMLElement* toElement() override { return this; }

private:
    friend class XMLParser;

    XMLAttribute* find(const char* name) const;

    const char* m_tagName;
    XMLAttribute* m_attributes = nullptr;
    uint32_t m_attributeCount = 0;
    uint32_t m_attributeCapacity = 0;
};

inline XMLElement* XMLNode::elementFrom(XMLNode* node) {
    while (node && !node->toElement())
        node = node->m_nextSibling;
    return node ? node->toElement() : nullptr;
}

/// Text between tags.
class XMLData : public XMLNode {
public:
    explicit XMLData(const char* text) : m_text(text) {}
    virtual void setData(const char* text) { m_text = text; }
    virtual const char* data() const { return m_text; }

private:
    const char* m_text;
};

class XMLComment : public XMLNode {
public:
    explicit XMLComment(const char* text) : m_text(text) {}
    virtual void setComment(const char* text) { m_text = text; }
    virtual const char* comment() const { return m_text; }

private:
    const char* m_text;
};

class XMLCDATASection : public XMLNode {
public:
    explicit XMLCDATASection(const char* text) : m_text(text) {}
    virtual void setCDATASection(const char* text) { m_text = text; }
    virtual const char* CDATASection() const { return m_text; }

private:
    const char* m_text;
};
