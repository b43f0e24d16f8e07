// The comment language, with both kinds of input: the bytes as a document of its own, as the comment of a
// function in a header, and as a header. Pages go into memory, and what is open in them must be closed.

#include "docgen/DocGen.h"
#include "docgen/SourceBrowserObject.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "support/MemoryFiles.h"

#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// In a text without HTML of its own, with nothing that forgets a paragraph, each block that opens is closed.
void checkBlocks(const QString& input, const QString& html) {
    if (input.contains('<') || input.contains("brief") || input.contains("ingroup"))
        return;
    for (const char* tag : {"ul>", "ol>", "li>", "blockquote>", "tt>"})
        require(html.count(QString("<") + tag) == html.count(QString("</") + tag));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const QString text = toText(bytes);
    DocObjects objects;
    DocumentationSource source(objects);
    checkBlocks(text, source.documentationSource(text, nullptr));
    require(objects.docObjects.isEmpty());

    SourceBrowserMethod method;
    method.setName("f");
    method.declarationFile = "/p/a.h";
    method.comment = "!" + text;
    const QString html = source.documentationSource(method);
    require(!html.isNull() && objects.docObjects.contains("f"));
    require(objects.docGroups.contains(objects.docObjects["f"].group));
    checkBlocks(text, html);

    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    memory.write("/p/a.dg", bytes);
    memory.write("/p/b.h", bytes);
    DocGen::generateDocumentation(Path("/p/a.dg"), "/p/out");
    DocGen::generateDocumentation(Path("/p/b.h"), "/p/out");
    require(memory.has("/p/out/a.htm") && memory.has("/p/out/b.xml"));
    for (const QString& name : memory.list("/p"))
        require(name == "a.dg" || name == "b.h" || name == "out");
    return 0;
}
