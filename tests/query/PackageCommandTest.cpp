#include "build/Archive2.h"
#include "build/PackageFile.h"
#include "foundation/FileAccess.h"
#include "query/Command.h"
#include "query/PackageExtraction.h"
#include "support/TemporaryDirectory.h"

#include <deque>
#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>

namespace fs = std::filesystem;
using testing::HasSubstr;
using namespace std::string_literals;

namespace {

class PackageCommand : public testing::Test {
protected:
    PackageCommand() { fs::create_directory(outside()); }

    TemporaryDirectory directory;
    Archive2 archive;
    std::deque<std::string> kept; ///< a container takes no data twice
    std::string out;
    std::string err;

    QString package() const { return directory.path() + "/p.vkq"; }
    std::string target() const { return directory.bytes() + "/out"; }
    std::string outside() const { return directory.bytes() + "/outside"; }
    void add(const char* name, std::string_view data, quint32 time = 0) {
        const std::string& own = kept.emplace_back(data);
        archive.addMember("", own, name, 0, static_cast<quint32>(own.size()), 1, time);
    }
    /// The container in package form, after `change` has had its way with it.
    void store(void (*change)(QByteArray&) = nullptr) {
        QByteArray image;
        ASSERT_EQ(archive.write("", image), Archive2::Ok);
        if (change)
            change(image);
        ASSERT_TRUE(QTx::compressFile(image, package()));
    }
    int run(const QStringList& words) {
        std::ostringstream outStream;
        std::ostringstream errStream;
        const int status =
            ostquery(QStringList{"ostquery", "package", package()} + words, {outStream, errStream});
        out = outStream.str();
        err = errStream.str();
        return status;
    }
    int extract() { return run({"--extract", toText(target())}); }
    /// "missing" if there is no such file.
    static std::string contents(const std::string& path) {
        const FileBytes bytes = files().read(toText(path));
        return bytes ? std::string(bytes.view()) : "missing";
    }
};

} // namespace

TEST_F(PackageCommand, ListsInTheOrderOfThePackage) {
    add("lib/b", "12345", 1'577'836'800);
    add("a\x1b[2J", "");
    store();
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(out, "         5  2020-01-01T00:00:00Z  lib/b\n"
                   "         0  -                     a\\x1B[2J\n");
    EXPECT_EQ(run({"--json"}), 0);
    EXPECT_THAT(out, HasSubstr("\"time\": \"2020-01-01T00:00:00Z\""));
    EXPECT_THAT(out, HasSubstr("\"time\": null"));
}

TEST_F(PackageCommand, ExtractsOverWhatIsThere) {
    add("d/e/f", "new");
    add("g", "");
    store();
    fs::create_directories(target() + "/d/e");
    ASSERT_EQ(files().replace(toText(target() + "/d/e/f"), "old and longer"), 0);
    EXPECT_EQ(extract(), 0) << err;
    EXPECT_EQ(contents(target() + "/d/e/f"), "new");
    EXPECT_EQ(contents(target() + "/g"), "");
}

TEST_F(PackageCommand, ExtractsUnderTheRootAndNotUnderAFile) {
    add((outside().substr(1) + "/h").c_str(), "new");
    store();
    EXPECT_EQ(run({"--extract", "/"}), 0) << err;
    EXPECT_EQ(contents(outside() + "/h"), "new");
    EXPECT_EQ(run({"--extract", package() + "/d"}), 1);
    EXPECT_EQ(err, "ostquery: can't make the directory " + directory.bytes() + "/p.vkq/d\n");
}

TEST(PackageExtraction, NamesThatLeadOutOfTheDirectoryAreRefused) {
    const struct {
        std::string name;
        const char* objection; ///< null for a name that is safe
    } rows[] = {
        {"a", nullptr},
        {"a/b.c/...", nullptr},
        {"..a/b..", nullptr},
        {"1:2", nullptr},
        {"\xE9", nullptr},
        {"", "there is no name"},
        {"/etc/passwd", "the name is absolute"},
        {"//a", "the name is absolute"},
        {"..", "a part of the name is \"..\""},
        {"../a", "a part of the name is \"..\""},
        {"a/../../b", "a part of the name is \"..\""},
        {"a/..", "a part of the name is \"..\""},
        {".", "a part of the name is \".\""},
        {"./a", "a part of the name is \".\""},
        {"a//b", "a part of the name is empty"},
        {"a/", "a part of the name is empty"},
        {"c:a", "the name begins with a drive"},
        {"C:/a", "the name begins with a drive"},
        {"a\\..\\b", "there is a \"\\\" in the name"},
        {"a\nb", "there is a control character in the name"},
        {"\x7F", "there is a control character in the name"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(PackageExtraction::objection(QByteArray::fromStdString(row.name)), QString(row.objection))
            << row.name;
}

TEST_F(PackageCommand, ARefusedMemberDoesNotKeepTheOthersBack) {
    add("../outside/a", "evil");
    add("b", "good");
    store();
    EXPECT_EQ(extract(), 1);
    EXPECT_EQ(err, "ostquery: " + directory.bytes() +
                       "/p.vkq: \"../outside/a\" not extracted: a part of the name is \"..\"\n");
    EXPECT_EQ(out, "         4  -                     b\n");
    EXPECT_EQ(contents(outside() + "/a"), "missing");
    EXPECT_EQ(contents(target() + "/b"), "good");
    EXPECT_EQ(run({"--extract", toText(target()), "--json"}), 1);
    EXPECT_THAT(out, HasSubstr("\"extracted\": false"));
}

TEST_F(PackageCommand, NothingIsWrittenOverALink) {
    ASSERT_EQ(files().replace(toText(outside() + "/file"), "mine"), 0);
    fs::create_directory(target());
    fs::create_directory_symlink(outside(), target() + "/d");
    fs::create_symlink(outside() + "/file", target() + "/file");
    fs::create_symlink(outside() + "/none", target() + "/dangling");
    fs::create_directory_symlink(outside() + "/none", target() + "/hanging");
    fs::create_hard_link(outside() + "/file", target() + "/same");
    for (const char* name : {"d/new", "file", "dangling", "hanging/a", "same"})
        add(name, "evil");
    store();
    EXPECT_EQ(extract(), 1);
    EXPECT_EQ(contents(outside() + "/file"), "mine");
    EXPECT_EQ(contents(outside() + "/new"), "missing");
    EXPECT_EQ(contents(outside() + "/none"), "missing");
    EXPECT_EQ(out, "         4  -                     dangling\n         4  -                     same\n");
    EXPECT_FALSE(fs::is_symlink(target() + "/dangling"));
}

TEST_F(PackageCommand, WhatCannotBeWrittenIsSaid) {
    fs::create_directories(target() + "/directory");
    add("directory", "x");
    add("a", "x");
    add("a/b", "x");
    add("a", "y");
    add((std::string(300, 'n') + "/a").c_str(), "x");
    store();
    EXPECT_EQ(extract(), 1);
    EXPECT_THAT(err, HasSubstr("n/a\" not extracted: File name too long\n"));
    EXPECT_THAT(err, HasSubstr("/directory\" is there and is no file\n"));
    EXPECT_THAT(err, HasSubstr("\"a/b\" not extracted: Not a directory\n"));
    EXPECT_THAT(err, HasSubstr("\"a\" not extracted: it is there twice, and the first counts\n"));
    EXPECT_EQ(contents(target() + "/a"), "x");
}

TEST_F(PackageCommand, DamagedPackagesGiveWhatTheyHold) {
    constexpr qsizetype secondEntry = Archive2::headerSize + Archive2::entrySize;
    const struct {
        void (*change)(QByteArray&);
        const char* out;
        const char* err;
    } rows[] = {
        {[](QByteArray& image) { image[0] = 0; }, "", ": there is no container in the package\n"},
        {[](QByteArray& image) { image.truncate(secondEntry + 5); },
         "         4  -                     a  (its data are not in the package)\n",
         ": the directory ends behind 1 members\n"},
        {[](QByteArray& image) { image.chop(1); },
         "         4  -                     a\n"
         "         4  -                     b  (its data are not in the package)\n",
         ""},
    };
    add("a", "AAAA");
    add("b", "BBBB");
    for (const auto& row : rows) {
        store(row.change);
        EXPECT_EQ(run({}), *row.err ? 1 : 0);
        EXPECT_EQ(out, row.out);
        EXPECT_THAT(err, testing::EndsWith(row.err));
        EXPECT_EQ(err.empty(), !*row.err);
    }
    EXPECT_EQ(extract(), 1);
    EXPECT_THAT(err, testing::EndsWith("\"b\" not extracted: its data are not in the package\n"));
}

// Small files that unpack to terabytes are made of entries that share their data.
TEST_F(PackageCommand, MembersThatShareDataAreNotWrittenWithoutEnd) {
    const std::string data(10'000, 'x');
    for (int i = 0; i < 100; ++i)
        add(std::to_string(i).c_str(), i == 0 ? std::string_view(data) : std::string_view());
    store([](QByteArray& image) {
        for (qsizetype i = 1; i < 100; ++i)
            image.replace(Archive2::headerSize + i * Archive2::entrySize + 1024, 8,
                          image.mid(Archive2::headerSize + 1024, 8));
    });
    EXPECT_EQ(extract(), 1);
    EXPECT_THAT(err, HasSubstr("the members have more data than there are in the package"));
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 11);
}

TEST_F(PackageCommand, WhatIsNoPackageIsNamed) {
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(err, "ostquery: " + directory.bytes() + "/p.vkq: No such file or directory\n");
    ASSERT_EQ(files().replace(package(), "text"), 0);
    EXPECT_EQ(run({}), 1);
    EXPECT_THAT(err, testing::EndsWith("/p.vkq: no package, or damaged\n"));
    ASSERT_EQ(
        files().replace(package(), "\x7A\xF4\x31\xB2\1\0\0\0\xC0\0\0\0"s + std::string(4'000'000, '\0')), 0);
    EXPECT_EQ(run({}), 1);
    EXPECT_THAT(err, testing::EndsWith("/p.vkq: larger than 2,147,483,647 bytes\n"));
    EXPECT_EQ(run({"other"}), 1);
    EXPECT_EQ(err, "ostquery: package: one file expected\n");
}
