#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// One kind of token: how its text looks, its code, and its precedence as an operator.
class LexerToken {
public:
    /// A rule for kinds of more than one text; as `match`.
    using Length = size_t (*)(std::string_view text);

    constexpr LexerToken(Length length, int code, int precedence)
        : m_length(length), m_code(code), m_precedence(precedence) {}
    constexpr LexerToken(std::string_view text, int code, int precedence)
        : m_text(text), m_code(code), m_precedence(precedence) {}

    /// The length of the token that a text begins with; 0 if it begins with none of this kind.
    size_t match(std::string_view text) const {
        if (m_length)
            return m_length(text);
        return text.starts_with(m_text) ? m_text.size() : 0;
    }
    int code() const { return m_code; }
    int precedence() const { return m_precedence; }

private:
    Length m_length = nullptr;
    std::string_view m_text; ///< the whole token, if there is no other rule
    int m_code;
    int m_precedence;
};

/// Cuts a text into tokens. The first of its kinds of tokens that matches counts, not the longest.
class Lexer {
public:
    static constexpr int endOfText = 0;
    static constexpr int whiteSpace = 2; ///< the code of tokens that are passed over
    static constexpr int identifier = 7;

    /// The table must outlive the lexer.
    constexpr explicit Lexer(std::span<const LexerToken> tokens) : m_tokens(tokens) {}

    /// Begins a text, which must stay where it is, and fetches its first token.
    void reset(std::string_view text);
    /// Fetches the next token. At the end the code becomes 0, and the precedence stays. Throws
    /// ParserException where no token matches.
    void gettok();

    int code() const { return m_code; }
    int precedence() const { return m_precedence; }
    /// The text of the token, and where it begins.
    std::string_view tokenText() const { return m_token; }
    size_t tokenPosition() const { return m_position - m_token.size(); }

    /// The value of a decimal or octal number, as fromStringToint64 reads it.
    int64_t intTok() const;
    /// The value of a number with "0x" in front: 32 bits, all of them set if that is not enough.
    int64_t hexTok() const;
    double doubleTok() const;
    /// What stands between the quotes.
    std::string strTok() const;
    /// Whether the token is this name.
    bool identIs(std::string_view name) const;

private:
    std::span<const LexerToken> m_tokens;
    int m_code = endOfText;
    int m_precedence = 0;
    size_t m_position = 0; ///< behind the token
    std::string_view m_text;
    std::string_view m_token;
};
