#include "foundation/Descriptor.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "support/TemporaryDirectory.h"

#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

class HostFiles : public testing::Test {
protected:
    TemporaryDirectory dir;
    QString at(const char* name) { return dir.path() + "/" + name; }
    std::string contents(const QString& path) { return std::string(files().read(path).view()); }
};

} // namespace

TEST_F(HostFiles, ReadsWhatWasReplaced) {
    EXPECT_EQ(files().replace(at("a"), std::string_view("x\0y", 3)), 0);
    EXPECT_EQ(contents(at("a")), std::string("x\0y", 3));
    EXPECT_EQ(files().read(at("a"), 1).view(), "x");
    const FileStatus status = files().status(at("a"));
    EXPECT_EQ(status.kind, FileStatus::File);
    EXPECT_EQ(status.size, 3);
    EXPECT_EQ(files().read(at("b")).error, ENOENT);
    EXPECT_EQ(files().read(dir.path()).result, FileBytes::CannotRead);
}

TEST_F(HostFiles, NamesOfAnyBytesPassUnharmed) {
    const QString name = dir.path() + toText("/\xC3\xA9\xFF\x80");
    EXPECT_EQ(files().makeDirectory(name), 0);
    EXPECT_EQ(files().replace(name + "/x", "1"), 0);
    EXPECT_THAT(files().list(dir.path()), testing::ElementsAre(toText("\xC3\xA9\xFF\x80")));
    EXPECT_EQ(::access((dir.bytes() + "/\xC3\xA9\xFF\x80/x").c_str(), F_OK), 0);
}

TEST_F(HostFiles, ReplaceKeepsPermissionsAndLinksAndLeavesNothingBehind) {
    files().replace(at("real"), "old");
    ::chmod((dir.bytes() + "/real").c_str(), 0640);
    ASSERT_EQ(::symlink("real", (dir.bytes() + "/link").c_str()), 0);
    EXPECT_EQ(files().replace(at("link"), "new"), 0);
    EXPECT_EQ(contents(at("real")), "new");
    struct stat info {};
    ::lstat((dir.bytes() + "/link").c_str(), &info);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    ::stat((dir.bytes() + "/real").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_THAT(files().list(dir.path()), testing::UnorderedElementsAre("real", "link"));
    EXPECT_EQ(files().replace(at("no/such/dir"), "x"), ENOENT);
    EXPECT_EQ(files().replace(dir.path(), "x"), EISDIR);
    EXPECT_EQ(files().list(dir.path()).size(), 2);
}

TEST_F(HostFiles, ReplacingContentsByThemselvesRenewsTheTimeAlone) {
    files().replace(at("a"), "same");
    const std::string name = dir.bytes() + "/a";
    const timespec old[2] = {{1000, 0}, {1000, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, name.c_str(), old, 0), 0);
    struct stat before {};
    ::stat(name.c_str(), &before);
    EXPECT_EQ(files().replace(at("a"), "same"), 0);
    struct stat after {};
    ::stat(name.c_str(), &after);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_GT(after.st_mtim.tv_sec, 1000);
    EXPECT_EQ(files().replace(at("a"), "diff"), 0);
    EXPECT_EQ(contents(at("a")), "diff");
}

TEST_F(HostFiles, TakesOverWhatAKilledProcessHasLeftAndNothingElse) {
    const auto place = [&](const char* name) { return dir.bytes() + "/" + name; };
    std::ofstream(place("a.ostmake-1~")) << "left by one that was killed";
    EXPECT_EQ(files().replace(at("a"), "1"), 0);
    EXPECT_EQ(contents(at("a")), "1");
    EXPECT_THAT(files().list(dir.path()), testing::ElementsAre("a"));
    std::ofstream(place("a.ostmake-1~")) << "left again";
    EXPECT_EQ(files().replace(at("a"), "1"), 0);
    EXPECT_THAT(files().list(dir.path()), testing::ElementsAre("a"));

    const Descriptor other(::open(place("a.ostmake-1~").c_str(), O_WRONLY | O_CREAT, 0600));
    ASSERT_EQ(::flock(other.number(), LOCK_EX), 0); // it is still at it
    EXPECT_EQ(files().replaceUnsynced(at("a"), "2"), 0);
    EXPECT_EQ(contents(at("a")), "2");
    EXPECT_THAT(files().list(dir.path()), testing::UnorderedElementsAre("a", "a.ostmake-1~"));
}

TEST_F(HostFiles, WritesIntoDevicesAndPipesAndBehindLongNames) {
    ASSERT_EQ(::symlink("/dev/full", (dir.bytes() + "/full").c_str()), 0);
    EXPECT_EQ(files().replaceUnsynced(at("full"), "x"), ENOSPC);
    EXPECT_EQ(files().status(at("full")).kind, FileStatus::Other);
    const QString longest(dir.path() + "/" + QString(255, 'n'));
    EXPECT_EQ(files().replace(longest, "x"), 0);
    EXPECT_EQ(contents(longest), "x");
    EXPECT_EQ(files().replace(longest + "n", "x"), ENAMETOOLONG);
    EXPECT_EQ(files().list(dir.path()).size(), 2);
}

TEST_F(HostFiles, WhatIsMadeOldestIsNobodyElsesFile) {
    files().replace(at("a"), "1");
    EXPECT_EQ(files().makeOldest(at("a")), 0);
    EXPECT_LT(files().status(at("a")).modified, 0);
    files().replace(at("source"), "2");
    ASSERT_EQ(::symlink("source", (dir.bytes() + "/link").c_str()), 0);
    EXPECT_NE(files().makeOldest(at("link")), 0);
    ASSERT_EQ(::link((dir.bytes() + "/source").c_str(), (dir.bytes() + "/name").c_str()), 0);
    EXPECT_EQ(files().makeOldest(at("name")), 0);
    EXPECT_FALSE(files().status(at("name")).exists());
    EXPECT_GT(files().status(at("source")).modified, 0);
    EXPECT_EQ(files().makeOldest(at("none")), ENOENT);
}

TEST_F(HostFiles, ReadsAPipeToItsEnd) {
    const std::string pipe = dir.bytes() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string text(300'000, 'p');
    std::thread writer([&] {
        std::unique_ptr<FILE, int (*)(FILE*)> out(std::fopen(pipe.c_str(), "wb"), &std::fclose);
        std::fwrite(text.data(), 1, text.size(), out.get());
    });
    EXPECT_EQ(contents(at("pipe")), text);
    writer.join();
}

TEST_F(HostFiles, FilesFetchedAheadAreAsTheyAreOnDisk) {
    QStringList names;
    for (int i = 0; i < 300; ++i) {
        names.append(QString::number(i));
        if (i % 7 != 3)
            files().replace(dir.path() + "/" + names.last(), "contents of " + std::to_string(i));
    }
    ASSERT_EQ(::mkfifo((dir.bytes() + "/3").c_str(), 0600), 0); // must stop nobody
    files().expect(dir.path(), names);
    for (int i = 0; i < 300; ++i) {
        const QString path = dir.path() + "/" + names[i];
        if (i == 3) {
            EXPECT_EQ(files().status(path).kind, FileStatus::Other);
        } else if (i % 7 == 3) {
            EXPECT_FALSE(files().status(path).exists());
            EXPECT_EQ(files().read(path).error, ENOENT);
        } else {
            const std::string expected = "contents of " + std::to_string(i);
            EXPECT_EQ(files().status(path).size, static_cast<qint64>(expected.size()));
            EXPECT_EQ(contents(path), expected);
        }
        if (i % 50 == 49 && (i + 1) % 7 != 3) {
            files().replace(dir.path() + "/" + QString::number(i + 1), "new");
            EXPECT_EQ(contents(dir.path() + "/" + QString::number(i + 1)), "new");
            files().replace(dir.path() + "/" + QString::number(i + 1),
                            "contents of " + std::to_string(i + 1));
        }
    }
    files().expect(dir.path(), {});
}
