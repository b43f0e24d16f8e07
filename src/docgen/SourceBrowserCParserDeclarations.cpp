// Functions and variables. The tokens of a declaration wait on a stack until it is clear what it declares;
// then it is taken apart from its end: the name, what belongs behind the name in the type, the rest of the
// type. So "int (*cb)(int n)" has the name "cb" and the type "int ( * )(int )", with the name's place in it.

#include "docgen/SourceBrowserCParser.h"

#include "foundation/Text.h"

#include <array>

using namespace SourceBrowserToken;

namespace {

/// All characters, so that one is a text of its own.
constexpr std::array<char, 256> characters = [] {
    std::array<char, 256> table{};
    for (size_t c = 0; c < table.size(); ++c)
        table[c] = static_cast<char>(c);
    return table;
}();

bool isOneOf(int code, std::initializer_list<int> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

/// Puts a text behind another, as far as a type may go.
void appendText(QString& to, std::string_view text) {
    const qsizetype room = SourceBrowserCParser::longestText - to.size();
    if (room > 0)
        to += QLatin1String(text.data(), std::min(static_cast<qsizetype>(text.size()), room));
}

} // namespace

std::string_view SourceBrowserCToken::text() const {
    if (code >= 0x20 && code <= 0xFF)
        return {&characters[static_cast<size_t>(code)], 1};
    return code == Ellipsis ? "..." : code == Scope ? "::" : code == Identifier ? stored : std::string_view();
}

struct SourceBrowserCParser::Tail {
    void prepend(std::string_view text, bool isFollowedByBlank) {
        pieces.push_back(isFollowedByBlank ? " " : "");
        pieces.push_back(text);
    }
    QString text() const {
        QString text("");
        for (auto piece = pieces.rbegin(); piece != pieces.rend(); ++piece)
            appendText(text, *piece);
        return text;
    }

    std::vector<std::string_view> pieces; ///< the last first
};

void SourceBrowserCParser::push() {
    m_pending.push_back({m_token, m_token == Identifier ? m_lexer->identifier() : std::string_view()});
}

void SourceBrowserCParser::clear() {
    m_pending.clear();
    m_texts.clear();
}

/// The code of the token on top of the stack, or so far below it; End if there is none.
int SourceBrowserCParser::top(size_t below) const {
    return below < m_pending.size() ? m_pending[m_pending.size() - 1 - below].code : static_cast<int>(End);
}

/// Whether the name that is about to come is one of another scope, "A::f" or "A::~A".
bool SourceBrowserCParser::isBehindScope() const { return isTop(Scope) || (isTop('~') && top(1) == Scope); }

SourceBrowserCParser::Collected SourceBrowserCParser::collect() {
    Collected collected;
    bool isInBrackets = false;
    for (clear();; getToken()) {
        switch (m_token) {
        case End:
        case '{':
        case '}':
        case ';':
        case '=':
        case '(':
            return collected;
        case Operator:
            collected.isScoped = isBehindScope();
            collectOperator(collected);
            return collected;
        case '<':
            mergeTemplate();
            continue;
        case ',':
            collected.isList = true;
            break;
        case '[':
        case ']':
            isInBrackets = m_token == '[';
            break;
        case Identifier:
            if (!isInBrackets)
                collected.isScoped = isBehindScope();
            break;
        default:
            break;
        }
        push();
    }
}

/// The name of an operator goes up to the "(" of its arguments.
void SourceBrowserCParser::collectOperator(Collected& collected) {
    collected.operatorAt = static_cast<qsizetype>(m_pending.size());
    push();
    if (getToken() == '(') {
        push();
        if (getToken() == ')') {
            push();
            getToken();
        }
    }
    for (; !isOneOf(m_token, {'(', ';', '{', '}', End}); getToken())
        push();
}

/// The group that begins at the current "<", as text; what can't stand in one ends it.
std::string SourceBrowserCParser::parseTemplate() {
    std::string text;
    int depth = 0;
    int previous = 0;
    for (;; getToken()) {
        if (isOneOf(m_token, {';', '{', '}', End})) {
            ungetToken();
            return text;
        }
        const std::string_view word = Token{m_token, m_lexer->identifier()}.text();
        if (text.size() + word.size() < static_cast<size_t>(longestText)) {
            text += m_token == Identifier && previous == Identifier ? " " : "";
            text += word;
            text += m_token == ',' ? " " : "";
        }
        previous = m_token;
        depth += m_token == '<' ? 1 : m_token == '>' ? -1 : 0;
        if (depth == 0)
            return text;
    }
}

/// Puts a template group behind the name that it belongs to.
void SourceBrowserCParser::mergeTemplate() {
    const std::string group = parseTemplate();
    if (!isTop(Identifier) ||
        m_pending.back().stored.size() + group.size() > static_cast<size_t>(longestText))
        return;
    std::string_view& name = m_pending.back().stored;
    if (m_texts.empty() || m_texts.back().data() != name.data())
        m_texts.emplace_back(name);
    name = m_texts.back().append(group);
}

void SourceBrowserCParser::parseMethodsAndVariables(Container& container) {
    const Collected collected = collect();
    if (m_token == '{' || m_token == '}') {
        ungetToken();
    } else if (m_token == '(') {
        if (collected.isScoped)
            parseMethodImpl(container, collected);
        else
            addMethod(container, collected);
    } else if (m_token != End && collected.isScoped) {
        passTo(';');
    } else if (m_token != End && collected.isList) {
        fillInMultipleVariable(container);
    } else if (m_token != End) {
        auto variable = std::make_unique<SourceBrowserVariable>();
        variable->isStatic = m_isStatic;
        fillInParsedVariable(*variable, false);
        if (!variable->name().isEmpty())
            container.addObject(std::move(variable));
    }
    clear();
}

/// A function whose name and result are pending, at the "(" of its arguments. One that is there already is
/// merged into this one.
void SourceBrowserCParser::addMethod(Container& container, const Collected& collected) {
    std::unique_ptr<SourceBrowserMethod> method = fillInParsedMethod(collected);
    if (method->name().isEmpty())
        return;
    if (SourceBrowserMethod* known = container.getMethod(*method)) {
        takeOver(*method, *known);
        container.removeMethod(*known);
    }
    container.addObject(std::move(method));
}

void SourceBrowserCParser::takeOver(SourceBrowserMethod& method, const SourceBrowserMethod& known) {
    if (method.declarationLine < 0) {
        method.declarationFile = known.declarationFile;
        method.declarationLine = known.declarationLine;
        method.declarationEndLine = known.declarationEndLine;
    }
    if (method.definitionLine < 0) {
        method.definitionFile = known.definitionFile;
        method.definitionLine = known.definitionLine;
        method.definitionEndLine = known.definitionEndLine;
    }
    if (method.comment.isEmpty())
        method.comment = known.comment;
}

void SourceBrowserCParser::parseVirtual(Container& container) {
    getToken();
    const Collected collected = collect();
    if (m_token == '(') {
        std::unique_ptr<SourceBrowserMethod> method = fillInParsedMethod(collected);
        if (!method->name().isEmpty()) {
            method->isVirtual = true;
            if (SourceBrowserMethod* known = container.getMethod(*method)) {
                takeOver(*method, *known);
                container.removeMethod(*known);
            }
            container.addObject(std::move(method));
        }
    } else if (m_token != ';') {
        ungetToken();
    }
    clear();
}

/// The definition of a member outside its class: "int A::f(int n) { ... }".
void SourceBrowserCParser::parseMethodImpl(Container& container, const Collected& collected) {
    size_t at = collected.operatorAt >= 0 ? static_cast<size_t>(collected.operatorAt) : m_pending.size() - 1;
    QStringList scope;
    const auto codeAt = [&](size_t below) { return at >= below ? m_pending[at - below].code : 0; };
    const size_t nameAt = at;
    at -= codeAt(1) == '~' ? 1 : 0;
    for (; codeAt(1) == Scope && codeAt(2) == Identifier; at -= 2) {
        const std::string_view name = m_pending[at - 2].stored;
        scope.prepend(toText(name.substr(0, name.find('<'))));
    }
    m_pending.erase(m_pending.begin() + static_cast<qsizetype>(at),
                    m_pending.begin() + static_cast<qsizetype>(nameAt));
    Collected rest = collected;
    if (rest.operatorAt >= 0)
        rest.operatorAt = static_cast<qsizetype>(at);
    const std::unique_ptr<SourceBrowserMethod> method = fillInParsedMethod(rest);

    const QString className = scope.join(u'.');
    Container::Shared found = m_database.findClass(container.path() + u'.' + className);
    if (!found)
        found = m_database.findClass(className);
    SourceBrowserMethod* known = found ? found->getMethod(*method) : nullptr;
    if (!found) {
        diagnose("Class " + className + " not found");
    } else if (!known) {
        diagnose("Method " + method->name() + " not found in class " + found->name());
    } else {
        known->definitionFile = m_path;
        known->definitionLine = m_start;
        known->definitionEndLine = line();
        if (!method->comment.isEmpty())
            known->comment = method->comment;
    }
}

/// Takes a function's name and the type of its result from the stack, and reads on from the "(" of its
/// arguments to its end.
std::unique_ptr<SourceBrowserMethod> SourceBrowserCParser::fillInParsedMethod(const Collected& collected) {
    auto method = std::make_unique<SourceBrowserMethod>();
    const Comment close = comment();
    method->setName(popName(collected));
    if (const QString type = fillInParsedType(); !type.isEmpty())
        method->setType(type);
    getToken();
    if (m_token != ')' && m_token != ';')
        parseFunctionArgs(*method);
    m_events.declareObject(method->phylum, method->name(), m_line);
    method->access = m_access;
    method->isStatic = m_isStatic;
    parseMethodEnd(*method, close);
    return method;
}

QString SourceBrowserCParser::popName(const Collected& collected) {
    if (collected.operatorAt < 0) {
        if (!isTop(Identifier))
            return "";
        const QString name = toText(m_pending.back().stored);
        m_pending.pop_back();
        return name;
    }
    QString name("operator");
    const auto first = m_pending.begin() + collected.operatorAt;
    bool isBehindWord = true;
    for (auto token = first + 1; token != m_pending.end(); ++token) {
        const bool isWord = token->code == Identifier;
        appendText(name, isWord && isBehindWord ? " " : "");
        appendText(name, token->text());
        isBehindWord = isWord;
    }
    m_pending.erase(first, m_pending.end());
    return name;
}

void SourceBrowserCParser::parseFunctionArgs(SourceBrowserMethod& method) {
    for (;; getToken()) {
        const std::unique_ptr<SourceBrowserVariable> variable = parseVariable();
        if (variable && variable->type() != "void")
            method.addArgument({variable->name(), variable->type(), variable->namePos});
        if (m_token != ',')
            return;
    }
}

void SourceBrowserCParser::parseMethodEnd(SourceBrowserMethod& method, const Comment& comment) {
    getToken();
    if (m_token == Const) {
        method.isConst = true;
        getToken();
    }
    if (m_token == ':') {
        while (!isOneOf(m_token, {'{', ';', '}', End}))
            getToken();
    } else if (m_token == Throw) {
        while (!isOneOf(m_token, {')', '{', ';', '}', End}))
            getToken();
        if (m_token == ')')
            getToken();
    }
    if (m_token == '{') {
        skipBlock();
        method.definitionFile = m_path;
        method.definitionLine = m_start;
        method.definitionEndLine = line();
    } else {
        method.declarationFile = m_path;
        method.declarationLine = m_start;
        method.declarationEndLine = line();
        // A word here is one of some compiler; anything else is for what comes next.
        if (m_token != ';' && m_token != Identifier)
            ungetToken();
    }
    attach(method, comment, m_start);
}

/// One argument, up to the token that ends it; null if there is nothing of it.
std::unique_ptr<SourceBrowserVariable> SourceBrowserCParser::parseVariable() {
    for (clear(); !isOneOf(m_token, {';', ',', ')', End}); getToken()) {
        if (m_token == '{' || m_token == '}') {
            ungetToken();
            break;
        }
        if (m_token == '=') {
            skipDefault();
            break;
        }
        if (m_token == '(')
            collectFunctionPointer();
        else
            push();
    }
    if (m_pending.empty())
        return nullptr;
    auto variable = std::make_unique<SourceBrowserVariable>();
    fillInParsedVariable(*variable, true);
    return variable;
}

/// "(*" to its ")", and the arguments behind it. A "(" with something else behind it is dropped.
void SourceBrowserCParser::collectFunctionPointer() {
    if (getToken() == '*') {
        m_pending.push_back({'(', {}});
        collectGroup(1);
        if (getToken() == '(') {
            collectGroup(0);
            return;
        }
    }
    ungetToken();
}

/// Pushes tokens from the current one to the ")" that closes as many "(" as are open and come.
void SourceBrowserCParser::collectGroup(size_t open) {
    for (;; getToken()) {
        if (isOneOf(m_token, {';', '{', '}', End}))
            return ungetToken();
        push();
        open += m_token == '(' ? 1 : 0;
        if (m_token == ')' && --open == 0)
            return;
    }
}

/// Passes over a default value, from its "=" to what ends the argument.
void SourceBrowserCParser::skipDefault() {
    for (getToken(); !isOneOf(m_token, {';', ',', ')', End}); getToken()) {
        if (m_token == '(')
            skipGroup('(', ')');
        else if (m_token == '{')
            skipBlock();
    }
}

/// All that is pending, each text with a blank behind it, also where a keyword has no text.
QString SourceBrowserCParser::fillInParsedType() {
    QString type("");
    for (const Token& token : m_pending) {
        appendText(type, token.text());
        appendText(type, " ");
    }
    clear();
    return type;
}

/// The arguments of a function pointer, from the ")" on top to its "(": the names and the sizes of arrays go.
/// A word behind another is taken for a name.
void SourceBrowserCParser::popArgumentList(Tail& tail) {
    const auto pop = [&] {
        const Token token = m_pending.back();
        m_pending.pop_back();
        return token;
    };
    int previous = 0;
    for (int depth = 0; !m_pending.empty();) {
        const Token token = pop();
        const bool isName = token.code == Identifier && isOneOf(top(), {Identifier, '*', '}', '&'});
        const bool isLoneVoid = previous == ')' && isTop('(') && token.text() == "void";
        if (!isName && !isLoneVoid)
            tail.prepend(token.text(), token.code != '(');
        if (token.code == ']')
            while (!m_pending.empty() && !isTop('['))
                pop();
        previous = token.code;
        depth += token.code == ')' ? 1 : token.code == '(' ? -1 : 0;
        if (depth == 0)
            break;
    }
    if (isTop(')')) {
        tail.prepend(pop().text(), false);
    }
}

/// Takes the name and what belongs behind it in the type from the end of a declarator.
void SourceBrowserCParser::fillInParsedVariableHead(SourceBrowserVariable& variable) {
    Tail tail;
    while (isTop(Const) || isTop(Volatile))
        m_pending.pop_back();
    if (isTop(')'))
        popArgumentList(tail);
    while (isTop(']')) {
        while (!m_pending.empty() && !isTop('['))
            m_pending.pop_back();
        if (!m_pending.empty())
            m_pending.pop_back();
        tail.prepend("[]", false);
    }
    if (isTop(Number)) // the width of a bit-field
        while (!m_pending.empty() && !isTop(Identifier))
            m_pending.pop_back();
    if (isTop(Identifier) && isOneOf(top(1), {Identifier, '*', '}', ',', '&'})) {
        variable.setName(toText(m_pending.back().stored));
        m_pending.pop_back();
    }
    variable.setType(tail.text());
    variable.declarationFile = m_path;
    variable.declarationLine = line();
    variable.access = m_access;
}

void SourceBrowserCParser::fillInParsedVariable(SourceBrowserVariable& variable, bool noEvent) {
    const Comment close = comment();
    fillInParsedVariableHead(variable);
    const QString head = fillInParsedType();
    if (!head.isEmpty())
        variable.setType(head + variable.type());
    variable.namePos = static_cast<int>(head.size());
    if (!noEvent)
        m_events.declareObject(variable.phylum, variable.name(), m_line);
    if (m_token == '=')
        passTo(';');
    if (m_token == End)
        variable.setName("");
    else
        variable.declarationEndLine = line();
    attach(variable, close, variable.declarationLine);
}

/// "int a, *b": from the last declarator to the first, each with what belongs to it alone, and then the type
/// that they share.
void SourceBrowserCParser::fillInMultipleVariable(Container& container) {
    std::vector<std::unique_ptr<SourceBrowserVariable>> variables;
    for (bool isFirst = false; !isFirst;) {
        auto variable = std::make_unique<SourceBrowserVariable>();
        variable->isStatic = m_isStatic;
        fillInParsedVariableHead(*variable);
        Tail own;
        for (; !m_pending.empty() && !isTop(Identifier) && !isTop(','); m_pending.pop_back())
            own.prepend(m_pending.back().text(), false);
        variable->setType(own.text() + variable->type());
        isFirst = !isTop(',');
        if (!isFirst)
            m_pending.pop_back();
        variable->declarationEndLine = line();
        variables.push_back(std::move(variable));
    }
    const QString common = fillInParsedType();
    QString own = ""; // neighbours with the same of their own share one text
    QString type = common.trimmed();
    for (auto variable = variables.rbegin(); variable != variables.rend(); ++variable) {
        if ((*variable)->name().isEmpty())
            continue;
        if ((*variable)->type() != own) {
            own = (*variable)->type();
            type = QString(common + own).trimmed();
        }
        (*variable)->setType(type);
        container.addObject(std::move(*variable));
    }
    if (m_token == '=')
        passTo(';');
}
