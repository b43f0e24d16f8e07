// The walk goes through the tree in document order, depth first, with a stack of its own, since outside bytes
// decide how deep the tree is. Each element's tag name selects a rule, and every rule ends in one of three
// ways: the node is removed, the walk goes down into it, or it goes on behind it.
//
// A true <if> is replaced by its children before they are walked. That gives the same tree as walking them
// first would, and moves each node once however deep the tests nest. The branches of a <switch> and what an
// <include> brings are walked where they stand, and what shall remain of them is hoisted when all below is
// done.
//
// Nodes are unlinked from where the walk stands, which knows the child before: to search the children for
// each of them would take quadratic time.

#include "xml/XMLPP2Walk.h"

#include "foundation/Number.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/// The least that an include counts towards the document's growth.
constexpr size_t includeCost = 1000;

/// The numbers of <for>: 32 bits, decimal or with a prefix; 0 for what is no number.
uint32_t numberIn(const QString& text) {
    return isBinaryNumber(text) ? 0 : static_cast<uint32_t>(text.toULong(nullptr, 0));
}

QString decimal(uint32_t value) { return QString::number(value); }

QString hexadecimal(uint32_t value) {
    char16_t digits[8];
    char16_t* first = std::end(digits);
    do {
        *--first = u"0123456789ABCDEF"[value % 16];
        value /= 16;
    } while (value);
    return "0x" % QStringView(first, std::end(digits));
}

/// The macros of one step of a loop. There are 260 of them, and a copy asks for a few, so each is made when
/// it is asked for.
class LoopScope : public MacroScope {
public:
    LoopScope(const QString& index, uint32_t step, uint32_t applied)
        : m_index(index), m_step(step), m_applied(applied) {}

    std::optional<QString> value(const QString& name) const override {
        if (!name.startsWith(m_index))
            return std::nullopt;
        const QStringView form = QStringView(name).mid(m_index.size());
        if (form.isEmpty())
            return decimal(m_step);
        if (form == u"_hex")
            return hexadecimal(m_step);
        if (form == u"_alpha")
            return QString(QLatin1Char(static_cast<char>('A' + m_step)));
        if (form.startsWith(u"_ap_hex"))
            return applied(form.mid(7), hexadecimal);
        if (form.startsWith(u"_ap"))
            return applied(form.mid(3), decimal);
        return std::nullopt;
    }

private:
    /// `plus` is empty, or "_plus_" and a number from 0 to 127 in its shortest form.
    std::optional<QString> applied(QStringView plus, QString (*write)(uint32_t)) const {
        constexpr QStringView prefix(u"_plus_");
        if (plus.isEmpty())
            return write(m_applied);
        if (!plus.startsWith(prefix) || plus.size() == prefix.size() || plus.size() > prefix.size() + 3)
            return std::nullopt;
        uint32_t offset = 0;
        for (QChar c : plus.mid(prefix.size())) {
            if (c < u'0' || c > u'9')
                return std::nullopt;
            offset = offset * 10 + c.unicode() - u'0';
        }
        if (offset > 127 || decimal(offset) != plus.mid(prefix.size()))
            return std::nullopt;
        return write(m_applied + offset);
    }

    const QString& m_index;
    const uint32_t m_step;
    const uint32_t m_applied;
};

bool isOneOf(const QString& value, const QString& list) {
    return list.split(u',', Qt::SkipEmptyParts).contains(value);
}

} // namespace

XMLPP2::Walk::Rule XMLPP2::Walk::ruleFor(const char* tagName) {
    static constexpr struct {
        const char* tagName;
        Rule rule;
    } rules[] = {
        {"if", &Walk::applyIf},           {"ifnot", &Walk::applyIfNot},     {"ifdef", &Walk::applyIfDef},
        {"ifndef", &Walk::applyIfNotDef}, {"switch", &Walk::applySwitch},   {"define", &Walk::applyDefine},
        {"for", &Walk::applyFor},         {"include", &Walk::applyInclude},
    };
    for (const auto& row : rules) {
        if (row.tagName[0] == tagName[0] && std::strcmp(row.tagName, tagName) == 0)
            return row.rule;
    }
    return nullptr;
}

void XMLPP2::Walk::run(XMLNode* node) {
    XMLNode* parent = node->parent();
    XMLNode* previous = nullptr;
    for (XMLNode* child = parent ? parent->firstChild() : node; child && child != node;
         child = child->nextSibling())
        previous = child;
    m_levels.push_back({parent, previous, node, &m_scopes.front()});
    while (!m_levels.empty()) {
        if (level().node) {
            enter();
            continue;
        }
        m_levels.pop_back();
        if (!m_levels.empty())
            leave();
    }
}

void XMLPP2::Walk::enter() {
    XMLElement* element = level().node->toElement();
    if (!element)
        return advance();
    if (scope().expandMacros)
        m_document.expandAttributeMacros(element, MapScope(scope().macros));
    const Rule rule = ruleFor(element->tagName());
    if (!rule)
        return descend();
    if (!level().parent && rule != &Walk::applyInclude) {
        warn("error: <" + toText(element->tagName()) + "> can't be the root");
        return descend();
    }
    (this->*rule)();
}

/// All below the node is done.
void XMLPP2::Walk::leave() {
    Level& at = level();
    if (!at.hoist || !at.parent)
        return advance();
    XMLNode* const hoisted = at.hoist->firstChild();
    XMLNode* last = at.previous;
    size_t count = 0;
    for (XMLNode* child = hoisted; child; child = child->nextSibling(), ++count)
        last = child;
    if (!m_document.grow(count * sizeof(XMLNode*)))
        return advance();
    XMLNode* const next = at.node->nextSibling();
    at.parent->reparentChildrenAfter(at.node, hoisted);
    at.parent->removeChildAfter(at.previous);
    at.previous = last;
    at.node = next;
    at.hoist = nullptr;
}

void XMLPP2::Walk::descend(XMLNode* hoist) {
    Level& at = level();
    at.hoist = hoist;
    m_levels.push_back({at.node, nullptr, at.node->firstChild(), at.scope});
}

void XMLPP2::Walk::advance() {
    Level& at = level();
    at.hoist = nullptr;
    at.previous = at.node;
    at.node = at.node->nextSibling();
}

void XMLPP2::Walk::remove() {
    Level& at = level();
    at.node = at.node->nextSibling();
    at.parent->removeChildAfter(at.previous);
}

QString XMLPP2::Walk::lookUp(const QString& name) const {
    const auto found = m_document.m_defines.constFind(name);
    return found != m_document.m_defines.constEnd() ? *found : scope().macros.value(name, "");
}

void XMLPP2::Walk::applyIf() { test(true); }
void XMLPP2::Walk::applyIfNot() { test(false); }
void XMLPP2::Walk::applyIfDef() { testDefined(true); }
void XMLPP2::Walk::applyIfNotDef() { testDefined(false); }

void XMLPP2::Walk::test(bool wanted) {
    const auto attributes = level().element()->getAttributeList();
    if (attributes.size() != 1) {
        warn("one condition required for <if[not]>");
        return descend();
    }
    decide(isOneOf(lookUp(toText(attributes[0].name)), toText(attributes[0].value)) == wanted);
}

void XMLPP2::Walk::testDefined(bool wanted) {
    const QString name = level().element()->attributeText("name");
    decide((m_document.m_defines.contains(name) || scope().macros.contains(name)) == wanted);
}

/// The children take the node's place, to be walked there, or all goes unread.
void XMLPP2::Walk::decide(bool holds) {
    if (holds)
        level().parent->reparentChildrenAfter(level().node, level().node->firstChild());
    remove();
}

void XMLPP2::Walk::applySwitch() {
    const QString value = lookUp(level().element()->attributeText("name"));
    XMLElement* chosen = nullptr;
    XMLElement* otherwise = nullptr;
    for (XMLElement* child = level().element()->firstChildElement(); child && !chosen;
         child = child->nextSiblingElement()) {
        if (std::strcmp(child->tagName(), "case") == 0 && isOneOf(value, child->attributeText("value")))
            chosen = child;
        else if (std::strcmp(child->tagName(), "default") == 0)
            otherwise = child;
    }
    if (chosen || otherwise)
        descend(chosen ? chosen : otherwise);
    else
        remove();
}

void XMLPP2::Walk::applyDefine() {
    const XMLElement& define = *level().element();
    if (define.hasAttribute("name") && define.hasAttribute("value"))
        m_document.m_defines[define.attributeText("name")] = define.attributeText("value");
    else
        warn("missing name and/or value in <define>");
    remove();
}

void XMLPP2::Walk::applyFor() {
    XMLElement* loop = level().element();
    const char* const needed[] = {"index", "start", "end", "incr"};
    if (loop->firstChild() && std::all_of(std::begin(needed), std::end(needed),
                                          [loop](auto name) { return loop->hasAttribute(name); }))
        runLoop(loop);
    else
        warn("<for index=\"i\" start=\"0\" end=\"32\" incr=\"1\">");
    remove();
}

/// Puts the copies behind the loop, where the walk comes to them next.
void XMLPP2::Walk::runLoop(XMLElement* loop) {
    const auto expanded = [&](const char* name) {
        return numberIn(MacroSystem::replaceMacros(scope().macros, loop->attributeText(name)));
    };
    const uint32_t add = loop->hasAttribute("add") ? expanded("add") : 0 - expanded("sub");
    const uint32_t mul = loop->hasAttribute("mul") ? expanded("mul") : 1;
    const QString index = loop->attributeText("index");
    const uint32_t start = numberIn(loop->attributeText("start"));
    const uint32_t end = numberIn(loop->attributeText("end"));
    const uint32_t increment = numberIn(loop->attributeText("incr"));
    if (increment == 0 && start < end)
        return warn("error: <for> with incr 0");
    if (!loop->firstChild()->toElement())
        return;
    XMLNode* last = loop;
    for (uint64_t i = start; i < end; i += increment) {
        const auto step = static_cast<uint32_t>(i);
        const LoopScope macros(index, step, step * mul + add);
        for (XMLNode* child = loop->firstChild(); child && child->toElement(); child = child->nextSibling()) {
            XMLElement* copy = m_document.copyElementAndExpandAttributeMacros(child->toElement(), macros);
            if (!copy)
                return;
            level().parent->reparentChildrenAfter(last, copy);
            last = copy;
        }
    }
}

void XMLPP2::Walk::applyInclude() {
    XMLElement* include = level().element();
    if (!include->hasAttribute("filename")) {
        warn("missing filename in <include>");
        return descend();
    }
    const bool noRoot = include->hasAttribute("no_root");
    if (noRoot && !level().parent)
        warn("error: <include> with no_root can't be the root");
    const QString fileName = includedFile(include->attributeText("filename"));
    XMLElement* loaded = loadInclude(fileName);
    if (!loaded)
        return descend(noRoot ? include : nullptr);
    if (level().parent)
        level().parent->replaceChildAfter(level().previous, loaded);
    else
        m_document.setRoot(loaded);
    level().node = loaded;
    const Scope* inner = scopeOfInclude(*include, loaded, fileName);
    inheritAttributes(*include, loaded);
    descend(noRoot || std::strcmp(loaded->tagName(), "envelope") == 0 ? loaded : nullptr);
    level().scope = inner;
}

QString XMLPP2::Walk::includedFile(const QString& name) const {
    const QString expanded = MacroSystem::replaceMacros(macroSystem.systemMacros(), name);
    if (Path::isAbsolute(expanded))
        return expanded;
    const QString directory = Path(scope().fileName).dirPath(false);
    return directory + (directory.endsWith(u'/') ? "" : "/") + expanded;
}

/// The root of the file, or null after a warning. The document keeps its root and its declarations.
XMLElement* XMLPP2::Walk::loadInclude(const QString& fileName) {
    if (scope().includeDepth == includeDepthLimit) {
        warn(QString("error: include file '%1' nests too deep").arg(fileName));
        return nullptr;
    }
    if (!m_document.grow(includeCost))
        return nullptr;
    XMLElement* const root = m_document.root();
    const Declared declared = m_document.declared();
    const size_t bytes = m_document.textBytes();
    const bool good = m_document.XMLDocument::load(fileName);
    XMLElement* loaded = m_document.root();
    if (!loaded)
        warn(QString("error: include file '%1' is empty").arg(fileName));
    else if (!good)
        warn("error \"" + toText(m_document.errorText()) + "\" in include file " + fileName +
             " line:" + QString::number(m_document.errorLine()));
    m_document.setRoot(root);
    m_document.setDeclared(declared);
    m_document.grow(m_document.textBytes() - bytes);
    return good ? loaded : nullptr;
}

/// Expands the attributes of the loaded root, and gives the scope of what is below it.
const XMLPP2::Walk::Scope* XMLPP2::Walk::scopeOfInclude(const XMLElement& include, XMLElement* loaded,
                                                        const QString& fileName) {
    Scope inner{fileName, scope().macros, scope().expandMacros, scope().includeDepth + 1};
    const bool overlay =
        include.hasAttribute("macros") && (scope().expandMacros || include.hasAttribute("expand_macros"));
    if (overlay) {
        const QString text = include.attributeText("macros").remove(u'\n');
        const QStringList entries = MacroSystem::stringListFromString(text, false);
        inner.macros = MacroSystem::overwriteMacros(inner.macros, MacroSystem::macrosFromStringList(entries));
        inner.expandMacros = true;
        m_document.grow(static_cast<size_t>(inner.macros.size()) * sizeof(std::pair<QString, QString>));
    }
    if (inner.expandMacros)
        m_document.expandAttributeMacros(loaded, MapScope(inner.macros));
    m_scopes.push_back(std::move(inner));
    return &m_scopes.back();
}

void XMLPP2::Walk::inheritAttributes(const XMLElement& include, XMLElement* loaded) {
    const QStringList names = include.attributeText("inherit_attributes").split(u';', Qt::SkipEmptyParts);
    for (const QString& name : names) {
        const char* value = include.attribute(toBytes(name).constData());
        if (!value) // nothing to inherit
            continue;
        if (!m_document.grow(loaded->getAttributeList().size_bytes())) // what the search for the name reads
            return;
        loaded->setAttribute(XMLNode::mkString(name), value);
    }
}
