#include "foundation/Pool.h"
#include "support/TemporaryDirectory.h"
#include "toolchain/common/ElfFile.h"
#include "toolchain/common/ObjectMaker.h"
#include "toolchain/compiler/Clang.h"
#include "toolchain/compiler/CompileOptions.h"
#include "toolchain/compiler/DoubtfulCode.h"

#include <fstream>
#include <gmock/gmock.h>

using namespace testing;

namespace {

TEST(CompilerTest, RulesForMakeGiveTheirFiles) {
    const struct {
        const char* rule;
        std::vector<std::string> files;
    } rows[] = {
        {"object: a.c b.h\n", {"a.c", "b.h"}},
        {"object: a.c \\\n  dir/b.h \\\n  c.h\n", {"a.c", "dir/b.h", "c.h"}},
        {"object: with\\ blank.h hash\\#.h money$$.h back\\\\slash.h\n",
         {"with blank.h", "hash#.h", "money$.h", "back\\slash.h"}},
        {"object:\n", {}},
        {"object: C:/x.h", {"C:/x.h"}},
        {"", {}},
        {"no colon", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(dependenciesOf(row.rule), row.files) << row.rule;
}

/// The first is made wrong by all versions of clang that we know; a version that mends it mends this test
/// too.
TEST(CompilerTest, DoubtfulCodeIsFound) {
    const struct {
        const char* source;
        bool doubtful;
    } rows[] = {
        {"int f(int *p, int *q) { int x = *p++; *q = (int)p ^ 5; return x; }", true},
        {"int f(int *p, int *q) { int x = *p++; *q = (int)p + x * 0 + *q; return x; }", false},
        {"int f(int *p, int n) { int s = 0; while (n--) s += *p++; return s; }", false},
        {"int f(const int *p) { return p[0] + p[1] + p[2]; }", false},
        {"long f(long *p, long *q) { return p[0] + *q++ + p[1]; }", false},
        {"void f(char *to, const char *from) { while ((*to++ = *from++)) { } }", false},
    };
    const TemporaryDirectory directory;
    for (const auto& row : rows) {
        const std::string path = directory.bytes() + "/f.c";
        std::ofstream(path) << row.source << '\n';
        CompileOptions options;
        options.input = path;
        options.optimise = options.debug = true;
        const ClangResult made = runClang(clangProgram(), compilerCommand(options), {}, false);
        ASSERT_EQ(made.status, 0);
        Pool pool;
        const CurrentPool current(&pool);
        const ElfFile elf(made.output);
        const auto places = doubtfulPlaces(*makeObject(elf, {}));
        EXPECT_EQ(!places.empty(), row.doubtful) << row.source;
        EXPECT_THAT(places, Each(Eq("f, " + path + ":1")));
    }
}

} // namespace
