// The XML parser, with and without text kept, on a buffer that ends where the bytes end. Every node of the
// tree must lead back to its parent, and every text must end.

#include "support/XMLText.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Touches all texts of a node; returns the bytes in them.
size_t textBytes(XMLNode* node) {
    if (auto* data = dynamic_cast<XMLData*>(node))
        return std::strlen(data->data());
    if (auto* comment = dynamic_cast<XMLComment*>(node))
        return std::strlen(comment->comment());
    if (auto* section = dynamic_cast<XMLCDATASection*>(node))
        return std::strlen(section->CDATASection());
    size_t bytes = std::strlen(node->toElement()->tagName());
    for (const XMLAttribute& attribute : node->toElement()->getAttributeList()) {
        require(node->toElement()->attribute(attribute.name) == attribute.value);
        bytes += std::strlen(attribute.name) + std::strlen(attribute.value);
    }
    return bytes;
}

size_t walk(XMLNode* root) {
    size_t bytes = 0;
    XMLNode* node = root;
    while (node) {
        bytes += textBytes(node);
        for (XMLNode* child = node->firstChild(); child; child = child->nextSibling())
            require(child->parent() == node);
        if (node->firstChild()) {
            node = node->firstChild();
            continue;
        }
        while (node && !node->nextSibling())
            node = node->parent();
        node = node ? node->nextSibling() : nullptr;
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool keepText : {false, true}) {
        const ExactParse parse(text, keepText);
        require(!parse.root() || (!parse.root()->parent() && !parse.root()->nextSibling()));
        require(walk(parse.root()) <= size);
        require(parse.line() <= static_cast<size_t>(std::count(text.begin(), text.end(), '\n')));
        for (const char* found :
             {parse.document().docType(), parse.document().version(), parse.document().encoding()})
            require(!found || std::strlen(found) <= size);
    }
    return 0;
}
