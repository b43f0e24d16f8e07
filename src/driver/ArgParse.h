#pragma once

#include <QString>
#include <cstring>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class Report;

/// A table-driven parser of argument words. A derived class fills the table and takes the words that are no
/// option. Words may stand in indirect files, named "@file". Knows nothing of what the options mean.
class ArgParse {
public:
    /// Errors go to the process's report as it is at this moment.
    ArgParse();
    virtual ~ArgParse() = default;
    ArgParse(const ArgParse&) = delete;
    ArgParse& operator=(const ArgParse&) = delete;

    /// Handles the words in turn. An error is reported and does not stop the walk, but for a missing
    /// argument.
    void parse(int argc, const char* const* argv);
    /// Handles the words of each line of a file.
    void parseArgsFromIndirectFile(const std::string& name);
    /// Splits a line into words and returns their count. A line with an unterminated string or with more than
    /// `maximumWords` is reported and gives none. An empty `fileName` stands for the command line itself.
    int argifyLine(const std::string& fileName, int lineNumber, std::string_view line,
                   std::vector<std::string>& words);

    static constexpr int maximumIndirectDepth = 100;  ///< indirect files open at once
    static constexpr int maximumIndirectFiles = 1000; ///< all in all, as files may name each other twice
    static constexpr size_t maximumLine = 1023;       ///< bytes; what is longer counts as several lines
    static constexpr size_t maximumWords = 256;

protected:
    using Handler = void (ArgParse::*)(const char* option, const QString& argument);

    enum Kind {
        Alone,    ///< the option stands alone
        NextWord, ///< the next word is its argument
        Joined    ///< the rest of the word is its argument
    };

    struct Option {
        Kind kind = Alone;
        bool isHandler = false; ///< call `handler`; otherwise set the targets that are there
        Handler handler = nullptr;
        QString* stringTarget = nullptr;
        bool* flagTarget = nullptr;
    };

    /// Of two options with one the beginning of the other, the longer comes first.
    struct Cstring_greater {
        bool operator()(const char* a, const char* b) const { return std::strcmp(a, b) > 0; }
    };

    virtual void onArgument(const QString& text) = 0;
    /// Counts an error and writes the report's prefix. The caller finishes the line.
    virtual std::ostream& error();

    std::map<const char*, Option, Cstring_greater> options; ///< the keys are not copied

private:
    using OptionEntry = std::map<const char*, Option, Cstring_greater>::value_type;

    const OptionEntry* findOption(const char* word) const;
    void act(const OptionEntry& entry, const char* argument);

    int m_indirectDepth = 0;
    int m_indirectFiles = 0;
    Report* m_report;
};
