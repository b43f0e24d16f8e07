#include "driver/OstmakeBuilder.h"

#include "build/CommandHost.h"
#include "driver/ProcessExit.h"
#include "foundation/HException.h"
#include "support/ShellTool.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <pty.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

/// An engine whose only built-in command is "builtin", which fails with the text of its second word.
class FakeHost : public CommandHost {
public:
    bool builtinCommand(const QString& directory, QStringList& command, QString& errorText) override {
        seen.append((directory.isNull() ? "null" : directory) + ":" + command.join(u','));
        if (command.value(0) == "short")
            command[0] = "/bin/echo";
        if (command.value(0) != "builtin")
            return false;
        errorText = command.value(1);
        whileBuiltin();
        return true;
    }
    void commandFailed() override { hasFailed = true; }

    QStringList seen;
    bool hasFailed = false;
    std::function<void()> whileBuiltin = [] {};
};

class OstmakeBuilderTest : public testing::Test {
protected:
    void useBuilder(bool echo, bool show) {
        builder = std::make_unique<OstmakeBuilder>(host, console, echo, show);
    }

    /// The status with which the process would end; 0 if it goes on.
    int doit(const QStringList& words) {
        builder->setCommand(words);
        try {
            builder->doit();
            return 0;
        } catch (const ProcessExit& exit) {
            return exit.status;
        }
    }

    /// What was printed since the last call.
    std::string printed() {
        std::string text(static_cast<size_t>(::lseek(descriptor, 0, SEEK_END)), ' ');
        text.resize(
            static_cast<size_t>(std::max<ssize_t>(::pread(descriptor, text.data(), text.size(), 0), 0)));
        EXPECT_EQ(::ftruncate(descriptor, 0), 0);
        ::lseek(descriptor, 0, SEEK_SET);
        return text;
    }

    /// Runs a script in the directory as a command with the outputs "new.o" and "old.o", the second of which
    /// is there before.
    void runInterrupted(const char* script) {
        tool.write("old.o", "old");
        builder->setDirectory(tool.path());
        builder->setOutputFiles({"new.o", tool.path() + "/old.o"});
        doit(ShellTool::words(script));
        std::exit(0);
    }

    void TearDown() override { ::close(descriptor); }

    ShellTool tool;
    FakeHost host;
    int descriptor = ::memfd_create("console", MFD_CLOEXEC);
    Console console{descriptor};
    std::unique_ptr<OstmakeBuilder> builder = std::make_unique<OstmakeBuilder>(host, console, false, false);
};

} // namespace

TEST_F(OstmakeBuilderTest, GroupsIndentByTwoFromTheOutermostOn) {
    useBuilder(true, true);
    builder->message("before");
    builder->beginGroup(nullptr, "outer", 0);
    builder->beginGroup(nullptr, "inner", 7);
    doit({"a b", "c", "", "\"d\""});
    builder->endGroup(nullptr);
    builder->error("error");
    builder->endGroup(nullptr);
    builder->endGroup(nullptr); // one too many
    builder->note("note");
    builder->success("");
    EXPECT_EQ(printed(), "before\n  outer\n    inner\n    a b c  \"d\"\n  error\nnote\n\n");
    EXPECT_EQ(host.seen, QStringList());
}

TEST_F(OstmakeBuilderTest, AConsoleLineKeepsPrintableCharactersOnlyAndAToolsLineAllBytes) {
    builder->note(QString::fromUtf16(u"a\tb\nc\xE9\u263A\u0141~\x7F."));
    EXPECT_EQ(printed(), "abc~.\n");
    builder->beginGroup(nullptr, "g", 0);
    EXPECT_EQ(doit({"/usr/bin/printf", "\\ta\\351\\n\\nlast\\rX2"}), 0);
    EXPECT_EQ(printed(), "  g\n\ta\xE9\n\nlast\n");
}

TEST_F(OstmakeBuilderTest, TheErrorStreamComesFirst) {
    EXPECT_EQ(doit(ShellTool::words("echo 1; echo 2 >&2; echo 3; echo 4 >&2")), 0);
    EXPECT_EQ(printed(), "2\n4\n1\n3\n");
}

TEST_F(OstmakeBuilderTest, TheEndOfACommandDecidesWhatIsPrintedAndWhetherTheProcessGoesOn) {
    const struct {
        QStringList words;
        const char* printed;
        bool hasFailed;
        int status;
    } rows[] = {
        {{"builtin"}, "", false, 0},
        {{"builtin", "it failed"}, "it failed\n", true, 0},
        {{"short", "x", "y z"}, "x y z\n", false, 0},
        {ShellTool::words("echo x; exit 0"), "x\n", false, 0},
        {ShellTool::words("echo x; exit 1"), "x\n", true, 1},
        {ShellTool::words("exit 254"), "", true, 1},
        {ShellTool::words("echo x; exit 255"), "x\ncan't execute command \"/bin/sh\"\n", true, 1},
        {ShellTool::words("echo x; kill -9 $$"), "x\ncan't execute command \"/bin/sh\"\n", true, 1},
        {{"no such program"}, "can't execute command \"no such program\"\n", true, 1},
        {{}, "can't execute command \"\"\n", true, 1},
        {{"true", QString(200'000, 'x')},
         "the command line of \"true\" is too long for the system: 2 words, 200006 bytes, the longest word "
         "200000 "
         "bytes\ncan't execute command \"true\"\n",
         true,
         1},
    };
    for (const auto& row : rows) {
        host.hasFailed = false;
        EXPECT_EQ(doit(row.words), row.status) << row.printed;
        EXPECT_EQ(printed(), row.printed);
        EXPECT_EQ(host.hasFailed, row.hasFailed) << row.printed;
    }
}

TEST_F(OstmakeBuilderTest, TheDirectoryIsThatOfTheCommandAndInitForgetsIt) {
    builder->setDirectory(tool.path());
    EXPECT_EQ(doit({"builtin"}), 0);
    EXPECT_EQ(doit({"pwd"}), 0);
    builder->init();
    EXPECT_EQ(doit({"builtin"}), 0);
    EXPECT_EQ(host.seen, QStringList({tool.path() + ":builtin", tool.path() + ":pwd", "null:builtin"}));
    EXPECT_EQ(printed(), tool.directory().bytes() + "\n");
}

TEST_F(OstmakeBuilderTest, DirectoriesOfOutputsAreMadeEvenIfNothingIsCarriedOut) {
    useBuilder(true, true);
    builder->setOutputFiles({tool.path() + "/a/b/out.o", tool.path() + "/c/out.o"});
    builder->setTemporaryFiles({tool.path() + "/d/out.tmp"});
    EXPECT_EQ(doit({"builtin", "fails"}), 0);
    EXPECT_TRUE(tool.has("a/b") && tool.has("c") && tool.has("d"));
    EXPECT_EQ(printed(), "builtin fails\n");
    EXPECT_FALSE(host.hasFailed);
}

TEST_F(OstmakeBuilderTest, AFailingToolLeavesWhatItWrote) {
    builder->setDirectory(tool.path());
    builder->setOutputFiles({tool.path() + "/new.o"});
    EXPECT_EQ(doit(ShellTool::words("echo half >new.o; exit 1")), 1);
    EXPECT_TRUE(tool.has("new.o"));
}

TEST_F(OstmakeBuilderTest, AConsoleThatTakesNothingIsAnErrorWithItsReason) {
    const auto failure = [](int to) {
        try {
            Console(to).print("x");
        } catch (const HException& thrown) {
            return thrown.text();
        }
        return std::string("printed");
    };
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    EXPECT_EQ(failure(ends[1]), "can't write to the standard output: Broken pipe");
    ::close(ends[1]);
    EXPECT_EQ(failure(ends[1]), "can't write to the standard output: Bad file descriptor");
    const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(failure(full), "can't write to the standard output: No space left on device");
    ::close(full);
}

TEST_F(OstmakeBuilderTest, ANonBlockingConsoleTakesAll) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_NONBLOCK), 0);
    size_t received = 0;
    std::thread reader([&] {
        char buffer[4096];
        for (ssize_t got = -1; got != 0; got = ::read(ends[0], buffer, sizeof buffer))
            received += got > 0 ? static_cast<size_t>(got) : 0;
    });
    Console(ends[1]).print(QByteArray(1'000'000, 'x'));
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(received, 1'000'000U);
}

// The script is the child of the process that stands for ostmake, and sends the signal to that alone.
TEST_F(OstmakeBuilderTest, ASignalEndsTheToolWithAllThatItStartedAndRemovesWhatItHasBegun) {
    const struct {
        const char* script;
        int signal;
    } rows[] = {
        {"sleep 100 & echo $! >pid; echo half >new.o; kill -TERM $PPID; wait", SIGTERM},
        {"(sleep 100 & echo $! >pid; wait) & until [ -s pid ]; do sleep 0.05; done; echo half >new.o; kill "
         "-HUP $PPID; wait",
         SIGHUP},
        {"trap 'exit 0' INT; echo $$ >pid; echo half >new.o; kill -INT $PPID; while :; do sleep 0.05; done",
         SIGINT},
        {"trap '' QUIT; echo $$ >pid; echo half >new.o; kill -QUIT $PPID; while :; do sleep 0.1; done",
         SIGQUIT},
        {"echo $$ >pid; echo half >new.o; kill -TERM $PPID; exit 0", SIGTERM},
    };
    for (const auto& row : rows) {
        tool.write("pid", "");
        EXPECT_EXIT(runInterrupted(row.script), testing::KilledBySignal(row.signal), "") << row.script;
        EXPECT_NE(tool.read("pid"), "") << row.script;
        EXPECT_FALSE(tool.isRunning("pid")) << row.script;
        EXPECT_FALSE(tool.has("new.o")) << row.script;
        EXPECT_EQ(tool.read("old.o"), "old") << row.script;
        EXPECT_EQ(printed(), "interrupted, removed \"" + tool.pathOf("new.o") + "\"\n");
    }
}

TEST_F(OstmakeBuilderTest, AnOutputThatTheInterruptedToolHasTouchedIsRemovedThoughItWasThereBefore) {
    EXPECT_EXIT(runInterrupted("echo; echo new >old.o; kill -INT $PPID; sleep 100"),
                testing::KilledBySignal(SIGINT), "");
    EXPECT_FALSE(tool.has("old.o"));
    EXPECT_EQ(printed(), "\ninterrupted, removed \"" + tool.pathOf("old.o") + "\"\n");
}

// The terminal sends the signal to its foreground processes itself; the second script has left those.
TEST_F(OstmakeBuilderTest, CtrlCAtTheTerminalEndsTheToolAsWell) {
    for (const char* script :
         {"trap 'echo got >got; exit 0' INT; echo half >new.o; while :; do sleep 0.05; done",
          "setsid sh -c \"trap 'echo got >got; exit 0' INT; echo half >new.o; while :; do sleep 0.05; "
          "done\""}) {
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0)
            runInterrupted(script);
        while (!tool.has("new.o"))
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        EXPECT_EQ(::write(terminal, "\x03", 1), 1);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << script;
        EXPECT_EQ(tool.read("got"), "got\n") << script;
        EXPECT_FALSE(tool.has("new.o")) << script;
        ::close(terminal);
        std::filesystem::remove(tool.pathOf("got"));
    }
}

TEST_F(OstmakeBuilderTest, SignalsIgnoredFromTheStartStayIgnoredForTheToolToo) {
    const auto inChild = [&] {
        ::signal(SIGHUP, SIG_IGN);
        runInterrupted("echo whole >new.o; kill -HUP $PPID; kill -HUP $$; exit 0");
    };
    EXPECT_EXIT(inChild(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(tool.read("new.o"), "whole\n");
}

TEST_F(OstmakeBuilderTest, ABuiltInCommandIsFinishedBeforeTheSignalEndsTheProcess) {
    host.whileBuiltin = [&] {
        ::raise(SIGTERM);
        tool.write("copy", "whole");
    };
    EXPECT_EXIT(doit({"builtin"}), testing::KilledBySignal(SIGTERM), "");
    EXPECT_EQ(tool.read("copy"), "whole");
}
