#pragma once

#include <cstdio>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A word of a tool's command line.
struct ToolWord {
    enum Form {
        Alone,  ///< the word itself
        Joined, ///< the word and its value in one
        Next,   ///< the value is the next word
    };
    const char* word;
    Form form;
    const char* value; ///< what the value is called in the list of words; null if there is none
    const char* help;
    std::function<void(const std::string& value)> take;
};

/// One run of a tool: its words, what it says, and how it ends.
class Tool {
public:
    /// `name` stands before whatever the tool says, `summary` in its list of words.
    Tool(const char* name, const char* summary) : m_name(name), m_summary(summary) {}

    /// Words are tried in this order, so a longer one stands before its beginning.
    void addWords(std::vector<ToolWord> words);
    /// Takes the words of the command line; what begins with no "-" goes to `input`. With no words at all, or
    /// the one word "-help", the list of words is printed and the result is false. Throws HException for a
    /// word that is not in the table.
    bool parse(std::span<char* const> arguments, const std::function<void(const std::string&)>& input);

    /// A line on the standard output, if "-V" was among the words.
    void say(const std::string& text) const;
    /// A line on the error stream, unless "-w" was among the words. With "-we" the tool fails.
    void warn(const std::string& text);
    /// A line on the error stream; the tool goes on, to find more, and fails.
    void error(const std::string& text);
    /// Whether an error was told, or a warning that counts as one.
    bool hasFailed() const { return m_failed; }

    FILE* messages = stderr; ///< where warnings and errors go; null: nowhere
    bool verbose = false;
    bool quietWarnings = false;
    bool warningsAreErrors = false;

    /// The words -V, -w and -we.
    std::vector<ToolWord> commonWords();

private:
    void printWords() const;
    const ToolWord* find(const std::string& word) const;

    const char* m_name;
    const char* m_summary;
    std::vector<ToolWord> m_words;
    bool m_failed = false;
};

/// Runs a tool's body and turns what it throws into a message and the exit status 1. The body returns whether
/// all went well.
int runTool(Tool& tool, const std::function<bool()>& body);

/// The whole file. Throws HException, "can't open FILE: reason".
std::string readInput(const std::string& path);
/// Puts `contents` in the place of the file: whoever looks finds the old file or the new one, whole. Throws
/// HException, "can't write FILE: reason".
void writeOutput(const std::string& path, std::string_view contents);
