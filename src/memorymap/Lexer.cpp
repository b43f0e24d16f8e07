#include "memorymap/Lexer.h"

#include "memorymap/NumberText.h"
#include "memorymap/ParserException.h"

#include <charconv>
#include <cstdlib>
#include <limits>

void Lexer::reset(std::string_view text) {
    m_text = text;
    m_position = 0;
    gettok();
}

void Lexer::gettok() {
    do {
        const std::string_view rest = m_text.substr(m_position);
        m_token = rest.substr(0, 0);
        if (rest.empty()) {
            m_code = endOfText;
            return;
        }
        for (const LexerToken& token : m_tokens) {
            if (const size_t length = token.match(rest)) {
                m_token = rest.substr(0, length);
                m_code = token.code();
                m_precedence = token.precedence();
                m_position += length;
                break;
            }
        }
        if (m_token.empty())
            throw ParserException("unrecognised token: " + std::string(rest));
    } while (m_code == whiteSpace);
}

int64_t Lexer::intTok() const { return fromStringToint64(m_token); }

int64_t Lexer::hexTok() const {
    constexpr uint32_t most = std::numeric_limits<uint32_t>::max();
    uint32_t value = 0;
    const char* digits = m_token.data() + 2;
    const auto [end, error] = std::from_chars(digits, m_token.data() + m_token.size(), value, 16);
    return error == std::errc::result_out_of_range ? most : value;
}

double Lexer::doubleTok() const {
    return std::strtod(std::string(m_token).c_str(), nullptr); // unlike from_chars tells tiny from huge
}

std::string Lexer::strTok() const { return std::string(m_token.substr(1, m_token.size() - 2)); }

bool Lexer::identIs(std::string_view name) const { return m_code == identifier && m_token == name; }
