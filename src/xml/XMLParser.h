#pragma once

#include "xml/XMLNode.h"

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

class XMLDocument;

/// One parse of a text into the tree of a document, in one pass.
class XMLParser {
public:
    enum Error { NoError, BadTagName, TagNameMismatch };

    explicit XMLParser(XMLDocument& document);

    /// The element that was closed last at top level, or null. `text` holds `length` bytes, none of them
    /// zero, and a zero byte behind them. It belongs to the tree from now on: names and values end in place
    /// and are decoded in place. New nodes come from the current pool.
    XMLElement* parse(char* text, size_t length);

    /// Why the parse stopped before the end.
    Error error() const { return m_error; }
    /// The line where it stopped: line feeds stepped onto, so the first line is 0, and a line feed as the
    /// very first byte does not count.
    unsigned line() const { return m_line; }

private:
    char* readItem(char* p);
    char* readDeclaration(char* p);
    char* readDeclarationPair(char* p);
    char* readMarkup(char* p);
    char* readComment(char* p);
    char* readCDATA(char* p);
    char* readDocType(char* p);
    char* readStartTag(char* p);
    char* readAttributes(char* p);
    char* readEndOfElement(char* p);
    char* readText(char* p);

    void beginElement(XMLElement* element);
    void endElement();
    void append(XMLNode* node);
    char* stop(Error error, char* p);
    void terminate(char* end);
    char* decode(char* begin, char* end, bool dropReturns);

    void addAttribute(std::string_view name, const char* value);
    XMLAttribute* findAttribute(std::string_view name);
    void giveAttributes();

    XMLDocument& m_document;
    const bool m_keepText;
    char* m_begin = nullptr;
    char* m_end = nullptr;
    XMLElement* m_result = nullptr;
    XMLNode* m_open = nullptr; ///< the innermost open element
    Error m_error = NoError;
    unsigned m_line = 0;
    ptrdiff_t m_hiddenLines = 0; ///< line feeds behind the cursor that the text has lost so far

    // The attributes of the tag that is being read.
    std::vector<XMLAttribute> m_attributes;
    std::vector<uint32_t> m_nameLengths;
    uint64_t m_nameFilter = 0; ///< a bit for each name; a name whose bit is not set is new
    std::unordered_map<std::string_view, size_t> m_nameIndex; ///< of a tag with many attributes
};
