#pragma once

#include "memorymap/MemoryMapElement.h"
#include "xml/XMLPP2.h"

#include <QList>

/// A memory map file, which says what memory a target has, or a section placement file, which has the same
/// form and says what goes where in it. Imported files are part of the tree. It is only read once it is
/// loaded.
class MemoryMap : public XMLPP2 {
public:
    MemoryMap() = default;

    /// Loads a file with all that it imports and derives the addresses and sizes. With `preprocess` the
    /// conditionals are carried out, with `macros`, `name=value` entries separated by ";". False if the file
    /// can't be read, is no XML, or has no element. What can't be imported stays an `Import` element, and an
    /// address or a size that makes no sense stays 0, in silence.
    bool load(const QString& path, const QString& macros, bool preprocess);
    /// Whether the file and all that it imports still have the times that they had when they were loaded.
    bool upToDate() const;
    void warning(const QString& message) override;
    MemoryMapElement* mkXMLElement(const char* name) override;

    /// The root; null before a load has succeeded.
    MemoryMapElement* getRoot() const { return static_cast<MemoryMapElement*>(root()); }
    /// The first segment of this name, in the order of the document; null if there is none.
    MemoryMapElement* getSegment(const QString& name) const;
    /// The first element of this name and type at or under `from`; null if there is none.
    static MemoryMapElement* getNamedElementOfType(MemoryMapElement* from, const QString& name,
                                                   MemoryMapElement::ElementType type);
    /// Adds the elements of a type at or under `from`, in the order of the document, each at the end of the
    /// list, or each at its front. What lies within one that was found is not looked at.
    static void getElementsOfType(MemoryMapElement* from, MemoryMapElement::ElementType type, bool prepend,
                                  QList<MemoryMapElement*>& list);
    /// The segments, in the order of the document or in the reverse one.
    QList<MemoryMapElement*> getSegments(bool prepend) const;
    /// The program sections under an element, in the order of the document or in the reverse one.
    static QList<MemoryMapElement*> getSections(MemoryMapElement* from, bool inOrder);

    /// The path of the top file, macros expanded.
    const QString& fileName() const { return m_fileName; }

private:
    MemoryMapElement* load1(const QString& name);
    void processImports();
    void fixupAddresses();

    bool m_preprocess = false;
    bool m_readOnly = false; ///< of the file that is being loaded
    QString m_macros;
    QString m_fileName;
    size_t m_loaded = 0; ///< bytes of all files, with what they grew by
};
