#pragma once

#include "xml/XMLNode.h"

#include <cstdint>

/// An element of a memory map or section placement file: a segment of memory, a section of the program, a
/// register and so on, with its address and size as numbers. The tag name alone decides the kind.
class MemoryMapElement : public XMLElement {
public:
    enum ElementType {
        MemorySegment = 0,
        Register = 1,
        ProgramSection = 2,
        Root = 3,
        RegisterGroup = 4,
        BitField = 5,
        Enum = 6,
        Processor = 7,
        Unsupported = 8
    };

    /// `readOnly` tells that the element's file can't be written. `tagName` lies in the document's pool.
    MemoryMapElement(const char* tagName, bool readOnly);

    ElementType elementType() const { return m_elementType; }
    /// The tag of the kind, or "Unsupported".
    const char* elementTypeAsString() const;
    bool readOnly() const { return m_readOnly; }

    /// The derived numbers, in bytes; 0 where the file tells none.
    uint32_t address() const { return m_address; }
    uint32_t size() const { return m_size; }
    /// Whether the file tells them at all, be it in a text that makes no sense.
    bool hasAddress() const { return isStated("start"); }
    bool hasSize() const { return isStated("size"); }
    bool hasAddressSymbol() const { return hasAttribute("address_symbol"); }
    bool hasSizeSymbol() const { return hasAttribute("size_symbol"); }
    bool hasAddressSpace() const { return hasAttribute("addressSpace"); }
    /// Texts of attributes; null if they are absent.
    QString name() const { return attributeText("name"); }
    QString addressSymbol() const { return attributeText("address_symbol"); }
    QString sizeSymbol() const { return attributeText("size_symbol"); }
    QString addressSpace() const { return attributeText("addressSpace"); }
    bool isNamed(const char* name) const;
    /// Whether the contents are to be loaded: "Yes" to the letter.
    bool load() const;

    /// By address: -1 if the other one's is lower, 1 if it is higher, 0 if they are equal.
    int cmp(const MemoryMapElement& other) const;

    /// Derives the numbers from the attributes. A text that begins with "+" counts from `base`. Returns the
    /// base for the children.
    uint32_t fixupAddress(uint32_t base);

    /// On the root of an imported file: the element that it has replaced.
    const MemoryMapElement* importElement() const { return m_importElement; }
    void setImportElement(const MemoryMapElement* element) { m_importElement = element; }
    /// On the root of a file: when the file was last modified as it was loaded, in nanoseconds since the
    /// epoch; 0 on other elements.
    qint64 lastModified() const { return m_lastModified; }
    void setLastModified(qint64 time) { m_lastModified = time; }

    MemoryMapElement* firstChildElement() const;
    MemoryMapElement* nextSiblingElement() const;

private:
    bool isStated(const char* attribute) const;
    void updateAddress(uint32_t base);
    void updateSize();

    ElementType m_elementType;
    bool m_readOnly;
    uint32_t m_address = 0;
    uint32_t m_size = 0;
    const MemoryMapElement* m_importElement = nullptr;
    qint64 m_lastModified = 0;
};
