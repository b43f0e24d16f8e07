// One pass over one buffer. The tree's strings are pieces of the text itself: a name or a value ends by a
// zero byte in the place of the character behind it, and references shrink in place. So the text is in memory
// once, and an element costs its node and one array of attributes.
//
// The idea holds because a character is overwritten only when the cursor has passed it. Each reading
// operation takes the cursor and gives it back; one that stops the parse gives the end of the text, where
// every loop ends by itself.
//
// The open elements need no stack. While an element is open its parent field points to the open element
// around it, which is what it will hold anyway, and its sibling field, which nothing needs yet, points to its
// last child, so that appending takes constant time. Depth costs nothing.
//
// Nobody asks for a line until the parse stops, and then the line feeds behind the cursor are counted. What
// overwrites one (or makes one, "&#10;") notes the difference.

#include "xml/XMLParser.h"

#include "xml/XMLCharacters.h"
#include "xml/XMLDocument.h"

#include <algorithm>
#include <cstring>

using namespace xmlCharacters;

namespace {

/// From this many attributes on names are looked up in an index.
constexpr size_t manyAttributes = 32;

inline char* skip(char* p, Class wanted) {
    while (is(*p, wanted))
        ++p;
    return p;
}

inline char* skipTo(char* p, Class wanted) {
    while (!is(*p, wanted))
        ++p;
    return p;
}

/// Whether the text at `p`, which ends with a zero byte, begins with `prefix`.
inline bool startsWith(const char* p, std::string_view prefix) {
    return std::strncmp(p, prefix.data(), prefix.size()) == 0;
}

/// The value of a digit of a numeric reference, or -1. A lower-case letter counts as its place in the
/// alphabet plus 10; in a hexadecimal number an upper-case one does too.
int digitValue(char c, bool hexadecimal) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 10;
    if (hexadecimal && c >= 'A' && c <= 'Z')
        return c - 'A' + 10;
    return -1;
}

struct Reference {
    char byte;
    size_t length; ///< 0 if there is none
};

/// The numeric reference that `text`, which begins with "&#", begins with.
Reference numericReference(std::string_view text) {
    const bool hexadecimal = text.size() > 2 && text[2] == 'x';
    const size_t first = hexadecimal ? 3 : 2;
    unsigned value = 0;
    size_t at = first;
    for (; at < text.size(); ++at) {
        const int digit = digitValue(text[at], hexadecimal);
        if (digit < 0)
            break;
        value = value * (hexadecimal ? 16u : 10u) + static_cast<unsigned>(digit);
    }
    if (at == first || at == text.size() || text[at] != ';')
        return {};
    return {static_cast<char>(value & 0xFF), at + 1};
}

/// The reference that `text`, which begins with "&", begins with.
Reference referenceAt(std::string_view text) {
    static constexpr struct {
        std::string_view form;
        char byte;
    } named[] = {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}};
    if (text.starts_with("&#"))
        return numericReference(text);
    for (const auto& reference : named) {
        if (text.starts_with(reference.form))
            return {reference.byte, reference.form.size()};
    }
    return {};
}

} // namespace

XMLParser::XMLParser(XMLDocument& document) : m_document(document), m_keepText(document.keepText()) {}

XMLElement* XMLParser::parse(char* text, size_t length) {
    m_begin = text;
    m_end = text + length;
    char* p = skip(text, WhiteSpace);
    if (*p != '<')
        return nullptr;
    while (p != m_end)
        p = readText(readItem(p + 1));
    return m_result;
}

inline char* XMLParser::readItem(char* p) {
    switch (*p) {
    case '?':
        return readDeclaration(p + 1);
    case '!':
        return readMarkup(p);
    case '/':
        return readEndOfElement(p + 1);
    default:
        return readStartTag(p);
    }
}

/// Any target but "xml" passes as character data.
char* XMLParser::readDeclaration(char* p) {
    char* nameEnd = skip(p, Name);
    if (std::string_view(p, static_cast<size_t>(nameEnd - p)) != "xml")
        return nameEnd;
    p = nameEnd;
    while (p != m_end && *p != '?')
        p = readDeclarationPair(p);
    if (*p == '?')
        ++p;
    return *p == '>' ? p + 1 : p;
}

/// A pair, or what else stands in its place; goes on by one character at least.
char* XMLParser::readDeclarationPair(char* p) {
    char* name = p;
    char* nameEnd = skip(name, Name);
    p = skip(nameEnd, WhiteSpace);
    if (*p != '=') // not a pair; a character that can't begin one is passed over
        return p == name ? p + 1 : p;
    p = skip(p + 1, WhiteSpace);
    if (*p != '"')
        return p;
    char* value = p + 1;
    char* valueEnd = value + std::strcspn(value, "\"");
    const std::string_view key(name, static_cast<size_t>(nameEnd - name));
    p = valueEnd == m_end ? m_end : valueEnd + 1;
    if (key == "version")
        m_document.m_declared.version = value;
    else if (key == "encoding")
        m_document.m_declared.encoding = value;
    terminate(valueEnd);
    return p;
}

/// What begins with "<!"; `p` stands on the "!".
char* XMLParser::readMarkup(char* p) {
    if (startsWith(p, "!--"))
        return readComment(p + 3);
    if (startsWith(p, "![CDATA["))
        return readCDATA(p + 8);
    if (startsWith(p, "!DOCTYPE"))
        return readDocType(p + 8);
    return p;
}

/// Dashes are taken two by two, so "--->" does not end a comment.
char* XMLParser::readComment(char* p) {
    char* text = p;
    while ((p = static_cast<char*>(std::memchr(p, '-', static_cast<size_t>(m_end - p))))) {
        if (p[1] != '-') {
            p += 1;
        } else if (p[2] != '>') {
            p += 2;
        } else {
            terminate(p);
            if (m_keepText && m_open)
                append(new XMLComment(text));
            return p + 3;
        }
    }
    return m_end;
}

char* XMLParser::readCDATA(char* p) {
    char* end = std::strstr(p, "]]>");
    if (!end)
        return m_end;
    terminate(end);
    if (m_open)
        append(new XMLCDATASection(p));
    return end + 3;
}

char* XMLParser::readDocType(char* p) {
    char* name = skip(p, WhiteSpace);
    char* nameEnd = skip(name, Name);
    p = skip(nameEnd, WhiteSpace);
    if (*p != '>')
        return p;
    m_document.m_declared.docType = name;
    terminate(nameEnd);
    return p + 1;
}

char* XMLParser::readStartTag(char* p) {
    char* name = p;
    char* nameEnd = skip(name, Name);
    p = skip(nameEnd, WhiteSpace);
    char last = *p; // the end of the name may lie on it
    if (p == nameEnd && last != '>' && last != '/' && p != m_end)
        return stop(BadTagName, p);
    terminate(nameEnd);
    beginElement(m_document.mkXMLElement(name));
    if (p != nameEnd) {
        p = readAttributes(p);
        last = *p;
    }
    if (p == m_end)
        return p;
    return last == '/' ? readEndOfElement(p + 1) : p + 1;
}

/// Leaves the cursor on the "/" or ">", or at the end of the text.
char* XMLParser::readAttributes(char* p) {
    while (*p != '>' && *p != '/' && p != m_end) {
        if (!is(*p, NameStart))
            return stop(BadTagName, p);
        char* name = p;
        char* nameEnd = skip(p + 1, Name);
        p = skip(nameEnd, WhiteSpace);
        if (*p != '=')
            continue;
        p = skip(p + 1, WhiteSpace);
        if (*p != '"')
            continue;
        char* value = p + 1;
        char* valueEnd = skipTo(value, ValueStop);
        char* decodedEnd = valueEnd;
        if (*valueEnd == '&') {
            char* reference = valueEnd;
            valueEnd += std::strcspn(valueEnd, "\"");
            decodedEnd = decode(reference, valueEnd, false);
        }
        p = valueEnd == m_end ? m_end : skip(valueEnd + 1, WhiteSpace);
        *decodedEnd = *valueEnd = '\0';
        terminate(nameEnd);
        addAttribute({name, static_cast<size_t>(nameEnd - name)}, value);
    }
    giveAttributes();
    return p;
}

/// What follows the "/" of an end tag, or of a start tag that is an end as well.
char* XMLParser::readEndOfElement(char* p) {
    if (*p != '>') {
        char* name = p;
        char* nameEnd = skip(name, Name);
        p = skip(nameEnd, WhiteSpace);
        const std::string_view read(name, static_cast<size_t>(nameEnd - name));
        if (m_open && read != static_cast<XMLElement*>(m_open)->tagName())
            return stop(TagNameMismatch, p);
        if (*p != '>')
            return p;
    }
    if (m_open)
        endElement();
    return p + 1;
}

/// Character data up to the next "<", where it leaves the cursor, or the end of the text.
inline char* XMLParser::readText(char* p) {
    char* end = skipTo(p, TextStop);
    if (m_keepText && m_open) {
        *decode(p, end, true) = '\0';
        append(new XMLData(p));
    }
    return end;
}

void XMLParser::beginElement(XMLElement* element) {
    element->m_parent = m_open;
    m_open = element;
}

void XMLParser::endElement() {
    XMLNode* closed = m_open;
    m_open = closed->m_parent;
    closed->m_nextSibling = nullptr;
    if (m_open)
        append(closed);
    else
        m_result = static_cast<XMLElement*>(closed);
}

void XMLParser::append(XMLNode* node) {
    XMLNode*& last = m_open->m_nextSibling;
    (last ? last->m_nextSibling : m_open->m_firstChild) = node;
    last = node;
    node->m_parent = m_open;
}

char* XMLParser::stop(Error error, char* p) {
    m_error = error;
    const ptrdiff_t left = p == m_begin ? 0 : std::count(m_begin + 1, p + 1, '\n');
    m_line = static_cast<unsigned>(left + m_hiddenLines);
    return m_end;
}

inline void XMLParser::terminate(char* end) {
    m_hiddenLines += *end == '\n';
    *end = '\0';
}

/// Decodes the references in a piece of the text in place. Returns its new end.
char* XMLParser::decode(char* begin, char* end, bool dropReturns) {
    char* out = begin;
    const ptrdiff_t before = std::count(begin, end, '\n');
    for (char* p = begin; p != end; ++p) {
        if (*p == '&') {
            const Reference reference = referenceAt({p, static_cast<size_t>(end - p)});
            *out++ = reference.length ? reference.byte : '&';
            p += reference.length ? reference.length - 1 : 0;
        } else if (*p != '\r' || !dropReturns) {
            *out++ = *p;
        }
    }
    m_hiddenLines += before - std::count(begin, out, '\n');
    std::fill(out, end, '\0');
    return out;
}

/// As XMLElement::setAttribute does, but a tag with a hundred thousand attributes takes no quadratic time.
void XMLParser::addAttribute(std::string_view name, const char* value) {
    const auto first = static_cast<unsigned char>(name.front());
    const auto last = static_cast<unsigned char>(name.back());
    const auto middle = static_cast<unsigned char>(name[name.size() / 2]);
    const uint64_t bit = uint64_t{1} << ((name.size() * 11 + first + last * 5u + middle * 23u) & 63);
    if (m_nameFilter & bit) {
        if (XMLAttribute* attribute = findAttribute(name)) {
            attribute->value = value;
            return;
        }
    }
    m_nameFilter |= bit;
    if (!m_nameIndex.empty())
        m_nameIndex.emplace(name, m_attributes.size());
    m_attributes.push_back({name.data(), value});
    m_nameLengths.push_back(static_cast<uint32_t>(name.size()));
}

XMLAttribute* XMLParser::findAttribute(std::string_view name) {
    const size_t count = m_attributes.size();
    const auto nameAt = [this](size_t i) { return std::string_view(m_attributes[i].name, m_nameLengths[i]); };
    if (count < manyAttributes) {
        for (size_t i = 0; i < count; ++i) {
            if (nameAt(i) == name)
                return &m_attributes[i];
        }
        return nullptr;
    }
    if (m_nameIndex.empty()) {
        for (size_t i = 0; i < count; ++i)
            m_nameIndex.emplace(nameAt(i), i);
    }
    const auto found = m_nameIndex.find(name);
    return found == m_nameIndex.end() ? nullptr : &m_attributes[found->second];
}

/// Gives the attributes to the open element, in one array of their number.
void XMLParser::giveAttributes() {
    if (m_attributes.empty())
        return;
    auto* element = static_cast<XMLElement*>(m_open);
    const size_t count = m_attributes.size();
    element->m_attributes =
        static_cast<XMLAttribute*>(PoolObject::operator new(count * sizeof(XMLAttribute)));
    std::copy(m_attributes.begin(), m_attributes.end(), element->m_attributes);
    element->m_attributeCount = element->m_attributeCapacity = static_cast<uint32_t>(count);
    m_attributes.clear();
    m_nameLengths.clear();
    m_nameFilter = 0;
    if (!m_nameIndex.empty())
        m_nameIndex =
            {}; // clearing would keep the buckets of the largest tag, and sweep them for every other
}
