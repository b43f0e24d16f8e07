#include "memorymap/MemoryMapElement.h"

#include "memorymap/NumberText.h"
#include "memorymap/ParserException.h"
#include "memorymap/SimpleExpressionParser.h"

#include <cstring>

namespace {

using E = MemoryMapElement;

constexpr const char* typeNames[] = {"MemorySegment", "Register", "ProgramSection", "Root",
                                     "RegisterGroup", "BitField", "Enum",           "Processor"};

E::ElementType typeOf(const char* tagName) {
    int type = 0;
    for (const char* name : typeNames) {
        if (std::strcmp(name, tagName) == 0)
            return static_cast<E::ElementType>(type);
        ++type;
    }
    return E::Unsupported;
}

/// What the address and the size of a kind of element are made of.
struct Rule {
    bool hasNumbers;
    bool countsFromBase;
    bool isBase; ///< for its children
    bool sizeIsExpression;
};

Rule ruleOf(E::ElementType type) {
    switch (type) {
    case E::MemorySegment:
    case E::ProgramSection:
    case E::RegisterGroup:
        return {true, true, true, true};
    case E::Register:
        return {true, true, false, false};
    case E::BitField:
    case E::Enum:
        return {true, false, false, false};
    default:
        return {};
    }
}

} // namespace

MemoryMapElement::MemoryMapElement(const char* tagName, bool readOnly)
    : XMLElement(tagName), m_elementType(typeOf(tagName)), m_readOnly(readOnly) {}

const char* MemoryMapElement::elementTypeAsString() const {
    return m_elementType == Unsupported ? "Unsupported" : typeNames[m_elementType];
}

bool MemoryMapElement::isStated(const char* name) const {
    const char* text = attribute(name);
    return text && *text;
}

bool MemoryMapElement::isNamed(const char* name) const {
    const char* own = attribute("name");
    return own && std::strcmp(own, name) == 0;
}

bool MemoryMapElement::load() const {
    const char* text = attribute("load");
    return text && std::strcmp(text, "Yes") == 0;
}

int MemoryMapElement::cmp(const MemoryMapElement& other) const {
    return other.m_address < m_address ? -1 : other.m_address > m_address;
}

uint32_t MemoryMapElement::fixupAddress(uint32_t base) {
    const Rule rule = ruleOf(m_elementType);
    if (!rule.hasNumbers)
        return base;
    if (hasAttribute("size")) {
        if (rule.sizeIsExpression)
            updateSize();
        else
            m_size = static_cast<uint32_t>(fromStringTouint64(attribute("size")));
    }
    if (!hasAttribute("start"))
        return base;
    updateAddress(rule.countsFromBase ? base : 0);
    return rule.isBase ? m_address : base;
}

/// A text that can't be evaluated leaves the address 0.
void MemoryMapElement::updateAddress(uint32_t base) {
    m_address = 0;
    const char* text = attribute("start");
    if (!*text)
        return;
    try {
        bool isNumber = false; // what is none counts as 0
        m_address = static_cast<uint32_t>(simpleExpressionParser.getUInteger(text, isNumber));
        if (*text == '+')
            m_address += base;
    } catch (const ParserException&) {
    }
}

/// A text that can't be evaluated leaves the size as it was.
void MemoryMapElement::updateSize() {
    try {
        bool isNumber = false;
        const uint64_t size = simpleExpressionParser.getUInteger(attribute("size"), isNumber);
        if (isNumber)
            m_size = static_cast<uint32_t>(size);
    } catch (const ParserException&) {
    }
}

// Every element of a memory map is made by it.

MemoryMapElement* MemoryMapElement::firstChildElement() const {
    return static_cast<MemoryMapElement*>(XMLElement::firstChildElement());
}

MemoryMapElement* MemoryMapElement::nextSiblingElement() const {
    return static_cast<MemoryMapElement*>(XMLElement::nextSiblingElement());
}
