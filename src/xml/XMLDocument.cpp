#include "xml/XMLDocument.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "xml/XMLCharacters.h"
#include "xml/XMLParser.h"

#include <algorithm>
#include <cstdio>

bool XMLDocument::load(const QString& fileName) {
    FileBytes bytes = files().read(fileName);
    if (!bytes) {
        std::snprintf(m_errorText.data(), m_errorText.size(), "couldn't read %s",
                      toBytes(fileName).constData());
        m_errorLine = 0;
        return false;
    }
    const std::string_view text = textOf(bytes.view());
    char* copy = copyOf(text);
    bytes.data.reset(); // a large file lies in memory once while its tree grows
    return parseInPlace(copy, text.size());
}

bool XMLDocument::parse(std::string_view bytes) {
    const std::string_view text = textOf(bytes);
    return parseInPlace(copyOf(text), text.size());
}

/// What stands before the first zero byte.
std::string_view XMLDocument::textOf(std::string_view bytes) { return bytes.substr(0, bytes.find('\0')); }

char* XMLDocument::copyOf(std::string_view text) {
    auto* copy = static_cast<char*>(allocate(text.size() + 1));
    text.copy(copy, text.size());
    copy[text.size()] = '\0';
    return copy;
}

bool XMLDocument::parseInPlace(char* text, size_t length) {
    const CurrentPool current(this);
    m_textBytes += length;
    XMLParser parser(*this);
    m_root = parser.parse(text, length);
    if (parser.error() == XMLParser::NoError)
        return true;
    std::snprintf(m_errorText.data(), m_errorText.size(), "%s",
                  parser.error() == XMLParser::BadTagName ? "bad tagName" : "tagName mismatch");
    m_errorLine = parser.line();
    return false;
}

const char* XMLDocument::xmlDocumentType(const QString& fileName) {
    static std::array<char, typeBytes> name;
    const FileBytes bytes = files().read(fileName, typeBytes);
    const std::string_view found = documentTypeIn(bytes.view());
    if (!found.data())
        return nullptr;
    name[found.copy(name.data(), name.size() - 1)] = '\0';
    return name.data();
}

std::string_view XMLDocument::documentTypeIn(std::string_view bytes) {
    constexpr std::string_view keyword = "!DOCTYPE ";
    bytes = bytes.substr(0, typeBytes);
    size_t tag = bytes.find('<');
    while (tag != std::string_view::npos && bytes.substr(tag + 1).starts_with('?'))
        tag = bytes.find('<', tag + 1);
    if (tag == std::string_view::npos || !bytes.substr(tag + 1).starts_with(keyword))
        return {};
    bytes.remove_prefix(tag + 1 + keyword.size());
    const auto name = std::find_if_not(bytes.begin(), bytes.end(), isXMLWhiteSpace);
    const auto end = std::find_if_not(name, bytes.end(), isXMLNameCharacter);
    return end == bytes.end() ? std::string_view() : std::string_view(name, end);
}
