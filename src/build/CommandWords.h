#pragma once

#include "build/StandardBuildSystem.h"

class SOBFBuildSystem;

/// The command line of one step in the making: the words so far, and what the rows of a command's table ask
/// for. Settings are those of the step's node.
struct CommandWords {
    SOBFBuildSystem& system;
    ProjectElement* element;
    QString config;
    StandardBuildSystem::BuildAction action;
    Builder* builder;

    QString tool;   ///< the program
    QString output; ///< as the step names it
    QStringList inputs;
    QStringList words = {};

    QString setting(Setting setting) const;
    QString expanded(Setting setting) const;
    /// A list whose text is expanded first and split then, each entry a word.
    void appendExpandedList(const char* prefix, Setting setting);
    /// A list that is split first; with `expand`, each entry is expanded then.
    void appendList(const char* prefix, Setting setting, bool expand);
    void append(const QString& word) { words.append(word); }
};

/// The row that ends the command of a step with what the processor family adds.
bool appendBuildOptions(CommandWords& command);

/// A row of a command's table: words, and when they belong to the command. Values are compared exactly.
class CommandRow {
public:
    /// Appends words; false ends the operation without a command.
    using Words = bool (*)(CommandWords&);

    // `actions` are bits by the number of the action.
    static constexpr CommandRow always(unsigned actions, Words words) {
        return {actions, Always, {}, "", nullptr, words};
    }
    static constexpr CommandRow always(unsigned actions, const char* word) {
        return {actions, Always, {}, "", word, nullptr};
    }
    static constexpr CommandRow is(unsigned actions, Setting setting, const char* value, const char* word) {
        return {actions, Is, setting, value, word, nullptr};
    }
    static constexpr CommandRow is(unsigned actions, Setting setting, const char* value, Words words) {
        return {actions, Is, setting, value, nullptr, words};
    }
    static constexpr CommandRow isNot(unsigned actions, Setting setting, const char* value,
                                      const char* word) {
        return {actions, IsNot, setting, value, word, nullptr};
    }
    static constexpr CommandRow isNot(unsigned actions, Setting setting, const char* value, Words words) {
        return {actions, IsNot, setting, value, nullptr, words};
    }

    /// Appends the words of all rows that apply. False if one ended the operation.
    static bool compose(std::span<const CommandRow> rows, CommandWords& command);

private:
    enum Test { Always, Is, IsNot };

    constexpr CommandRow(unsigned actions, Test test, Setting setting, const char* value, const char* word,
                         Words words)
        : m_actions(actions),
          m_test(test),
          m_setting(setting),
          m_value(value),
          m_word(word),
          m_words(words) {}
    bool applies(const CommandWords& command) const;

    unsigned m_actions;
    Test m_test;
    Setting m_setting;
    const char* m_value;
    const char* m_word; ///< the word; if null, m_words makes them
    Words m_words;
};
