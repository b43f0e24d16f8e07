#include "toolchain/compiler/Clang.h"

#include "foundation/Descriptor.h"
#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"

#include <cstring>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

constexpr int outputDescriptor = 1;
constexpr int dependencyDescriptor = 3;

/// The newest one first. 14 is the first that has all the words that we pass.
constexpr const char* programs[] = {"clang-19", "clang-18", "clang-17", "clang-16",
                                    "clang-15", "clang-14", "clang"};

[[noreturn]] void failWith(const std::string& what, int error) {
    throw HException(what + ": " + toBytes(systemError(error)).toStdString());
}

/// A file without a name.
Descriptor memoryFile(const std::string& contents = {}) {
    Descriptor file(::memfd_create("clang", MFD_CLOEXEC));
    if (!file.isOpen())
        failWith("no room for what clang makes", errno);
    for (size_t done = 0; done < contents.size();) {
        const ssize_t written = ::write(file.number(), contents.data() + done, contents.size() - done);
        if (written <= 0)
            failWith("no room for what clang reads", errno);
        done += static_cast<size_t>(written);
    }
    ::lseek(file.number(), 0, SEEK_SET);
    return file;
}

std::string contentsOf(const Descriptor& file) {
    struct stat info {};
    if (::fstat(file.number(), &info) != 0)
        failWith("what clang made can't be read", errno);
    std::string bytes(static_cast<size_t>(info.st_size), '\0');
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got =
            ::pread(file.number(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (got <= 0)
            failWith("what clang made can't be read", errno);
        done += static_cast<size_t>(got);
    }
    return bytes;
}

int waitFor(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            failWith("clang got lost", errno);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

std::string clangProgram() {
    const QString searched = environmentVariable("PATH");
    for (const char* program : programs)
        for (const QString& directory : searched.split(':'))
            if (const QString path = directory + "/" + program;
                ::access(toBytes(path).constData(), X_OK) == 0)
                return toBytes(path).toStdString();
    throw HException("there is no clang along PATH; clang-19 is the one to install");
}

ClangResult runClang(const std::string& program, std::vector<std::string> words, const std::string& input,
                     bool wantDependencies) {
    const Descriptor in = memoryFile(input);
    const Descriptor out = memoryFile();
    const Descriptor rule = memoryFile();
    words.insert(words.begin(), program);
    if (wantDependencies)
        words.insert(words.end(), {"-MD", "-MT", "object", "-MF",
                                   "/proc/self/fd/" + std::to_string(dependencyDescriptor)});
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.number(), 0);
    posix_spawn_file_actions_adddup2(&actions, out.number(), outputDescriptor);
    posix_spawn_file_actions_adddup2(&actions, rule.number(), dependencyDescriptor);
    pid_t child = 0;
    const int error = ::posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        failWith("can't start " + program, error);
    ClangResult result;
    result.status = waitFor(child);
    if (result.status == 0) {
        result.output = contentsOf(out);
        result.dependencies = contentsOf(rule);
    }
    return result;
}

std::vector<std::string> dependenciesOf(std::string_view rule) {
    std::vector<std::string> paths;
    std::string path;
    const auto finish = [&] {
        if (!path.empty())
            paths.push_back(std::move(path));
        path.clear();
    };
    for (size_t at = std::min(rule.find(':'), rule.size()) + 1; at < rule.size(); ++at) {
        const char next = at + 1 < rule.size() ? rule[at + 1] : '\0';
        if (rule[at] == '\\' && next == '\n')
            ++at;
        else if (rule[at] == '\\' && (next == ' ' || next == '#' || next == '\\'))
            path += rule[++at];
        else if (rule[at] == '$' && next == '$')
            path += rule[++at];
        else if (rule[at] == ' ' || rule[at] == '\n')
            finish();
        else
            path += rule[at];
    }
    finish();
    return paths;
}
