#pragma once

#include "docgen/CodeEditLineIterator.h"
#include "docgen/SourceBrowserDatabase.h"
#include "docgen/SourceBrowserEventInterface.h"

#include <vector>

/// Token codes. What stands for itself has its own character as its code, and 0 is the end of the file.
namespace SourceBrowserToken {
enum Code {
    End = 0,
    Class = 0x100,
    Extern,
    Public,
    Protected,
    Private,
    Const,
    Volatile,
    Register,
    Union,
    Static,
    Virtual,
    Enum,
    Typedef,
    Friend,
    Struct,
    Operator,
    Template,
    Throw,
    Namespace,
    Ellipsis,
    Identifier,
    Scope, ///< "::"
    Number,
    String,
};
}

/// Cuts C and C++ into tokens, with nothing preprocessed: a line that begins with "#" is reported and passed
/// over, and so both sides of every condition are seen. Remembers the last block comment. Knows no grammar,
/// and passes over what it does not know.
class SourceBrowserCLexer {
public:
    static constexpr int endOfFile = 0xFFFF;

    /// Fetches the first character. The lines, the receiver and the record stay the caller's.
    SourceBrowserCLexer(CodeEditLineIterator& lines, SourceBrowserEventInterface& events, Metrics& metrics);

    /// Goes on to the next character: a byte, 10 at the end of a line, `endOfFile` from there on.
    int nextChar();
    /// The next token, of SourceBrowserToken::Code or a character.
    int gettok();
    /// While set, identifiers come back as such without a look at what they say.
    void setSkipping(bool isSkipping) { m_isSkipping = isSkipping; }

    /// The text of the last identifier; it lasts as long as the lines.
    std::string_view identifier() const { return m_identifier; }
    /// Column of the current token, from 0, and its line, from 1.
    int x() const { return m_tokenColumn; }
    int y() const { return m_tokenLine; }

    /// First and last line of the last block comment, from 0; -1 before there is one.
    int commentFirstLine() const { return m_commentFirstLine; }
    int commentLastLine() const { return m_commentLastLine; }
    /// What stands between its marks; all calls for one comment give one shared text.
    const QString& commentText();

private:
    void nextLine();
    void preprocessorLine(std::string_view line);
    bool countedLine(std::string_view& line);
    int peek(size_t ahead = 0) const;
    void consume(size_t bytes);
    int identifierToken();
    int constantToken(int quote, int code);
    bool comment();
    void blockComment();
    void lineComment();

    CodeEditLineIterator& m_lines;
    SourceBrowserEventInterface& m_events;
    Metrics& m_metrics;
    std::string_view m_line;
    size_t m_next = 1; ///< behind the current character; one past the line's end when that is its break
    int m_char = 0;
    int m_lineNumber = 0; ///< from 1
    int m_tokenLine = 0;
    int m_tokenColumn = 0;
    bool m_isSkipping = false;
    std::string_view m_identifier;
    int m_commentFirstLine = -1;
    int m_commentLastLine = -1;
    std::vector<std::string_view> m_commentLines;
    QString m_commentText; ///< null until asked for
};
