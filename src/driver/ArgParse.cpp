#include "driver/ArgParse.h"

#include "driver/Report.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"

#include <algorithm>
#include <ostream>

ArgParse::ArgParse() : m_report(report) {}

std::ostream& ArgParse::error() { return m_report->error(); }

void ArgParse::parse(int argc, const char* const* argv) {
    for (int i = 0; i < argc; ++i) {
        const char* word = argv[i];
        if (const OptionEntry* entry = findOption(word)) {
            const char* argument = word + std::strlen(entry->first);
            if (entry->second.kind == NextWord) {
                if (++i == argc) {
                    error() << "expected argument for option " << entry->first << '\n';
                    return;
                }
                argument = argv[i];
            }
            act(*entry, argument);
        } else if (word[0] == '@') {
            parseArgsFromIndirectFile(word + 1);
        } else if (word[0] == '-') {
            error() << "unrecognised option " << word << '\n';
        } else {
            onArgument(toText(word));
        }
    }
}

const ArgParse::OptionEntry* ArgParse::findOption(const char* word) const {
    if (const auto exact = options.find(word); exact != options.end())
        return &*exact;
    const auto joined = std::find_if(options.begin(), options.end(), [word](const OptionEntry& entry) {
        return entry.second.kind == Joined && std::string_view(word).starts_with(entry.first);
    });
    return joined == options.end() ? nullptr : &*joined;
}

void ArgParse::act(const OptionEntry& entry, const char* argument) {
    const Option& option = entry.second;
    if (option.isHandler) {
        (this->*option.handler)(entry.first, toText(argument));
        return;
    }
    if (option.flagTarget)
        *option.flagTarget = true;
    if (option.stringTarget)
        *option.stringTarget = toText(argument);
}

void ArgParse::parseArgsFromIndirectFile(const std::string& name) {
    if (m_indirectDepth == maximumIndirectDepth || m_indirectFiles == maximumIndirectFiles) {
        error() << "too many indirect files\n";
        return;
    }
    const FileBytes file = files().read(toText(name));
    if (!file) {
        error() << "can't open indirect file " << name << ": " << systemError(file.error) << '\n';
        return;
    }
    ++m_indirectFiles;
    ++m_indirectDepth;
    std::string_view rest = file.view();
    for (int lineNumber = 1; !rest.empty(); ++lineNumber) {
        const std::string_view line = rest.substr(0, std::min(rest.find('\n'), maximumLine - 1) + 1);
        rest.remove_prefix(line.size());
        std::vector<std::string> words;
        if (line[0] == '#' || argifyLine(name, lineNumber, line, words) == 0)
            continue;
        std::vector<const char*> argv;
        for (const std::string& word : words)
            argv.push_back(word.c_str());
        parse(static_cast<int>(argv.size()), argv.data());
    }
    --m_indirectDepth;
}

int ArgParse::argifyLine(const std::string& fileName, int lineNumber, std::string_view line,
                         std::vector<std::string>& words) {
    words.clear();
    line = line.substr(0, line.find_first_of(std::string_view("\n\0", 2)));
    const auto place = [&] {
        return fileName.empty() ? std::string("command line")
                                : "indirect file " + fileName + "(" + std::to_string(lineNumber) + ")";
    };
    for (size_t at = line.find_first_not_of(' '); at < line.size(); at = line.find_first_not_of(' ', at)) {
        const bool quoted = line[at] == '"';
        const size_t start = at + (quoted ? 1 : 0);
        const size_t end = line.find(quoted ? '"' : ' ', start);
        if (quoted && end == std::string_view::npos) {
            error() << "unterminated string in " << place() << '\n';
            return 0;
        }
        if (words.size() == maximumWords) {
            error() << "more than " << maximumWords << " words in " << place() << '\n';
            return 0;
        }
        words.emplace_back(line.substr(start, end - start));
        at = std::min(end, line.size()) + (quoted ? 1 : 0);
    }
    return static_cast<int>(words.size());
}
