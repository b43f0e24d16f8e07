#pragma once

#include "docgen/SourceBrowserCLexer.h"

#include <deque>
#include <string>

/// A token whose part in a declaration is not clear yet.
struct SourceBrowserCToken {
    int code = 0;
    std::string_view stored; ///< of an identifier

    /// What the token adds to the text of a type: nothing if it is a keyword, a number or a string.
    std::string_view text() const;
};

/// Finds what a C or C++ header declares, in one forgiving pass over its tokens: both sides of every
/// condition are seen, bodies and initial values are passed over, and what is not understood is skipped up to
/// the next thing that is. There are no errors. Time and memory are linear in the size of the file; of
/// containers only `deepest` are open at once, and the blocks of those within are passed over.
class SourceBrowserCParser {
public:
    static constexpr int deepest = 64;
    /// In characters; of a longer type the rest is dropped, and what lies in a container whose path is
    /// longer is passed over.
    static constexpr qsizetype longestText = 1000;

    /// The database is filled; it, the log and the receiver stay the caller's. The latter two may be null.
    explicit SourceBrowserCParser(SourceBrowserDatabase& database, BuildLog* log = nullptr,
                                  SourceBrowserEventInterface* events = nullptr);

    /// Puts what a file declares in the place of what was known of it. A file that can't be read declares
    /// nothing.
    void parseFile(const QString& path);
    /// The same with the bytes of the file.
    void parseText(const QString& path, std::string_view bytes);

private:
    using Container = SourceBrowserContainer;
    using Token = SourceBrowserCToken;

    /// A block comment as it stands when an object comes into being.
    struct Comment {
        int lastLine = -1;
        QString text;
    };
    /// The tokens of a declaration up to the one that decides, which is the current one then.
    struct Collected {
        bool isList = false;       ///< there was a ","
        bool isScoped = false;     ///< the name is one of another scope, "A::f"
        qsizetype operatorAt = -1; ///< where on the stack the name of an operator begins
    };
    /// The tail of a type, which is found from its end to its beginning.
    struct Tail;

    void parse(const QString& path, CodeEditLineIterator& lines);

    // Tokens.
    void fetchToken();
    int getToken();
    void ungetToken() { m_isHeld = true; }
    QString identifier() const;
    void skipGroup(int open, int close);
    void skipBlock() { skipGroup('{', '}'); }
    void passTo(int code);
    void passEnumeration();
    int line() const { return m_line - 1; }
    void diagnose(const QString& text);

    // Containers.
    void parseTopLevel(Container& container, bool isInBraces);
    void parseDeclaration(Container& container);
    bool parseGenericToken(Container& container);
    void parseTopLevelToken(Container& container);
    void parseTypedef(Container& container);
    void parseNamespace(Container& container);
    void parseContainer(Container& enclosing);
    Container::Shared parseClassHeader(int phylum);
    Container::Shared fileContainer(Container::Shared container, Container& enclosing);
    void parseClassInheritance(Container& container);
    void parseClass(Container& container);
    bool parseClassToken(Container& container);
    void parseVirtual(Container& container);
    void parseStruct(Container& container);
    void fillInParsedStruct(Container& container);
    void parseStructDeclarations(Container& container);

    // Declarations.
    Collected collect();
    void collectOperator(Collected& collected);
    bool isBehindScope() const;
    std::string parseTemplate();
    void mergeTemplate();
    void parseMethodsAndVariables(Container& container);
    void addMethod(Container& container, const Collected& collected);
    static void takeOver(SourceBrowserMethod& method, const SourceBrowserMethod& known);
    void parseMethodImpl(Container& container, const Collected& collected);
    std::unique_ptr<SourceBrowserMethod> fillInParsedMethod(const Collected& collected);
    QString popName(const Collected& collected);
    void parseFunctionArgs(SourceBrowserMethod& method);
    void parseMethodEnd(SourceBrowserMethod& method, const Comment& comment);
    std::unique_ptr<SourceBrowserVariable> parseVariable();
    void collectFunctionPointer();
    void collectGroup(size_t open);
    void skipDefault();
    QString fillInParsedType();
    void fillInParsedVariableHead(SourceBrowserVariable& variable);
    void popArgumentList(Tail& tail);
    void fillInParsedVariable(SourceBrowserVariable& variable, bool noEvent);
    void fillInMultipleVariable(Container& container);

    // The stack of pending tokens.
    void push();
    void clear();
    int top(size_t below = 0) const;
    bool isTop(int code) const { return top() == code; }

    Comment comment();
    void attach(SourceBrowserObject& object, const Comment& comment, int startLine) const;

    SourceBrowserDatabase& m_database;
    BuildLog* m_log;
    SourceBrowserEventInterface m_noEvents;
    SourceBrowserEventInterface& m_events;
    SourceBrowserCLexer* m_lexer = nullptr; ///< during a scan
    QString m_path;
    int m_token = 0;
    int m_line = 0;        ///< of the current token, from 1
    bool m_isHeld = false; ///< the current token comes once more
    int m_access = 0;
    bool m_isStatic = false;
    int m_start = -1; ///< the line at which the current declaration begins, from 0
    int m_depth = 0;
    std::vector<Token> m_pending;
    std::deque<std::string> m_texts; ///< of pending tokens that are not as the file has them
};
