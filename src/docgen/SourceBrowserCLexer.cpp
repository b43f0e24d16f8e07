#include "docgen/SourceBrowserCLexer.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

using namespace SourceBrowserToken;

enum CharacterClass : unsigned char { Other, White, Letter, Digit, Single };

/// What a byte can begin.
constexpr std::array<CharacterClass, 256> classes = [] {
    std::array<CharacterClass, 256> table{};
    for (const char c : std::string_view(" \t\n\v\f\r"))
        table[static_cast<unsigned char>(c)] = White;
    for (unsigned c = 'A'; c <= 'Z'; ++c)
        table[c] = table[c + ('a' - 'A')] = Letter;
    table['_'] = Letter;
    for (unsigned c = '0'; c <= '9'; ++c)
        table[c] = Digit;
    for (const char c : std::string_view("!&()*+,-;<=>?[]^{}~./:"))
        table[static_cast<unsigned char>(c)] = Single;
    return table;
}();

CharacterClass classOf(int character) {
    return character < 256 ? classes[static_cast<size_t>(character)] : Other;
}

bool continuesNumber(char c) {
    const CharacterClass kind = classes[static_cast<unsigned char>(c)];
    return kind == Digit || (kind == Letter && c != '_');
}

bool continuesIdentifier(char c) {
    const CharacterClass kind = classes[static_cast<unsigned char>(c)];
    return kind == Letter || kind == Digit || c == '$';
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos;
}

constexpr int dropped = -1;

struct Keyword {
    std::string_view word;
    int code;
};

/// By their first letters.
constexpr Keyword keywords[] = {
    {"Q_OBJECT", dropped},  {"class", Class},       {"const", Const},         {"enum", Enum},
    {"extern", Extern},     {"friend", Friend},     {"inline", dropped},      {"namespace", Namespace},
    {"operator", Operator}, {"private", Private},   {"protected", Protected}, {"public", Public},
    {"register", Register}, {"signals", Public},    {"slots", dropped},       {"static", Static},
    {"struct", Struct},     {"template", Template}, {"throw", Throw},         {"typedef", Typedef},
    {"union", Union},       {"virtual", Virtual},   {"volatile", Volatile},
};

/// Where the words of each first letter begin in the table of keywords.
constexpr std::array<unsigned char, 129> keywordStarts = [] {
    std::array<unsigned char, 129> starts{};
    unsigned char at = 0;
    for (size_t letter = 0; letter < starts.size(); ++letter) {
        while (at < std::size(keywords) && static_cast<size_t>(keywords[at].word[0]) < letter)
            ++at;
        starts[letter] = at;
    }
    return starts;
}();

int codeOf(std::string_view word) {
    const auto first = static_cast<size_t>(word[0]);
    for (size_t row = keywordStarts[first]; row < keywordStarts[first + 1]; ++row)
        if (keywords[row].word == word)
            return keywords[row].code;
    return Identifier;
}

/// A comment of something that is still to do.
bool isFixme(std::string_view text) {
    constexpr std::string_view marks[] = {"FIXME", "TODO", "BUG", "HACK"};
    return std::any_of(std::begin(marks), std::end(marks), [&](std::string_view mark) {
        return text.size() >= mark.size() &&
               std::equal(mark.begin(), mark.end(), text.begin(),
                          [](char a, char b) { return a == (b >= 'a' && b <= 'z' ? b - ('a' - 'A') : b); });
    });
}

} // namespace

SourceBrowserCLexer::SourceBrowserCLexer(CodeEditLineIterator& lines, SourceBrowserEventInterface& events,
                                         Metrics& metrics)
    : m_lines(lines), m_events(events), m_metrics(metrics) {
    nextChar();
}

int SourceBrowserCLexer::nextChar() {
    if (m_next < m_line.size())
        m_char = static_cast<unsigned char>(m_line[m_next++]);
    else if (m_next++ == m_line.size())
        m_char = '\n';
    else if (m_char != endOfFile)
        nextLine();
    return m_char;
}

bool SourceBrowserCLexer::countedLine(std::string_view& line) {
    if (!m_lines.getLine(line))
        return false;
    ++m_lineNumber;
    ++m_metrics.lines;
    if (isBlank(line))
        ++m_metrics.blankLines;
    return true;
}

/// Goes on to the first character of the next line that is no preprocessor line.
void SourceBrowserCLexer::nextLine() {
    while (countedLine(m_line)) {
        if (m_line.starts_with('#')) {
            preprocessorLine(m_line);
            continue;
        }
        m_next = 0;
        nextChar();
        return;
    }
    m_line = {};
    m_next = 1;
    m_char = endOfFile;
}

void SourceBrowserCLexer::preprocessorLine(std::string_view line) {
    ++m_metrics.preprocessorLines;
    m_events.preprocessorLine(line, m_lineNumber);
    while (line.ends_with('\\') && countedLine(line))
        ++m_metrics.preprocessorLines;
}

/// A character behind the current one in its line; 0 if there is none.
int SourceBrowserCLexer::peek(size_t ahead) const {
    return m_next + ahead < m_line.size() ? static_cast<unsigned char>(m_line[m_next + ahead]) : 0;
}

/// Makes the character current that stands so many bytes behind the current one, in its line or as its break.
void SourceBrowserCLexer::consume(size_t bytes) {
    m_next += bytes - 1;
    nextChar();
}

int SourceBrowserCLexer::gettok() {
    for (;;) {
        while (classOf(m_char) == White)
            nextChar();
        m_tokenLine = m_lineNumber;
        m_tokenColumn = static_cast<int>(m_next) - 1;
        const int character = m_char;
        switch (classOf(character)) {
        case Letter:
            if (character == 'L' && (peek() == '\'' || peek() == '"')) {
                nextChar();
                continue;
            }
            if (const int code = identifierToken(); code != dropped)
                return code;
            continue;
        case Digit: {
            size_t end = m_next;
            while (end < m_line.size() && continuesNumber(m_line[end]))
                ++end;
            consume(end - m_next + 1);
            return Number;
        }
        case Single:
            if (character == '/' && comment())
                continue;
            if (character == ':' && peek() == ':') {
                consume(2);
                return Scope;
            }
            if (character == '.' && peek() == '.' && peek(1) == '.') {
                consume(3);
                return Ellipsis;
            }
            nextChar();
            return character;
        default:
            if (character == endOfFile)
                return End;
            if (character == '\'' || character == '"')
                return constantToken(character, character == '"' ? String : Number);
            nextChar();
        }
    }
}

int SourceBrowserCLexer::identifierToken() {
    const size_t start = m_next - 1;
    size_t end = m_next;
    while (end < m_line.size() && continuesIdentifier(m_line[end]))
        ++end;
    const std::string_view word = m_line.substr(start, end - start);
    consume(word.size());
    if (m_isSkipping)
        return Identifier;
    const int code = codeOf(word);
    if (code == Identifier)
        m_identifier = word;
    return code;
}

/// A line break ends a constant too, unless it is escaped, so that a quote that nobody closes is no great
/// harm.
int SourceBrowserCLexer::constantToken(int quote, int code) {
    for (nextChar(); m_char != quote && m_char != '\n' && m_char != endOfFile; nextChar())
        if (m_char == '\\')
            nextChar();
    if (m_char == quote)
        nextChar();
    return code;
}

/// Passes over the comment that begins here; false if none does.
bool SourceBrowserCLexer::comment() {
    if (peek() == '*')
        blockComment();
    else if (peek() == '/')
        lineComment();
    else
        return false;
    return true;
}

void SourceBrowserCLexer::blockComment() {
    const int first = m_lineNumber;
    m_commentLines.clear();
    m_commentText = QString();
    size_t start = m_next + 1;
    size_t end = m_line.find("*/", start);
    while (end == std::string_view::npos && m_char != endOfFile) {
        m_commentLines.push_back(m_line.substr(start));
        nextLine();
        start = 0;
        end = m_line.find("*/");
    }
    if (m_char != endOfFile) {
        m_commentLines.push_back(m_line.substr(start, end - start));
        m_next = end + 2;
        nextChar();
    }
    m_commentFirstLine = first - 1;
    m_commentLastLine = m_lineNumber - 1;
    m_metrics.commentLines += m_lineNumber - first + 1;
    ++m_metrics.blockComments;
}

void SourceBrowserCLexer::lineComment() {
    ++m_metrics.commentLines;
    ++m_metrics.lineComments;
    std::string_view text = m_line.substr(m_next + 1);
    m_next = m_line.size();
    nextChar();
    text.remove_prefix(std::min(text.find_first_not_of(" \t\v\f\r"), text.size()));
    if (isFixme(text))
        m_events.fixmeComment(decodedSource(text).simplified(), m_tokenLine);
}

const QString& SourceBrowserCLexer::commentText() {
    if (m_commentText.isNull()) {
        std::string text;
        for (size_t line = 0; line < m_commentLines.size(); ++line)
            text.append(line == 0 ? "" : "\n").append(m_commentLines[line]);
        m_commentText = decodedSource(text);
    }
    return m_commentText;
}
