#include "driver/Spawn.h"

#include "support/ShellTool.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

using testing::ElementsAre;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int megabytes = 10;
#else
constexpr int megabytes = 100;
#endif

class SpawnTest : public testing::Test {
protected:
    int run(const QStringList& words, const QString& directory = QString()) {
        return QTx::spawnProcess(words, true, directory, false, &out, &err, true, &startError);
    }
    int runScript(const char* script) { return run(ShellTool::words(script), tool.path()); }

    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    ShellTool tool;
    QStringList out;
    QStringList err;
    int startError = -1;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

} // namespace

TEST_F(SpawnTest, TheResultIsTheStatusAsASignedByteAndMinusOneForASignal) {
    const struct {
        const char* script;
        int result;
    } rows[] = {{"exit 0", 0},    {"exit 1", 1},      {"exit 127", 127},    {"exit 128", -128},
                {"exit 255", -1}, {"kill -9 $$", -1}, {"kill -SEGV $$", -1}};
    for (const auto& row : rows) {
        EXPECT_EQ(runScript(row.script), row.result) << row.script;
        EXPECT_EQ(startError, 0) << row.script;
    }
}

TEST_F(SpawnTest, WhatCannotBeStartedGivesMinusOneAndTheReason) {
    tool.write("not-a-program", "");
    const struct {
        QStringList words;
        int error;
    } rows[] = {{{}, ENOENT},
                {{""}, ENOENT},
                {{QString()}, ENOENT},
                {{"/no/such/program"}, ENOENT},
                {{"no-such-program"}, ENOENT},
                {{"./not-a-program"}, EACCES},
                {{"/bin/true", QString(200'000, 'x')}, E2BIG},
                {QStringList("/bin/true") + QStringList(400, QString(10'000, 'x')), E2BIG}};
    for (const auto& row : rows) {
        EXPECT_EQ(run(row.words, tool.path()), -1) << row.words.value(0).toStdString();
        EXPECT_EQ(startError, row.error) << row.words.value(0).toStdString();
    }
}

TEST_F(SpawnTest, ACommandLineNearTheLimitRunsAndItsBytesArrive) {
    // Beside the words the limit counts a pointer for each of them, and the environment.
    const QStringList words = QStringList("/usr/bin/printf") + QStringList("%s\\n") +
                              QStringList(15, QString(100'000, QChar(0xE9)));
    EXPECT_EQ(run(words), 0);
    EXPECT_EQ(out, QStringList(15, QString(100'000, QChar(0xE9))));
}

TEST_F(SpawnTest, AProgramIsSearchedForAndAScriptNeedsNoFirstLine) {
    tool.write("plain-script", "echo \"$1\"\n");
    std::filesystem::permissions(tool.pathOf("plain-script"), std::filesystem::perms::owner_all);
    EXPECT_EQ(run({"./plain-script", "a b"}, tool.path()), 0);
    EXPECT_EQ(run({"sh", "-c", "pwd"}, tool.path()), 0);
    EXPECT_THAT(out, ElementsAre(tool.path()));
}

TEST_F(SpawnTest, ADirectoryThatIsNotThereIsPassedOver) {
    const std::string here = std::filesystem::current_path();
    EXPECT_EQ(run({"/bin/pwd"}, tool.path() + "/missing"), 0);
    EXPECT_THAT(out, ElementsAre(toText(here)));
}

TEST_F(SpawnTest, WithoutBothListsNothingIsCaptured) {
    EXPECT_EQ(QTx::spawnProcess(ShellTool::words("exit 3"), true, QString(), false, &out, nullptr, true), 3);
    EXPECT_THAT(out, testing::IsEmpty());
}

TEST_F(SpawnTest, WithoutWaitingAProgramThatGoesOnGivesZero) {
    const QStringList words = ShellTool::words("exec sleep 3 >/dev/null 2>&1");
    EXPECT_EQ(QTx::spawnProcess(words, false, tool.path(), false, nullptr, nullptr, true), 0);
    EXPECT_LT(seconds(), 2.5);
}

TEST_F(SpawnTest, WithoutWaitingAProgramThatEndsAtOnceGivesItsStatus) {
    int result = 0;
    for (int tries = 0; tries < 100 && result == 0; ++tries)
        result = QTx::spawnProcess(ShellTool::words("exit 7"), false, tool.path(), false, &out, &err, true);
    EXPECT_EQ(result, 7);
}

TEST_F(SpawnTest, BothStreamsArriveWholeHoweverMuchTheyHold) {
    const std::string bytes = std::to_string(megabytes * 1'000'000);
    const std::string some = "yes 012345678901234567890123456789012345678 | head -c " + bytes;
    EXPECT_EQ(runScript((some + " >&2 & " + some + "; wait").c_str()), 0);
    const QString line = "012345678901234567890123456789012345678";
    for (const QStringList& lines : {out, err}) {
        EXPECT_EQ(lines.size(), megabytes * 1'000'000 / 40);
        EXPECT_EQ(lines.count(line), lines.size());
    }
}

TEST_F(SpawnTest, ABackgroundProcessThatHoldsThePipesIsNotWaitedFor) {
    EXPECT_EQ(runScript("sleep 20 & echo $! >pid; echo out; echo err >&2; exit 4"), 4);
    EXPECT_THAT(out, ElementsAre("out"));
    EXPECT_THAT(err, ElementsAre("err"));
    EXPECT_LT(seconds(), 10);
    EXPECT_TRUE(tool.isRunning("pid"));
    ::kill(std::stoi(tool.read("pid")), SIGKILL);
}

TEST_F(SpawnTest, ABackgroundProcessThatWritesForEverIsNotListenedToForEver) {
    EXPECT_EQ(runScript("yes & echo $! >pid; exit 0"), 0);
    EXPECT_LT(seconds(), 10);
    ::kill(std::stoi(tool.read("pid")), SIGKILL); // if its broken pipe didn't end it
}

TEST_F(SpawnTest, AToolThatClosesItsOutputEarlyLosesNothing) {
    EXPECT_EQ(runScript("echo out; exec >&-; sleep 0.2; head -c 200000 /dev/zero | tr '\\0' '\\n' >&2"), 0);
    EXPECT_THAT(out, ElementsAre("out"));
    EXPECT_EQ(err.size(), 200'000);
}

TEST_F(SpawnTest, ACaptureLeavesTheToolNoDescriptorsBesideTheStandardOnes) {
    const char* script = "ls /proc/self/fd | wc -l >count";
    EXPECT_EQ(runScript(script), 0);
    const std::string captured = tool.read("count");
    EXPECT_EQ(QTx::spawnProcess(ShellTool::words(script), true, tool.path(), false, nullptr, nullptr, true),
              0);
    EXPECT_EQ(captured, tool.read("count"));
    EXPECT_NE(captured, "");
}

TEST_F(SpawnTest, RunsLeaveNoDescriptorsBehind) {
    const auto openOnes = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    runScript("exit 0");
    const auto before = openOnes();
    for (int i = 0; i < 20; ++i)
        runScript("echo x");
    run({"/no/such/program"});
    run({});
    EXPECT_EQ(openOnes(), before);
}

// Whoever starts the process may have closed its standard streams, or told the system to forget its children.
TEST_F(SpawnTest, OddInheritancesDoNoHarm) {
    const auto inChild = [&] {
        ::close(0);
        ::close(1);
        ::close(2);
        ::signal(SIGCHLD, SIG_IGN);
        const bool isRight = runScript("echo out; echo err >&2; exit 7") == 7 && out == QStringList("out") &&
                             err == QStringList("err");
        std::exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(inChild(), testing::ExitedWithCode(0), "");
}
