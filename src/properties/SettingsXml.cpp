#include "properties/SettingsXml.h"

#include "foundation/Text.h"

#include <QDomDocument>
#include <QTextStream>
#include <algorithm>
#include <array>

// The DOM reads the file, but neither knows all that we write nor is it safe from all that others may. So one
// pass over the bytes goes before it:
//   - "&middot;" and "&nbsp;" become numeric references, which need no declaration;
//   - so does a carriage return in text, which the DOM would take for a line feed;
//   - a mark goes before each value, since the DOM drops text that is white space alone;
//   - the document type goes, and with it every entity that could grow or name another file;
//   - depth, number of elements and length of tags are bounded, for the DOM recurses, and compares attributes
//   in pairs.

namespace {

constexpr int mostElements = 200'000;
constexpr int mostLevels = 256;
constexpr size_t mostTagBytes = 1024;

struct Entity {
    char16_t character;
    const char* reference;
};
/// In the order of replacement: "&" first, so that no reference is escaped again.
constexpr std::array<Entity, 6> entities = {{{u'&', "&amp;"},
                                             {u'>', "&gt;"},
                                             {u'<', "&lt;"},
                                             {u'"', "&quot;"},
                                             {u'\'', "&apos;"},
                                             {u'\xB7', "&middot;"}}};

/// No character of any text, though XML can hold it.
constexpr QChar valueMark = u'\xFDD0';

/// Whether a file can hold the character, whether as it is or as a reference.
bool isXmlCharacter(uint c) {
    return c >= 0x20 ? c != 0xFFFE && c != 0xFFFF : c == '\t' || c == '\n' || c == '\r';
}

/// Turns the bytes of a file into text for the DOM.
class Preparation {
public:
    explicit Preparation(std::string_view bytes) : m_rest(bytes) { m_text.reserve(std::ssize(bytes)); }

    /// False if the file breaks a bound, ends within a tag or holds what XML can't.
    bool run() {
        if (!std::all_of(m_rest.begin(), m_rest.end(), [](uchar c) { return isXmlCharacter(c); }))
            return false;
        while (!m_rest.empty()) {
            if (m_rest.front() != '<')
                text();
            else if (!markup())
                return false;
        }
        return true;
    }
    const QString& result() const { return m_text; }

private:
    bool markup() {
        if (m_rest.starts_with("<!--"))
            return copyThrough("-->");
        if (m_rest.starts_with("<![CDATA["))
            return copyThrough("]]>");
        if (m_rest.starts_with("<?"))
            return copyThrough("?>");
        if (m_rest.starts_with("<!"))
            return dropDeclaration();
        return tag();
    }

    bool copyThrough(std::string_view end) {
        const size_t found = m_rest.find(end, 2);
        m_afterStartTag = false;
        return found != std::string_view::npos && copy(found + end.size());
    }

    /// A document type, with what stands in brackets inside it.
    bool dropDeclaration() {
        int brackets = 0;
        char quote = 0;
        for (size_t i = 0; i < m_rest.size(); ++i) {
            const char c = m_rest[i];
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '[' || c == ']')
                brackets += c == '[' ? 1 : -1;
            else if (c == '>' && brackets <= 0) {
                m_rest.remove_prefix(i + 1);
                return true;
            }
        }
        return false;
    }

    bool tag() {
        const size_t length = tagLength();
        if (length == 0)
            return false;
        const bool isEnd = m_rest[1] == '/';
        const bool isEmpty = m_rest[length - 2] == '/';
        m_afterStartTag = !isEnd && !isEmpty;
        m_levels += isEnd ? -1 : isEmpty ? 0 : 1;
        m_elements += isEnd ? 0 : 1;
        return m_levels <= mostLevels && m_elements <= mostElements && copy(length);
    }

    /// Bytes up to the ">" and with it; 0 if there is none, or too far away.
    size_t tagLength() const {
        char quote = 0;
        for (size_t i = 1; i < std::min(m_rest.size(), mostTagBytes); ++i) {
            const char c = m_rest[i];
            if (quote != 0)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '>')
                return i + 1;
        }
        return 0;
    }

    void text() {
        const std::string_view run = m_rest.substr(0, m_rest.find('<'));
        if (m_afterStartTag && m_rest.substr(run.size()).starts_with("</"))
            m_text += valueMark;
        for (size_t i = 0; i < run.size(); ++i) {
            if (run[i] == '\r')
                m_text += QLatin1String("&#13;");
            else if (!reference(run.substr(i), i))
                m_text += QLatin1Char(run[i]);
        }
        m_afterStartTag = false;
        m_rest.remove_prefix(run.size());
    }

    /// Writes a reference that the DOM doesn't know, and steps onto its last byte.
    bool reference(std::string_view at, size_t& i) {
        constexpr std::string_view middot = "&middot;", nbsp = "&nbsp;";
        if (!at.starts_with(middot) && !at.starts_with(nbsp))
            return false;
        const bool isMiddot = at.starts_with(middot);
        m_text += isMiddot ? QLatin1String("&#183;") : QLatin1String("&#32;");
        i += (isMiddot ? middot : nbsp).size() - 1;
        return true;
    }

    bool copy(size_t length) {
        m_text += QLatin1String(m_rest.data(), static_cast<qsizetype>(length));
        m_rest.remove_prefix(length);
        return true;
    }

    std::string_view m_rest;
    QString m_text;
    int m_elements = 0;
    int m_levels = 0;
    bool m_afterStartTag = false;
};

bool isPlainText(const QDomNode& node) { return node.isText() && !node.isCDATASection(); }

/// What the element holds: its text, or its first child as XML if that is no text.
QString valueOf(const QDomElement& element) {
    QString value("");
    const QDomNode first = element.firstChild();
    if (!first.isNull() && !isPlainText(first)) {
        QTextStream stream(&value);
        first.save(stream, 0);
        return xmlUnescapeEntities(value);
    }
    for (QDomNode child = first; isPlainText(child); child = child.nextSibling())
        value += child.nodeValue();
    return value.startsWith(valueMark) ? value.mid(1) : value;
}

/// The element behind `element` in document order; null behind the last.
QDomElement elementBehind(const QDomElement& element) {
    if (const QDomElement child = element.firstChildElement(); !child.isNull())
        return child;
    for (QDomNode node = element; !node.isNull(); node = node.parentNode()) {
        if (const QDomElement next = node.nextSiblingElement(); !next.isNull())
            return next;
    }
    return {};
}

/// Whether a key comes back as it is when it stands unescaped between double quotes.
bool isWritableKey(const QString& key) {
    return !key.isEmpty() && std::all_of(key.begin(), key.end(), [](QChar c) {
        return c >= u' ' && c <= u'\xFF' && c != u'&' && c != u'<' && c != u'"';
    });
}

QByteArray escapedBytes(const QString& value) {
    QByteArray bytes;
    for (const uint c : xmlEscapeEntities(value).toUcs4()) {
        if (!isXmlCharacter(c))
            bytes += '?';
        else if (c > 0xFF)
            bytes += "&#" + QByteArray::number(c) + ";";
        else
            bytes += static_cast<char>(c);
    }
    return bytes;
}

} // namespace

QByteArray SettingsXml::write(const Entries& entries) {
    QByteArray bytes = "<!DOCTYPE Ostrel_Settings_File>\n<settings>\n";
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        bytes += "  <setting name=\"" + toBytes(entry.key()) + "\">" + escapedBytes(*entry) + "</setting>\n";
    return bytes + "</settings>\n";
}

bool SettingsXml::read(std::string_view bytes, Entries& entries) {
    Preparation preparation(bytes);
    QDomDocument document;
    if (bytes.size() > mostBytes || !preparation.run() || !document.setContent(preparation.result()))
        return false;
    entries.clear();
    for (QDomElement element = document.documentElement(); !element.isNull();
         element = elementBehind(element)) {
        const QString name = element.attribute("name");
        if (element.tagName() == "setting" && isWritableKey(name))
            entries[name] = valueOf(element);
    }
    return true;
}

QString xmlEscapeEntities(const QString& text) {
    QString escaped = text;
    for (const Entity& entity : entities)
        escaped.replace(QChar(entity.character), QLatin1String(entity.reference));
    return escaped;
}

QString xmlUnescapeEntities(QString text) {
    text.replace("&nbsp;", " ");
    for (auto entity = entities.rbegin(); entity != entities.rend(); ++entity)
        text.replace(QLatin1String(entity->reference), QString(QChar(entity->character)));
    return text;
}
