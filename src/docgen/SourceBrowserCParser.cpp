// Files, tokens and containers. What is inside a declaration is in SourceBrowserCParserDeclarations.cpp.

#include "docgen/SourceBrowserCParser.h"

#include "foundation/Text.h"
#include "macros/Path.h"

#include <array>
#include <utility>

using namespace SourceBrowserToken;

namespace {

/// Words of compilers that stand between the words of a declaration and mean nothing here.
constexpr std::string_view wordsWithGroup[] = {"__interrupt", "__ctl_interrupt", "__attribute__", "asm"};
constexpr std::string_view wordsAlone[] = {"__monitor", "__toplevel"};

constexpr std::string_view qtMacros[] = {"Q_PROPERTY", "Q_ENUM", "Q_OVERRIDE"};

template<size_t size>
bool isOneOf(std::string_view word, const std::string_view (&words)[size]) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

const char* wordOf(int code) { return code == Class ? "class" : code == Union ? "union" : "struct"; }

/// The bracket that ends what this one begins; 0 if it begins nothing.
int closingOf(int code) { return code == '(' ? ')' : code == '[' ? ']' : code == '{' ? '}' : 0; }

} // namespace

SourceBrowserCParser::SourceBrowserCParser(SourceBrowserDatabase& database, BuildLog* log,
                                           SourceBrowserEventInterface* events)
    : m_database(database), m_log(log), m_events(events ? *events : m_noEvents) {}

void SourceBrowserCParser::parseFile(const QString& path) {
    CodeEditLineIterator lines(path);
    parse(path, lines);
}

void SourceBrowserCParser::parseText(const QString& path, std::string_view bytes) {
    CodeEditLineIterator lines(bytes);
    parse(path, lines);
}

void SourceBrowserCParser::parse(const QString& path, CodeEditLineIterator& lines) {
    m_path = Path(path).canonicalPathQString();
    m_database.removeReferences(m_path);
    if (m_log)
        m_log->openGroup("Parsing " + Path(path).fileName());
    Metrics metrics;
    SourceBrowserCLexer lexer(lines, m_events, metrics);
    m_lexer = &lexer;
    m_token = m_line = m_access = m_depth = 0;
    m_isHeld = m_isStatic = false;
    parseTopLevel(m_database, false);
    clear();
    m_lexer = nullptr;
    if (m_log)
        m_log->closeGroup();
    m_database.setMetrics(m_path, metrics);
}

void SourceBrowserCParser::fetchToken() {
    m_token = m_lexer->gettok();
    m_line = m_lexer->y();
}

/// The next token that is not a word of some compiler; the group behind such a word goes with it.
int SourceBrowserCParser::getToken() {
    if (std::exchange(m_isHeld, false))
        return m_token;
    fetchToken();
    while (m_token == Identifier) {
        const std::string_view word = m_lexer->identifier();
        const bool takesGroup = isOneOf(word, wordsWithGroup);
        if (!takesGroup && !isOneOf(word, wordsAlone))
            break;
        fetchToken();
        const int close = takesGroup ? closingOf(m_token) : 0;
        if (close == 0)
            continue;
        skipGroup(m_token, close);
        if (m_token != End)
            fetchToken();
    }
    return m_token;
}

/// From an opening bracket to its match, which is the current token then.
void SourceBrowserCParser::skipGroup(int open, int close) {
    m_lexer->setSkipping(true);
    for (size_t depth = 1; depth != 0 && m_token != End;) {
        fetchToken();
        if (m_token == open)
            ++depth;
        else if (m_token == close)
            --depth;
    }
    m_lexer->setSkipping(false);
}

/// Goes on to that token, but not to one in a block on the way.
void SourceBrowserCParser::passTo(int code) {
    while (m_token != code && m_token != End) {
        if (m_token == '{')
            skipBlock();
        getToken();
    }
}

/// To the ";" of an enumeration. A block behind arguments is the body of a function, and ends it too.
void SourceBrowserCParser::passEnumeration() {
    for (bool hasArguments = false; m_token != ';' && m_token != End; getToken()) {
        hasArguments = hasArguments || m_token == '(';
        if (m_token != '{')
            continue;
        skipBlock();
        if (hasArguments)
            return;
    }
}

QString SourceBrowserCParser::identifier() const { return toText(m_lexer->identifier()); }

void SourceBrowserCParser::diagnose(const QString& text) {
    if (m_log)
        m_log->diagnostic(text, m_line);
}

SourceBrowserCParser::Comment SourceBrowserCParser::comment() {
    // A comment further up can't be close to anything that is still to come.
    if (m_lexer->commentLastLine() < 0 || m_lexer->commentLastLine() + 1 < std::min(m_start, line()))
        return {};
    return {m_lexer->commentLastLine(), m_lexer->commentText()};
}

/// A comment belongs to what begins on its last line or on the next.
void SourceBrowserCParser::attach(SourceBrowserObject& object, const Comment& comment, int startLine) const {
    if (comment.lastLine >= 0 &&
        static_cast<unsigned>(startLine) - static_cast<unsigned>(comment.lastLine) < 2)
        object.comment = comment.text;
}

void SourceBrowserCParser::parseTopLevel(Container& container, bool isInBraces) {
    int linkageBraces = 0;
    bool goesOn = false; // a template's head came before
    for (getToken(); m_token != End; getToken()) {
        if (!std::exchange(goesOn, false))
            m_start = line();
        if (m_token == '}') {
            if (isInBraces && linkageBraces-- == 0)
                return;
        } else if (m_token == String) { // of extern "C" {
            if (getToken() == '{')
                ++linkageBraces;
            else
                ungetToken();
        } else {
            goesOn = m_token == Template;
            parseDeclaration(container);
        }
    }
}

void SourceBrowserCParser::parseDeclaration(Container& container) {
    if (parseGenericToken(container))
        return;
    parseTopLevelToken(container);
    m_isStatic = false;
}

/// What is the same everywhere; false if the token is not of that kind.
bool SourceBrowserCParser::parseGenericToken(Container& container) {
    switch (m_token) {
    case Static:
    case Register:
        m_isStatic = true;
        return true;
    case Extern:
    case Throw:
        return true;
    case Enum:
        passEnumeration();
        m_isStatic = false;
        return true;
    case Typedef:
        parseTypedef(container);
        return true;
    case Template:
        if (getToken() == '<')
            parseTemplate();
        else
            ungetToken();
        return true;
    default:
        return false;
    }
}

void SourceBrowserCParser::parseTypedef(Container& container) {
    do
        getToken();
    while (m_token == Const || m_token == Volatile);
    if (m_token == Struct || m_token == Union)
        parseStruct(container);
    passTo(';');
    clear();
}

void SourceBrowserCParser::parseTopLevelToken(Container& container) {
    while (m_token == Const || m_token == Volatile)
        getToken();
    switch (m_token) {
    case Namespace:
        parseNamespace(container);
        break;
    case Identifier:
        parseMethodsAndVariables(container);
        break;
    case '{':
        skipBlock();
        break;
    case SourceBrowserToken::Class:
    case SourceBrowserToken::Struct:
    case Union:
        parseContainer(container);
        break;
    case '}':
        ungetToken();
        break;
    default:
        break;
    }
}

void SourceBrowserCParser::parseNamespace(Container& container) {
    QString name = u'(' + m_path.mid(m_path.lastIndexOf(u'/') + 1) + u')';
    const Comment close = comment();
    if (getToken() == Identifier) {
        name = identifier();
        getToken();
    }
    if (m_token != '{') {
        diagnose("Bad namespace identifier");
        while (m_token != '{' && m_token != ';' && m_token != End)
            getToken();
        if (m_token != '{') // another name for a namespace
            return;
    }
    if (m_depth == deepest || container.path().size() + name.size() >= longestText)
        return skipBlock();
    Container::Shared scope = container.findScope(name);
    if (!scope) {
        scope = std::make_shared<Container>(SourceBrowserObject::Namespace);
        scope->setName(name);
        scope->declarationLine = m_start;
        scope->declarationFile = m_path;
        attach(*scope, close, m_start);
        container.addObject(scope);
    }
    ++m_depth;
    m_events.declareContainer(scope->phylum, name, "namespace", m_line);
    parseTopLevel(*scope, true);
    scope->declarationEndLine = line();
    m_events.endContainer();
    --m_depth;
}

/// A class or struct with its body. A union is parsed like a struct, but is not filed.
void SourceBrowserCParser::parseContainer(Container& enclosing) {
    const int word = m_token;
    const int phylum =
        word == SourceBrowserToken::Class ? SourceBrowserObject::Class : SourceBrowserObject::Struct;
    Container::Shared container = parseClassHeader(phylum);
    if (!container) {
        // A struct as the result of a function, "struct point f(int)".
        if (m_token == '(' && m_pending.size() > 1 && isTop(Identifier))
            addMethod(enclosing, {});
        else if (m_token == '}')
            ungetToken();
        return clear();
    }
    clear();
    m_events.declareContainer(phylum, container->name(), wordOf(word), m_line);
    if (enclosing.path().size() + container->path().size() >= longestText || m_depth == deepest) {
        passTo('{');
        skipBlock();
    } else {
        if (word != Union)
            container = fileContainer(container, enclosing);
        else if (!enclosing.path().isEmpty())
            container->setScope(enclosing.path());
        if (m_token == ':')
            parseClassInheritance(*container);
        if (m_token == '{')
            parseClass(*container);
    }
    m_events.endContainer();
}

/// The name of what a class, struct or union declares; null unless its body follows. The words of the header
/// are pending then.
SourceBrowserCParser::Container::Shared SourceBrowserCParser::parseClassHeader(int phylum) {
    clear();
    const int start = line();
    for (getToken(); m_token == Identifier || m_token == Scope; getToken())
        push();
    if (m_token != ':' && m_token != '{')
        return nullptr;
    auto container = std::make_shared<Container>(phylum);
    container->declarationLine = start;
    container->declarationFile = m_path;
    size_t at = m_pending.size();
    if (at > 1 && m_pending[at - 1].stored == "final" && m_pending[at - 2].code == Identifier)
        --at;
    while (at > 0 && m_pending[at - 1].code != Identifier)
        --at;
    container->setName(at == 0 ? "(Anonymous)" : toText(m_pending[at - 1].stored));
    // Other words in front, such as those of macros, are no part of the scope.
    size_t first = at > 0 ? at - 1 : 0;
    while (first > 1 && m_pending[first - 1].code == Scope && m_pending[first - 2].code == Identifier)
        first -= 2;
    QStringList scope;
    for (size_t word = first; word + 1 < at; word += 2)
        scope.append(toText(m_pending[word].stored));
    container->setScope(scope.join(u'.'));
    return container;
}

/// Files a class or struct at the root, and in the container in which it is declared as well. Of a class that
/// is there already, that one comes back.
SourceBrowserCParser::Container::Shared SourceBrowserCParser::fileContainer(Container::Shared container,
                                                                            Container& enclosing) {
    const QString given = container->scope();
    if (!enclosing.path().isEmpty())
        container->setScope(enclosing.path());
    if (const Container::Shared known = m_database.findClass(container->path())) {
        known->declarationLine = container->declarationLine;
        known->declarationFile = container->declarationFile;
        container = known;
    } else {
        m_database.addObject(container);
    }
    container->setScope(given);
    if (!enclosing.path().isEmpty())
        enclosing.addObject(container);
    return container;
}

void SourceBrowserCParser::parseClassInheritance(Container& container) {
    SourceBrowserBaseClass base;
    std::string name;
    const auto add = [&] {
        base.name = toText(name);
        if (!name.empty())
            container.addBaseClass(base);
        base = {};
        name.clear();
    };
    for (getToken(); m_token != '{' && m_token != ';' && m_token != End; getToken()) {
        if (m_token == Public)
            base.access = SourceBrowserObject::Public;
        else if (m_token == Protected)
            base.access = SourceBrowserObject::Protected;
        else if (m_token == '<')
            name += parseTemplate();
        else if (m_token == Identifier || m_token == Scope)
            name += Token{m_token, m_lexer->identifier()}.text();
        else if (m_token == ',')
            add();
    }
    add();
}

void SourceBrowserCParser::parseClass(Container& container) {
    attach(container, comment(), container.declarationLine);
    const int access = std::exchange(m_access, SourceBrowserObject::Private);
    ++m_depth;
    bool goesOn = false;
    for (getToken(); m_token != End; getToken()) {
        if (!std::exchange(goesOn, false))
            m_start = line();
        goesOn = m_token == Template;
        if (m_token == Identifier && isOneOf(m_lexer->identifier(), qtMacros))
            passTo(')');
        else if (!parseGenericToken(container) && !parseClassToken(container))
            break;
    }
    --m_depth;
    m_access = access;
}

/// False at the end of the class.
bool SourceBrowserCParser::parseClassToken(Container& container) {
    switch (m_token) {
    case SourceBrowserToken::Public:
    case SourceBrowserToken::Protected:
    case SourceBrowserToken::Private:
        m_access = m_token == Public      ? SourceBrowserObject::Public
                   : m_token == Protected ? SourceBrowserObject::Protected
                                          : SourceBrowserObject::Private;
        m_events.visibilityChange(m_access, m_line);
        break;
    case '}':
        container.declarationEndLine = line();
        return false;
    case SourceBrowserToken::Class:
    case SourceBrowserToken::Struct:
    case Union:
        parseContainer(container);
        break;
    case Virtual:
        parseVirtual(container);
        break;
    case Const:
    case Identifier:
        parseMethodsAndVariables(container);
        m_isStatic = false;
        break;
    case '{':
        skipBlock();
        break;
    default:
        break;
    }
    return true;
}

/// Tokens up to a body; without one nothing is declared.
void SourceBrowserCParser::parseStruct(Container& container) {
    clear();
    for (getToken(); m_token != '{' && m_token != ';' && m_token != End; getToken())
        push();
    if (m_token == '{')
        fillInParsedStruct(container);
    clear();
}

void SourceBrowserCParser::fillInParsedStruct(Container& container) {
    auto made = std::make_shared<Container>(SourceBrowserObject::Struct);
    const Comment close = comment();
    const int start = m_start;
    if (isTop(Identifier))
        made->setName(toText(m_pending.back().stored));
    clear();
    if (m_depth == deepest || container.path().size() + made->name().size() >= longestText) {
        skipBlock();
        return;
    }
    made->declarationLine = start;
    made->declarationFile = made->definitionFile = m_path;
    if (!container.path().isEmpty())
        made->setScope(container.path());
    m_events.declareContainer(made->phylum, made->name(), "struct", m_line);
    ++m_depth;
    getToken();
    parseStructDeclarations(*made);
    --m_depth;
    getToken();
    made->declarationEndLine = line();
    m_events.endContainer();
    if (m_token == Identifier) {
        made->setName(identifier());
        m_events.declareObject(made->phylum, made->name(), m_line);
    }
    attach(*made, close, start);
    if (!made->name().isEmpty())
        container.addObject(made);
}

void SourceBrowserCParser::parseStructDeclarations(Container& container) {
    const int access = std::exchange(m_access, SourceBrowserObject::Public);
    for (; m_token != '}' && m_token != End; getToken()) {
        m_start = line();
        switch (m_token) {
        case Const:
        case Volatile:
        case ';':
            break;
        case Enum:
            passEnumeration();
            break;
        case SourceBrowserToken::Struct:
        case Union:
            parseStruct(container);
            break;
        case Identifier:
            parseMethodsAndVariables(container);
            break;
        case '{':
            skipBlock();
            break;
        default:
            diagnose("Bad struct declaration");
        }
    }
    m_access = access;
}
