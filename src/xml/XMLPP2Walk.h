#pragma once

#include "xml/XMLPP2.h"

#include <deque>
#include <vector>

/// One walk over a tree that carries out the conditionals, in document order.
class XMLPP2::Walk {
public:
    /// What holds for a file's part of the tree.
    struct Scope {
        QString fileName;
        MacroMap macros;
        bool expandMacros;
        int includeDepth;
    };

    Walk(XMLPP2& document, Scope scope) : m_document(document) { m_scopes.push_back(std::move(scope)); }

    /// Walks `node` and its following siblings, with all below them.
    void run(XMLNode* node);

private:
    /// Where the walk stands among the children of one node.
    struct Level {
        XMLNode* parent;
        XMLNode* previous; ///< the child before `node`; null if `node` is the first
        XMLNode* node;     ///< null when all children are done
        const Scope* scope;
        XMLNode* hoist = nullptr; ///< whose children take the place of `node` when all below it is done

        XMLElement* element() const { return static_cast<XMLElement*>(node); }
    };

    using Rule = void (Walk::*)();
    static Rule ruleFor(const char* tagName);

    void enter();
    void leave();
    void applyIf();
    void applyIfNot();
    void applyIfDef();
    void applyIfNotDef();
    void applySwitch();
    void applyDefine();
    void applyFor();
    void applyInclude();

    void test(bool wanted);
    void testDefined(bool wanted);
    void decide(bool holds);
    void descend(XMLNode* hoist = nullptr);
    void advance();
    void remove();
    void runLoop(XMLElement* loop);
    XMLElement* loadInclude(const QString& fileName);
    const Scope* scopeOfInclude(const XMLElement& include, XMLElement* loaded, const QString& fileName);
    void inheritAttributes(const XMLElement& include, XMLElement* loaded);

    QString lookUp(const QString& name) const;
    QString includedFile(const QString& name) const;
    void warn(const QString& text) { m_document.warning("XmlPP::processConditionals(): " + text); }
    Level& level() { return m_levels.back(); }
    const Scope& scope() const { return *m_levels.back().scope; }

    XMLPP2& m_document;
    std::vector<Level> m_levels;
    std::deque<Scope> m_scopes; ///< of all files, for as long as the walk lasts
};
