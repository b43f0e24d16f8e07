#include "docgen/DocGen.h"
#include "docgen/SourceBrowserCParser.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "support/MemoryFiles.h"

#include <chrono>
#include <filesystem>
#include <random>

// What the pages hold is in tests/cases/docgen and tests/cases/documentation.

namespace {

std::string names(MemoryFiles& memory, const char* directory) {
    QStringList list = memory.list(directory);
    list.sort();
    return list.join(u' ').toStdString();
}

} // namespace

TEST(DocGen, KindOfInputGoesByTheCompleteExtension) {
    const struct {
        const char* input;
        const char* pages;
    } rows[] = {
        {"/p/a.dg", "a.htm"},
        {"/p/a.h", "a.htm a.xml f.htm"},
        {"/p/a", "a.htm a.xml f.htm"},
        {"/p/a.v2.dg", "a.htm a.xml f.htm"},
        {"/p/a.DG", "a.htm a.xml f.htm"},
        {"/p/.dg", ".htm"},
    };
    for (const auto& row : rows) {
        MemoryFiles memory;
        const FilesInPlace inPlace(&memory);
        memory.write(row.input, "/*!*/int f();");
        DocGen::generateDocumentation(Path(row.input), "/p/out/html");
        EXPECT_EQ(names(memory, "/p/out/html"), row.pages) << row.input;
    }
}

TEST(DocGen, NothingCanBeWritten) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    memory.write("/p/a.h", "/*!*/int f();");
    memory.failWith(ENOSPC);
    DocGen::generateDocumentation(Path("/p/a.h"), "/p/out");
    EXPECT_FALSE(memory.has("/p/out/a.htm"));
}

TEST(DocGen, PagesOfARunAreBounded) {
    class Counter : public MemoryFiles {
    public:
        int replaceUnsynced(const QString&, std::string_view contents) override {
            bytes += static_cast<qint64>(contents.size());
            return 0;
        }
        qint64 bytes = 0;
    } memory;
    const FilesInPlace inPlace(&memory);
    QByteArray header = "/*!" + QByteArray(1'000'000, 'x') + "*/";
    for (int n = 0; n < 1'000; ++n)
        header += "int f" + QByteArray::number(n) + "(void);";
    DocGen().generateHeader(Path("/p/a.h"), viewOf(header), "/p/out");
    EXPECT_LE(memory.bytes, DocGen::mostBytes);
    EXPECT_GT(memory.bytes, DocGen::mostBytes / 2);
}

// Of the headers that this machine has, none may take long for its size.
TEST(DocGen, HeadersOfThisMachineAreScanned) {
    namespace fs = std::filesystem;
    if (!fs::exists("/usr/include"))
        GTEST_SKIP() << "no headers here";
#ifdef __SANITIZE_ADDRESS__
    constexpr int step = 20;
#else
    constexpr int step = 1;
#endif
    int file = 0;
    for (const fs::directory_entry& entry :
         fs::recursive_directory_iterator("/usr/include", fs::directory_options::skip_permission_denied)) {
        if (!entry.is_regular_file() || file++ % step != 0)
            continue;
        const FileBytes bytes = files().read(toText(entry.path().string()));
        const auto start = std::chrono::steady_clock::now();
        SourceBrowserDatabase database;
        SourceBrowserCParser(database).parseText("/p/a.h", bytes.view());
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        EXPECT_LT(time.count(), 2 + 10e-6 * static_cast<double>(bytes.size)) << entry.path();
        EXPECT_EQ(database.metrics("/p/a.h").lines,
                  std::count(bytes.view().begin(), bytes.view().end(), '\n') +
                      (bytes.size != 0 && !bytes.view().ends_with('\n') ? 1 : 0))
            << entry.path();
    }
}

TEST(DocGen, RandomTextIsScannedAndDocumented) {
    std::mt19937 random(1);
    const char* pieces[] = {
        "/*!", "*/", "int ",     "f",          "(",      ")",        "{",       "}",        ";",
        "*",   "<",  ">",        "::",         "class ", "\n",       "struct ", "typedef ", "operator",
        "=",   ",",  "\\",       "\\item ",    "\\code", "#",        "\"",      "'",        "[",
        "]",   "~",  "virtual ", "namespace ", "\xB7",   "template", ":",       "\\brief ", "enum "};
    for (int run = 0; run < 300; ++run) {
        std::string text;
        for (int piece = 0; piece < 300; ++piece)
            text += pieces[random() % std::size(pieces)];
        MemoryFiles memory;
        const FilesInPlace inPlace(&memory);
        memory.write("/p/a.h", text);
        memory.write("/p/b.dg", text);
        DocGen::generateDocumentation(Path("/p/a.h"), "/p/out");
        DocGen::generateDocumentation(Path("/p/b.dg"), "/p/out");
        EXPECT_TRUE(memory.has("/p/out/a.xml") && memory.has("/p/out/b.htm")) << text;
    }
}
