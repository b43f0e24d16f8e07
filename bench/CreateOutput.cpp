// The smallest tool that stands where a compiler or a linker stands: creates the file behind -o and that of
// -M, empty, or with the contents of the file of the same name and ".in" where there is one. What stands
// behind -MF, a list of headers for those who read one, is a copy of its ".in" too.
//
// With `--each FILE` it runs the commands of a file one by one, in the plainest way that there is: words end
// with a zero byte, and an empty word ends a command.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/sendfile.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

bool create(const std::string& path) {
    const int output = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const int model = ::open((path + ".in").c_str(), O_RDONLY | O_CLOEXEC);
    while (model >= 0 && ::sendfile(output, model, nullptr, 1 << 20) > 0) {
    }
    if (model >= 0)
        ::close(model);
    return output >= 0 && ::close(output) == 0;
}

int createAll(int count, char** words) {
    for (int i = 1; i < count; ++i) {
        const bool isNamedNext = std::strcmp(words[i], "-o") == 0 || std::strcmp(words[i], "-MF") == 0;
        if (isNamedNext && i + 1 < count ? !create(words[++i])
                                         : std::strncmp(words[i], "-M", 2) == 0 && !create(words[i] + 2))
            return 1;
    }
    return 0;
}

bool run(std::vector<char*>& words) {
    words.push_back(nullptr);
    pid_t child = 0;
    int status = 1;
    return ::posix_spawn(&child, words[0], nullptr, nullptr, words.data(), environ) == 0 &&
           ::waitpid(child, &status, 0) == child && status == 0;
}

int each(const char* path) {
    std::string text;
    char buffer[65'536];
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    for (ssize_t got; (got = ::read(file, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(got));
    ::close(file);
    std::vector<char*> words;
    for (char* word = text.data(); word < text.data() + text.size(); word += std::strlen(word) + 1) {
        if (*word) {
            words.push_back(word);
        } else {
            if (!run(words))
                return 1;
            words.clear();
        }
    }
    return 0;
}

} // namespace

int main(int count, char** words) {
    return count == 3 && std::strcmp(words[1], "--each") == 0 ? each(words[2]) : createAll(count, words);
}
