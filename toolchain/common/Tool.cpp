#include "toolchain/common/Tool.h"

#include "foundation/FileAccess.h"
#include "foundation/HException.h"
#include "foundation/Text.h"

#include <cstdio>
#include <cstring>

void Tool::addWords(std::vector<ToolWord> words) {
    for (ToolWord& word : words)
        m_words.push_back(std::move(word));
}

std::vector<ToolWord> Tool::commonWords() {
    return {
        {"-V", ToolWord::Alone, nullptr, "tell what is done, and which words have no effect",
         [this](const std::string&) { verbose = true; }},
        {"-we", ToolWord::Alone, nullptr, "a warning is an error",
         [this](const std::string&) { warningsAreErrors = true; }},
        {"-w", ToolWord::Alone, nullptr, "no warnings", [this](const std::string&) { quietWarnings = true; }},
    };
}

const ToolWord* Tool::find(const std::string& word) const {
    for (const ToolWord& row : m_words) {
        const std::string_view known = row.word;
        const bool matches = row.form == ToolWord::Joined
                                 ? word.size() > known.size() && word.compare(0, known.size(), known) == 0
                                 : word == known;
        if (matches)
            return &row;
    }
    return nullptr;
}

bool Tool::parse(std::span<char* const> arguments, const std::function<void(const std::string&)>& input) {
    if (arguments.empty() || (arguments.size() == 1 && std::string_view(arguments[0]) == "-help")) {
        printWords();
        return false;
    }
    for (size_t index = 0; index < arguments.size(); ++index) {
        const std::string word = arguments[index];
        if (word.empty() || word[0] != '-') {
            input(word);
            continue;
        }
        const ToolWord* row = find(word);
        if (!row)
            throw HException("unknown word " + word);
        if (row->form == ToolWord::Next && index + 1 == arguments.size())
            throw HException("a word expected behind " + word);
        row->take(row->form == ToolWord::Next ? arguments[++index] : word.substr(std::strlen(row->word)));
    }
    return true;
}

void Tool::printWords() const {
    std::string text = std::string(m_name) + ": " + m_summary + "\n";
    for (const ToolWord& row : m_words) {
        std::string line = std::string("  ") + row.word;
        if (row.value)
            line += (row.form == ToolWord::Next ? " " : "") + std::string(row.value);
        if (line.size() < 22)
            line.resize(22, ' ');
        text += line + "  " + row.help + "\n";
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
}

namespace {

void print(FILE* stream, const std::string& text) {
    if (!stream)
        return;
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

void Tool::say(const std::string& text) const {
    if (verbose)
        print(stdout, std::string(m_name) + ": " + text + "\n");
}

void Tool::warn(const std::string& text) {
    if (warningsAreErrors)
        return error(text);
    if (!quietWarnings)
        print(messages, std::string(m_name) + ": warning: " + text + "\n");
}

void Tool::error(const std::string& text) {
    m_failed = true;
    print(messages, std::string(m_name) + ": error: " + text + "\n");
}

int runTool(Tool& tool, const std::function<bool()>& body) {
    try {
        return body() && !tool.hasFailed() ? 0 : 1;
    } catch (const HException& exception) {
        tool.error(exception.text());
        return 1;
    }
}

std::string readInput(const std::string& path) {
    const FileBytes bytes = files().read(toText(path));
    if (!bytes)
        throw HException("can't open " + path + ": " + toBytes(systemError(bytes.error)).toStdString());
    return std::string(bytes.view());
}

// Not waited for until the disk has it: what a tool writes can be made again.
void writeOutput(const std::string& path, std::string_view contents) {
    if (const int error = files().replaceUnsynced(toText(path), contents); error != 0)
        throw HException("can't write " + path + ": " + toBytes(systemError(error)).toStdString());
}
