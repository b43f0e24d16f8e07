#pragma once

#include "foundation/Pool.h"
#include "xml/XMLNode.h"

#include <QString>
#include <array>
#include <string_view>

/// A file of the system's own XML as a tree. The document is the pool of all its nodes and texts, so that
/// destroying it frees everything. Made empty, loaded, and read; a further load replaces the root while the
/// pool keeps what it has.
class XMLDocument : public Pool {
public:
    /// With `keepText` the text between tags, and comments, become nodes too.
    explicit XMLDocument(bool keepText) : m_keepText(keepText) {}
    virtual ~XMLDocument() = default;

    /// Makes the element of a start tag, in the current pool. `name` lies in the document's pool.
    virtual XMLElement* mkXMLElement(const char* name) { return new XMLElement(name); }

    /// Reads a file and makes it the tree. False if it can't be read, which leaves the root as it was, or if
    /// the parse stops, which leaves the last element closed at top level; see errorText and errorLine. A
    /// true result may come with no root, for a file without elements.
    bool load(const QString& fileName);
    /// The same for bytes, which are copied into the pool and end at their first zero byte.
    bool parse(std::string_view bytes);

    /// The name in the DOCTYPE declaration, and what the XML declaration gives; null until one was read.
    const char* docType() const { return m_declared.docType; }
    const char* version() const { return m_declared.version; }
    const char* encoding() const { return m_declared.encoding; }
    /// The root element, or null.
    XMLElement* root() const { return m_root; }
    bool keepText() const { return m_keepText; }

    /// Why the last failing load failed; empty before. The line counts from 0, and is 0 for a file that can't
    /// be read.
    const char* errorText() const { return m_errorText.data(); }
    unsigned errorLine() const { return m_errorLine; }

    /// The name in the DOCTYPE declaration of a file, of which the first 1,024 bytes are read; null if there
    /// is none. It stands until the next call.
    static const char* xmlDocumentType(const QString& fileName);
    /// The same in bytes: a view into them, whose data is null if there is no name.
    static std::string_view documentTypeIn(std::string_view bytes);

protected:
    struct Declared {
        const char* docType = nullptr;
        const char* version = nullptr;
        const char* encoding = nullptr;
    };
    const Declared& declared() const { return m_declared; }
    void setDeclared(const Declared& declared) { m_declared = declared; }
    void setRoot(XMLElement* root) { m_root = root; }
    /// Bytes of all texts parsed so far.
    size_t textBytes() const { return m_textBytes; }

private:
    friend class XMLParser;

    static std::string_view textOf(std::string_view bytes);
    char* copyOf(std::string_view text);
    bool parseInPlace(char* text, size_t length);

    static constexpr size_t typeBytes = 1024; ///< where a document's type must stand
    static constexpr size_t errorBytes = 1024;

    bool m_keepText;
    Declared m_declared;
    XMLElement* m_root = nullptr;
    size_t m_textBytes = 0;
    std::array<char, errorBytes> m_errorText{};
    unsigned m_errorLine = 0;
};
