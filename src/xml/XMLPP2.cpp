#include "xml/XMLPP2.h"

#include "macros/MacroSystem.h"
#include "xml/XMLPP2Walk.h"

#include <cstring>

namespace {

bool holdsReference(const char* text) {
    const char* dollar = std::strchr(text, '$');
    while (dollar && dollar[1] != '(')
        dollar = std::strchr(dollar + 1, '$');
    return dollar;
}

} // namespace

bool XMLPP2::load(const QString& fileName, const QString& macroText, bool expandMacros) {
    if (!XMLDocument::load(fileName))
        return false;
    const CurrentPool current(this);
    m_growth = 0;
    const MacroMap macros = MacroSystem::macrosFromStringList(macroText.split(u';', Qt::SkipEmptyParts));
    processConditionals(root(), fileName, macros, expandMacros);
    return true;
}

void XMLPP2::processConditionals(XMLNode* node, const QString& fileName, const MacroMap& macros,
                                 bool expandMacros) {
    if (node)
        Walk(*this, {fileName, macros, expandMacros, 0}).run(node);
}

void XMLPP2::expandAttributeMacros(XMLElement* element, const MacroScope& macros) {
    for (XMLAttribute& attribute : element->getAttributeList()) {
        if (!holdsReference(attribute.value))
            continue;
        m_unexpanded = QLatin1String(attribute.value);
        const QString value = MacroSystem::replaceMacros2(macros, m_unexpanded);
        if (!grow(static_cast<size_t>(value.size())))
            return;
        attribute.value = XMLNode::mkString(value);
    }
}

XMLElement* XMLPP2::copyElementAndExpandAttributeMacros(XMLElement* element, const MacroScope& macros) {
    XMLElement* const top = copyOf(element, macros);
    XMLElement* source = element;
    XMLElement* copy = top;
    while (copy) {
        if (XMLElement* child = source->firstChildElement()) {
            XMLElement* childCopy = copyOf(child, macros);
            if (childCopy)
                copy->appendChild(childCopy);
            source = child;
            copy = childCopy;
            continue;
        }
        XMLElement* following = nullptr;
        while (source != element && !(following = source->nextSiblingElement())) {
            source = static_cast<XMLElement*>(source->parent());
            copy = static_cast<XMLElement*>(copy->parent());
        }
        if (!following)
            return top;
        XMLElement* followingCopy = copyOf(following, macros);
        if (followingCopy)
            copy->parent()->reparentChildrenAfter(copy, followingCopy);
        source = following;
        copy = followingCopy;
    }
    return nullptr;
}

/// One element without its children; null if the document has reached its bound.
XMLElement* XMLPP2::copyOf(XMLElement* element, const MacroScope& macros) {
    if (!grow(sizeof(XMLElement) + element->getAttributeList().size_bytes()))
        return nullptr;
    XMLElement* copy = mkXMLElement(element->tagName());
    copy->copyAttributes(*element);
    expandAttributeMacros(copy, macros);
    return copy;
}

/// Takes note of what the document grows by. False, with one warning in a load, if that is too much.
bool XMLPP2::grow(size_t bytes) {
    const bool before = hasGrownTooLarge();
    m_growth += bytes;
    if (!before && hasGrownTooLarge())
        warning("XmlPP::processConditionals(): error: the document grows too large");
    return !hasGrownTooLarge();
}
