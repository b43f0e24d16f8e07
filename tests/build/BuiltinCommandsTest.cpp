#include "build/BuiltinCommands.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "macros/QTx.h"
#include "support/MemoryFiles.h"
#include "support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What became of a command: the error text, "ok", or the words that are to run as a process.
std::string run(const QString& directory, QStringList words) {
    QString errorText;
    if (!BuiltinCommands::builtinCommand(directory, words, errorText))
        return "process " + toBytes(words.join(u'|')).toStdString();
    return errorText.isEmpty() ? "ok" : toBytes(errorText).toStdString();
}

class BuiltinCommandsOnDisk : public testing::Test {
protected:
    TemporaryDirectory dir;
    std::string bytes(const char* name) { return dir.bytes() + "/" + name; }
    QString at(const char* name) { return dir.path() + "/" + name; }
    void write(const char* name, std::string_view contents, mode_t mode = 0644) {
        files().replace(at(name), contents);
        ::chmod(bytes(name).c_str(), mode);
    }
    std::string contents(const char* name) {
        const FileBytes file = files().read(at(name));
        return file ? std::string(file.view()) : "missing";
    }
    struct stat look(const char* name) {
        struct stat info {};
        ::lstat(bytes(name).c_str(), &info);
        return info;
    }
    mode_t mode(const char* name) { return look(name).st_mode & 07777; }
    std::string cannotCopy(const char* from, const char* to) {
        return "cp failed: can't copy \"" + bytes(from) + "\" to \"" + bytes(to) + "\"";
    }
};

} // namespace

TEST(BuiltinCommands, AreKnownByTheExactFirstWord) {
    MemoryFiles memory;
    memory.write("/p/a", "1");
    const FilesInPlace inPlace(&memory);
    const struct {
        QStringList words;
        const char* outcome;
    } rows[] = {
        {{"cp", "a", "b"}, "ok"},
        {{"cp", "a", "/p/c", "and", "more"}, "ok"},
        {{"CP", "a", "b"}, "process CP|a|b"},
        {{"/bin/cp", "a", "b"}, "process /bin/cp|a|b"},
        {{"cp", "none", "b"}, "cp failed: can't copy \"/p/none\" to \"/p/b\""},
        {{"cp", "%2", "x%1"}, "cp failed: can't copy \"/p/%2\" to \"/p/x%1\""},
        {{"chmod", "+w", "none"}, "chmod failed: can't make \"/p/none\" writable"},
        {{"chmod", "-w", "none"}, "chmod failed: can't make \"/p/none\" writable"},
        {{"rm", "c"}, "ok"},
        {{"rm", "c"}, "rm failed: can't remove \"/p/c\" writable"},
        {{"rm", ""}, "rm failed: can't remove \"/p/\" writable"},
        {{"docgen", "none.h", "html"}, "ok"},
        // Too few words.
        {{}, "process "},
        {{"cp"}, "cp failed: a source and a destination expected"},
        {{"cp", "a"}, "cp failed: a source and a destination expected"},
        {{"chmod", "+w"}, "chmod failed: a mode and a file expected"},
        {{"docgen", "a.h"}, "docgen failed: an input file and an output directory expected"},
        {{"rm"}, "rm failed: a file expected"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run("/p", row.words), row.outcome) << row.words.join(u' ').toStdString();
    EXPECT_FALSE(memory.has("/p/b")) << "a copy that fails has removed the old target";
    EXPECT_EQ(memory.contents("/p/a"), "1");
}

TEST(BuiltinCommands, ShortNamesBecomePathsOfPrograms) {
    QTx::setApplicationPath("/usr/bin/x", 1);
    EXPECT_EQ(run("/p", {"xmldup", "a b", ""}), "process /usr/bin/xmldup|a b|");
    EXPECT_EQ(run("/p", {"hdrgen"}), "process /usr/bin/hdrgen");
}

TEST(BuiltinCommands, DocgenCountsBothPathsFromTheDirectory) {
    MemoryFiles memory;
    memory.write("/p/a.h", "/*! \\brief Runs */\nint run(void);\n");
    const FilesInPlace inPlace(&memory);
    EXPECT_EQ(run("/p", {"docgen", "./a.h", "new/html"}), "ok");
    EXPECT_TRUE(memory.contents("/p/new/html/a.htm").contains("Runs"));
    EXPECT_TRUE(memory.has("/p/new/html/run.htm"));
    EXPECT_EQ(run("/elsewhere", {"docgen", "/p/a.h", "/out"}), "ok");
    EXPECT_TRUE(memory.has("/out/run.htm"));
}

TEST(BuiltinCommands, ExportAsLinesForAShell) {
    const struct {
        QStringList words;
        bool known;
        const char* line; ///< null is null
    } rows[] = {
        {{"cp", "a b", "/c", "d"}, true, "cp -f \"a b\" \"/c\""},
        {{"rm", "a"}, true, "rm -f \"a\""},
        {{"xmldup", "a"}, true, nullptr},
        {{"hdrgen"}, true, nullptr},
        {{"chmod", "+w", "a"}, false, "before"},
        {{"cp", "a"}, false, "before"},
        {{"rm"}, false, "before"},
        {{}, false, "before"},
    };
    for (const auto& row : rows) {
        QString out = "before";
        EXPECT_EQ(BuiltinCommands::getExportableBuiltinCommand("/p", row.words, out), row.known);
        EXPECT_EQ(out, row.line);
        EXPECT_EQ(out.isNull(), row.line == nullptr);
    }
}

TEST_F(BuiltinCommandsOnDisk, CopyTakesTimesAndPermissionsOfItsSource) {
    const mode_t mask = ::umask(027);
    const std::string large(300'000, 'x');
    write("a", large, 0767);
    const timespec times[] = {{1'000'000'000, 123'456'789}, {1'100'000'000, 987'654'321}};
    ::utimensat(AT_FDCWD, bytes("a").c_str(), times, 0);
    write("b", "old", 0400);
    EXPECT_EQ(run(dir.path(), {"cp", "a", "b"}), "ok");
    ::umask(mask);
    EXPECT_EQ(mode("b"), 0740u);
    EXPECT_EQ(files().status(at("b")).modified, 1'100'000'000'987'654'321);
    EXPECT_EQ(look("b").st_atim.tv_sec, 1'000'000'000);
    EXPECT_EQ(contents("b"), large);
    EXPECT_EQ(files().list(dir.path()).size(), 2) << "no temporary file stays";
}

TEST_F(BuiltinCommandsOnDisk, CopyIntoADirectoryKeepsTheName) {
    write("a", "1");
    files().makeDirectory(at("out"));
    EXPECT_EQ(run(dir.path(), {"cp", "a", "out"}), "ok");
    EXPECT_EQ(contents("out/a"), "1");
    EXPECT_EQ(run(dir.path(), {"cp", "a", "none/b"}), cannotCopy("a", "none/b"));
    EXPECT_EQ(run(dir.path(), {"cp", "out", "b"}), cannotCopy("out", "b"));
    EXPECT_EQ(contents("b"), "missing");
    EXPECT_TRUE(QTx::copyFile(at("a"), at("x/y/b"), true));
    EXPECT_EQ(contents("x/y/b"), "1");
}

TEST_F(BuiltinCommandsOnDisk, NoWayOfNamingAFileTwiceDestroysIt) {
    write("a", "1");
    files().makeDirectory(at("sub"));
    ASSERT_EQ(::symlink("..", bytes("sub/up").c_str()), 0);
    ASSERT_EQ(::symlink("a", bytes("link").c_str()), 0);
    ASSERT_EQ(::link(bytes("a").c_str(), bytes("hard").c_str()), 0);
    for (const char* to : {"a", "./a", "sub/../a", "sub/up/a", "."}) {
        EXPECT_EQ(run(dir.path(), {"cp", "a", to}), cannotCopy("a", to));
        EXPECT_EQ(contents("a"), "1") << to;
    }
    EXPECT_EQ(run(dir.path(), {"cp", "link", "a"}), cannotCopy("link", "a"));
    EXPECT_EQ(run(dir.path(), {"cp", "link", "link"}), cannotCopy("link", "link"));
    EXPECT_EQ(contents("link"), "1");
    // A link to the source, of either kind, is replaced by a copy.
    EXPECT_EQ(run(dir.path(), {"cp", "a", "link"}), "ok");
    EXPECT_EQ(run(dir.path(), {"cp", "a", "hard"}), "ok");
    EXPECT_TRUE(S_ISREG(look("link").st_mode));
    EXPECT_EQ(look("a").st_nlink, 1u);
    EXPECT_EQ(contents("link") + contents("hard") + contents("a"), "111");
}

TEST_F(BuiltinCommandsOnDisk, CopyOfAPipeWithoutAWriterDoesNotWait) {
    ASSERT_EQ(::mkfifo(bytes("pipe").c_str(), 0600), 0);
    EXPECT_EQ(run(dir.path(), {"cp", "pipe", "b"}), "ok");
    EXPECT_EQ(contents("b"), "");
}

TEST_F(BuiltinCommandsOnDisk, ChmodTouchesOnlyTheOwnersRight) {
    const struct {
        mode_t before;
        const char* word;
        mode_t after;
    } rows[] = {{0644, "-w", 0444}, {0664, "-w", 0464}, {0666, "a=rwx", 0466},
                {0666, "+W", 0466}, {0444, "+w", 0644}, {0555, "+w", 0755},
                {0644, "+w", 0644}, {0426, "-w", 0426}, {04755, "-w", 04555}};
    for (const auto& row : rows) {
        write("a", "1", row.before);
        EXPECT_EQ(run(dir.path(), {"chmod", row.word, "a"}), "ok");
        EXPECT_EQ(mode("a"), row.after) << row.word;
    }
}

TEST_F(BuiltinCommandsOnDisk, RemoveTakesALinkAndNotItsTarget) {
    write("a", "1");
    ASSERT_EQ(::symlink("a", bytes("link").c_str()), 0);
    EXPECT_EQ(run(dir.path(), {"rm", "link"}), "ok");
    EXPECT_EQ(contents("a"), "1");
    EXPECT_EQ(run(dir.path(), {"rm", "."}), "rm failed: can't remove \"" + dir.bytes() + "/.\" writable");
}
