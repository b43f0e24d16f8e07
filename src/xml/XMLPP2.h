#pragma once

#include "macros/MacroScope.h"
#include "xml/XMLDocument.h"

/// A document with a small macro language: tests, defines, switches, loops and includes, all written as
/// elements. They are carried out on the tree right after parsing, so that a reader of the document sees
/// plain data. A fault of the language ends in a warning, and the load goes on.
class XMLPP2 : public XMLDocument {
public:
    explicit XMLPP2(bool keepText = false) : XMLDocument(keepText) {}

    /// Receives every fault of the language.
    virtual void warning(const QString& message) = 0;

    using XMLDocument::load;
    /// Loads a file and carries out its conditionals. `macroText` holds `name=value` entries separated by
    /// ";", and may be null. With `expandMacros` references in attributes are expanded with them. False if
    /// the file itself can't be read or parsed; see errorText, which a failing include sets too.
    bool load(const QString& fileName, const QString& macroText, bool expandMacros);

    /// Carries out the conditionals in `node` and its following siblings. Relative includes count from the
    /// directory of `fileName`. New nodes and texts come from the current pool.
    void processConditionals(XMLNode* node, const QString& fileName, const MacroMap& macros,
                             bool expandMacros);

    /// Expands the references in the attributes' values; names stay.
    void expandAttributeMacros(XMLElement* element, const MacroScope& macros);
    /// A deep copy of the element, attributes expanded, made of elements alone. Texts without references are
    /// shared. Null if the document has reached its bound.
    XMLElement* copyElementAndExpandAttributeMacros(XMLElement* element, const MacroScope& macros);

    /// What <define> has set so far. It outlasts a load.
    const MacroMap& defines() const { return m_defines; }

    /// Includes within includes up to this depth.
    static constexpr int includeDepthLimit = 64;
    /// Bytes that a load may add to its document by loops, includes and expansion: more than any real file
    /// needs, and little enough for a file that includes itself or loops for ever to end soon.
    static constexpr size_t usualGrowthLimit = size_t{1} << 27;
    void setGrowthLimit(size_t bytes) { m_growthLimit = bytes; }

protected:
    /// Bytes that the last load has added to the document's own text.
    size_t growth() const { return m_growth; }

private:
    class Walk;

    bool grow(size_t bytes);
    bool hasGrownTooLarge() const { return m_growth > m_growthLimit; }
    XMLElement* copyOf(XMLElement* element, const MacroScope& macros);

    MacroMap m_defines;
    size_t m_growth = 0;
    size_t m_growthLimit = usualGrowthLimit;
    QString m_unexpanded; ///< one buffer for the texts that go into expansions
};
