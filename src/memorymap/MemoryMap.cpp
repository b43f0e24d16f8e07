#include "memorymap/MemoryMap.h"

#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"

#include <QDebug>
#include <cstring>
#include <utility>
#include <vector>

namespace {

QString withGlobalMacros(const QString& name) {
    return MacroSystem::replaceMacros(LazyScope([] { return macroSystem.globalMacros(true); }), name);
}

/// The element behind one in the order of the document, at or under `top`; null at the end.
MemoryMapElement* following(MemoryMapElement* element, const MemoryMapElement* top, bool enter) {
    if (enter) {
        if (MemoryMapElement* child = element->firstChildElement())
            return child;
    }
    while (element != top) {
        if (MemoryMapElement* next = element->nextSiblingElement())
            return next;
        element = static_cast<MemoryMapElement*>(element->parent());
    }
    return nullptr;
}

} // namespace

void MemoryMap::warning(const QString& message) { qWarning().noquote().nospace() << message; }

MemoryMapElement* MemoryMap::mkXMLElement(const char* name) { return new MemoryMapElement(name, m_readOnly); }

bool MemoryMap::load(const QString& path, const QString& macros, bool preprocess) {
    m_preprocess = preprocess;
    m_macros = macros;
    m_fileName = QString();
    m_loaded = 0;
    MemoryMapElement* loaded = load1(path);
    setRoot(loaded);
    if (!loaded)
        return false;
    m_fileName = withGlobalMacros(path);
    processImports();
    fixupAddresses();
    return true;
}

/// The root of a file, with the document left as it was; null if the file can't be loaded or has no element.
MemoryMapElement* MemoryMap::load1(const QString& name) {
    QString path = withGlobalMacros(name);
    if (!m_fileName.isEmpty() && !Path::isAbsolute(path))
        path = Path(m_fileName).dirPath(false) + "/" + path;
    XMLElement* const formerRoot = root();
    const Declared formerDeclared = declared();
    const bool formerReadOnly = std::exchange(m_readOnly, !isAccessible(path, AccessMode::Write));
    const qint64 time = files().status(path).modified; // before reading: a change from now on is seen
    setRoot(nullptr);
    const size_t bytes = textBytes();
    const bool read = m_preprocess ? XMLPP2::load(path, m_macros, true) : XMLDocument::load(path);
    m_loaded += textBytes() - bytes + (m_preprocess ? growth() : 0);
    MemoryMapElement* loaded = read ? getRoot() : nullptr;
    if (loaded)
        loaded->setLastModified(time);
    setRoot(formerRoot);
    if (!m_fileName.isEmpty())
        setDeclared(formerDeclared); // the document type is that of the top file
    m_readOnly = formerReadOnly;
    return loaded;
}

/// Imports count among the children of the top root alone.
void MemoryMap::processImports() {
    XMLNode* previous = nullptr;
    for (XMLNode* child = root()->firstChild(); child; previous = child, child = child->nextSibling()) {
        auto* import = static_cast<MemoryMapElement*>(child->toElement());
        if (!import || std::strcmp(import->tagName(), "Import") != 0)
            continue;
        if (m_loaded > usualGrowthLimit) { // a file that imports itself over and over
            warning("MemoryMap::processImports(): error: the document grows too large");
            return;
        }
        MemoryMapElement* loaded = load1(import->attributeText("filename"));
        if (!loaded)
            continue;
        loaded->setImportElement(import);
        root()->replaceChildAfter(previous, loaded);
        child = loaded;
    }
}

/// Outside bytes decide how deep the tree is, so the walk keeps a stack of its own.
void MemoryMap::fixupAddresses() {
    struct Due {
        MemoryMapElement* element;
        uint32_t base;
    };
    std::vector<Due> due = {{getRoot(), 0}};
    while (!due.empty()) {
        const Due next = due.back();
        due.pop_back();
        const uint32_t base = next.element->fixupAddress(next.base);
        for (auto* child = next.element->firstChildElement(); child; child = child->nextSiblingElement())
            due.push_back({child, base});
    }
}

bool MemoryMap::upToDate() const {
    const auto isAsLoaded = [](const QString& path, const MemoryMapElement* loaded) {
        const FileStatus status = files().status(path);
        return status.exists() && status.modified == loaded->lastModified();
    };
    if (!getRoot() || !isAsLoaded(m_fileName, getRoot()))
        return false;
    for (auto* child = getRoot()->firstChildElement(); child; child = child->nextSiblingElement()) {
        // As the import is written: a relative name counts from the current directory here.
        if (child->importElement() &&
            !isAsLoaded(withGlobalMacros(child->importElement()->attributeText("filename")), child))
            return false;
    }
    return true;
}

MemoryMapElement* MemoryMap::getSegment(const QString& name) const {
    return getNamedElementOfType(getRoot(), name, MemoryMapElement::MemorySegment);
}

MemoryMapElement* MemoryMap::getNamedElementOfType(MemoryMapElement* from, const QString& name,
                                                   MemoryMapElement::ElementType type) {
    const QByteArray wanted = toBytes(name);
    MemoryMapElement* element = from;
    while (element && !(element->elementType() == type && element->isNamed(wanted.constData())))
        element = following(element, from, true);
    return element;
}

void MemoryMap::getElementsOfType(MemoryMapElement* from, MemoryMapElement::ElementType type, bool prepend,
                                  QList<MemoryMapElement*>& list) {
    for (MemoryMapElement* element = from; element;) {
        const bool found = element->elementType() == type;
        if (found)
            list.insert(prepend ? 0 : list.size(), element);
        element = following(element, from, !found);
    }
}

QList<MemoryMapElement*> MemoryMap::getSegments(bool prepend) const {
    QList<MemoryMapElement*> segments;
    getElementsOfType(getRoot(), MemoryMapElement::MemorySegment, prepend, segments);
    return segments;
}

QList<MemoryMapElement*> MemoryMap::getSections(MemoryMapElement* from, bool inOrder) {
    QList<MemoryMapElement*> sections;
    getElementsOfType(from, MemoryMapElement::ProgramSection, !inOrder, sections);
    return sections;
}
