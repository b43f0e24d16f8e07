// The scanner on any bytes. It is run twice on one database, which must find the same again, and no object
// may stand outside the lines of the file.

#include "docgen/SourceBrowserCParser.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

class Log : public BuildLog, public SourceBrowserEventInterface {
public:
    void openGroup(const QString&) override { ++open; }
    void closeGroup() override { --open; }
    void diagnostic(const QString& text, int line) override { require(!text.isEmpty() && line > 0); }
    void declareContainer(int, const QString&, const char*, int) override { ++open; }
    void endContainer() override { --open; }
    int open = 0;
};

struct Count {
    qsizetype objects = 0;
    int lines = 0;

    void check(const SourceBrowserObject& object) {
        ++objects;
        require(!object.name().isEmpty());
        require(object.declarationLine < lines && object.declarationEndLine < lines + 1);
        require(object.definitionLine < lines && object.definitionEndLine < lines + 1);
        require(object.declarationLine >= 0 || object.definitionLine >= 0);
        require(!object.asString().isNull());
    }
    void walk(const SourceBrowserContainer& container, int depth) {
        require(depth <= SourceBrowserCParser::deepest);
        for (const auto& method : container.methods())
            check(*method);
        for (const auto& [name, variable] : container.variables())
            check(*variable);
        for (const auto* containers : {&container.structs(), &container.classes(), &container.namespaces()})
            for (const auto& [name, inner] : *containers) {
                require(inner.get() != &container);
                check(*inner);
                if (depth == 0 || inner->owner == &container)
                    walk(*inner, depth + 1);
            }
    }
};

Count scan(SourceBrowserDatabase& database, std::string_view bytes) {
    Log log;
    SourceBrowserCParser(database, &log, &log).parseText("/p/a.h", bytes);
    require(log.open == 0);
    Count count;
    count.lines = database.metrics("/p/a.h").lines;
    count.walk(database, 0);
    return count;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // A block of the exact size, so that a read past the end is seen.
    const std::unique_ptr<char[]> bytes(new char[size]);
    std::copy(data, data + size, bytes.get());
    const std::string_view text(bytes.get(), size);
    SourceBrowserDatabase database;
    const Count first = scan(database, text);
    require(scan(database, text).objects == first.objects);
    SourceBrowserCParser(database).parseText("/p/a.h", "");
    Count empty;
    empty.walk(database, 0);
    require(empty.objects == 0);
    return 0;
}
