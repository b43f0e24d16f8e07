// The conditional preprocessor. The first byte says whether references are expanded; the rest is cut at each
// line
// "--" into the file that is loaded, the files a.xml, b.xml ... that it may include, and the macros.

#include "support/MemoryFiles.h"
#include "xml/XMLPP2.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

class Document : public XMLPP2 {
public:
    void warning(const QString& message) override {
        if (!message.startsWith(QLatin1String("XmlPP::processConditionals(): ")))
            std::abort();
    }
};

/// Every node must lead back to its parent, and every text must end.
void walk(XMLNode* root) {
    XMLNode* node = root;
    while (node) {
        if (XMLElement* element = node->toElement()) {
            for (const XMLAttribute& attribute : element->getAttributeList())
                if (std::strlen(attribute.name) + std::strlen(attribute.value) > size_t{1} << 30)
                    std::abort();
        }
        for (XMLNode* child = node->firstChild(); child; child = child->nextSibling()) {
            if (child->parent() != node)
                std::abort();
        }
        if (node->firstChild()) {
            node = node->firstChild();
            continue;
        }
        while (node != root && !node->nextSibling())
            node = node->parent();
        node = node == root ? nullptr : node->nextSibling();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    constexpr std::string_view cut = "\n--\n";
    std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    QString name = "top.xml";
    for (char16_t next = u'a'; next <= u'd'; ++next) {
        const size_t end = rest.find(cut);
        if (end == std::string_view::npos)
            break;
        memory.write("/" + name, rest.substr(0, end));
        rest.remove_prefix(end + cut.size());
        name = QChar(next) + QString(".xml");
    }
    Document document;
    document.setGrowthLimit(100'000);
    document.load("/top.xml", toText(rest), data[0] & 1);
    walk(document.root());
    return 0;
}
