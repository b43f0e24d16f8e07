#include "macros/Path.h"
#include "support/MemoryFiles.h"

#include <gtest/gtest.h>

TEST(Path, NormalisesByTheTextAlone) {
    const struct {
        const char* text;
        const char* normal;
    } rows[] = {
        {"", ""},
        {"a/./b", "a/b"},
        {"a//b", "a/b"},
        {"//a", "/a"},
        {"a/b/", "a/b/"},
        {"./a", "./a"},
        {"a.b/.c", "a.b/.c"},
        {"a/.", "a"},
        {"/.profile", "/.profile"},
        {"a/b/../c", "a/c"},
        {"a/b/..", "a"},
        {"/a/../b", "/b"},
        {"/a/b/../../c", "/c"},
        {"a/../b", "a/../b"},
        {"/../x", "/../x"},
        {"../../x", "../../x"},
        {"a/..b/c", "a/..b/c"},
        {"a/b../c", "a/b../c"},
        {"a/.../c", "a/.../c"},
        {"a/b/.././../c", "a/../c"},
        // A third ".." takes the one before the one before it for its parent. The walk only looks for a "/"
        // three characters back; "../../../x" would be the wanted answer.
        {"../../../x", "../x"},
        {"/../../x", "/x"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Path(row.text).osPathQString(), row.normal) << row.text;
        EXPECT_EQ(Path(row.normal).osPathQString(), row.normal) << "a second time: " << row.text;
    }
}

TEST(Path, NormalisesHostileTextsInLinearTime) {
    for (const char* piece : {"/..", "/.", "../", "a/../", "/a/b/..", "//"})
        EXPECT_LE(Path::normalised(QString(piece).repeated(500'000)).size(), 2'000'000) << piece;
}

TEST(Path, PartsOfTheText) {
    const struct {
        const char *text, *fileName, *baseName, *last, *complete, *directory;
    } rows[] = {
        {"/a/b/c.tar.gz", "c.tar.gz", "c", "gz", "tar.gz", "/a/b"},
        {"main.c", "main.c", "main", "c", "c", "."},
        {"/x", "x", "x", "", "", "/"},
        {"a/", "", "", "", "", "a"},
        {".profile", ".profile", "", "profile", "profile", "."},
    };
    for (const auto& row : rows) {
        const Path path(row.text);
        EXPECT_EQ(path.fileName(), row.fileName) << row.text;
        EXPECT_EQ(path.baseName(), row.baseName) << row.text;
        EXPECT_EQ(path.extension(false), row.last) << row.text;
        EXPECT_EQ(path.extension(true), row.complete) << row.text;
        EXPECT_EQ(path.dirPath(false), row.directory) << row.text;
    }
    EXPECT_EQ(Path("x.c").dirPath(true), currentDirectory());
    EXPECT_EQ(Path(toText("/a/../\xE9")).osPath(), "/\xE9");
}

TEST(Path, IsAValue) {
    Path path("/a");
    const Path copy = path;
    EXPECT_EQ(path, copy);
    path += "/../b";
    EXPECT_EQ(path, Path("/b"));
    EXPECT_EQ(copy, Path("/a"));
    EXPECT_LT(copy, path);
    EXPECT_EQ((copy + "b/./c").osPathQString(), "/ab/c");
    EXPECT_NE(Path("/A"), copy);
    EXPECT_TRUE(Path().isEmpty());
}

TEST(Path, AsksTheFileSystemOnceUntilItChanges) {
    MemoryFiles memory;
    memory.write("/d/a", "12345");
    const FilesInPlace inPlace(&memory);
    Path path("/d/a");
    EXPECT_EQ(path.size(), 5);
    EXPECT_TRUE(path.exists());
    EXPECT_EQ(path.lastModified().toMSecsSinceEpoch(), memory.now() / 1'000'000);
    EXPECT_EQ(memory.statuses["/d/a"], 1);
    path.setPath("/d/b");
    EXPECT_FALSE(path.exists());
    EXPECT_FALSE(path.lastModified().isValid());
}

TEST(Path, WaysBetweenPlaces) {
    const struct {
        const char *from, *to, *way; // no way: null
    } directories[] = {
        {"/a/b", "/a/c/d", "../c/d"}, {"/a/b", "/a/b", ""},  {"/a/b/c/d", "/a", "../../.."},
        {"/a", "/a/b/", "b"},         {"/x", "/y", nullptr}, {"/a/./b", "/a//b", ""},
        {"/nowhere", ".", ""},
    };
    for (const auto& row : directories) {
        QString way("left over");
        EXPECT_EQ(Path::relativeDirPath(row.from, row.to, way), row.way != nullptr) << row.to;
        EXPECT_EQ(way, row.way ? row.way : "") << row.to;
    }
    EXPECT_EQ(Path::relativeFilePath("/a/b", "main.c"), "main.c");
    EXPECT_EQ(Path::relativeFilePath("/a/b", "/a/b/f.c"), "f.c");
    EXPECT_EQ(Path::relativeFilePath("/a/b", "/a/f.c"), "../f.c");
    EXPECT_EQ(Path::relativeFilePath("/x", "/y/f.c"), "/y/f.c");
}
