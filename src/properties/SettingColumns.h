#pragma once

#include "properties/Catalogue.h"

#include <optional>

/// What the columns of the table of settings, CatalogueRows.inc, are made of.
///
/// The columns `applies`, `words` and `outdates` each have an order of their own across all rows, which an
/// entry's position tells: smaller positions come first, and equal ones in the order of the rows. Positions
/// go up in tens, so that there is room for an entry between two others. An entry without a position is none.
namespace SettingTable {

/// The lists of settings, as bits.
enum List : unsigned {
    // The settings of a kind of node.
    Solution = 1U << 0,
    AnyProject = 1U << 1, ///< in front of those of its type
    Executable = 1U << 2,
    Library = 1U << 3,
    ObjectFile = 1U << 4, ///< and of a folder in a project that compiles
    Staging = 1U << 5,    ///< and of a folder in such a project
    Combining = 1U << 6,
    External = 1U << 7,
    Built = 1U << 8, ///< of a project or a folder, behind its others
    CompiledFolder = 1U << 9,
    AnyFile = 1U << 10, ///< unless it is staged
    CompiledFile = 1U << 11,
    StagedFile = 1U << 12,
    // Parts of these: what a tool, or a debugger, takes.
    CCompiler = 1U << 13,
    CCompilerBesideCpp = 1U << 14, ///< where there is C++ too
    CppCompiler = 1U << 15,
    Assembler = 1U << 16,
    Compilers = 1U << 17, ///< the assembler among them
    Linker = 1U << 18,
    Archiver = 1U << 19,
    Target = 1U << 20,
    // What the tool chain and the processor family add to these parts.
    ToolChainCCompiler = 1U << 21,
    ToolChainLinker = 1U << 22,
    ToolChainArchiver = 1U << 23,
    FamilyLinker = 1U << 24,
};

/// The kinds of steps, as bits.
enum Step : unsigned {
    CompileC = 1U << 0,
    CompileCpp = 1U << 1,
    CompileForth = 1U << 2,
    CompileBasic = 1U << 3,
    Assemble = 1U << 4,
    Preprocess = 1U << 5, ///< no step of a build
    Link = 1U << 6,
    Archive = 1U << 7,
    Stage = 1U << 8,
    Combine = 1U << 9,
};
constexpr unsigned compilers = CompileC | CompileBasic;
constexpr unsigned sources = CompileC | CompileCpp | CompileForth | CompileBasic | Assemble;

/// A place in lists of settings.
struct Place {
    unsigned lists = 0;
    int position = 0;
};

/// The steps whose output is out of date once the setting has changed. The position is that of the test: the
/// first setting that has changed is named as the reason.
struct Outdates {
    unsigned steps = 0;
    int position = 0;
};
/// Where the tests of property groups come in.
constexpr int behindGroups = 700;

/// When a setting adds words: always, or depending on the exact value of a setting, its own if none is named.
struct Condition {
    const char* value = nullptr; ///< null for always
    bool isWanted = true;        ///< whether it is this value, or any other
    std::optional<Setting> setting = {};
};
constexpr Condition when(const char* value) { return {value}; }
constexpr Condition when(Setting setting, const char* value) { return {value, true, setting}; }
constexpr Condition unless(const char* value) { return {value, false}; }

/// Words that take code, which stands in `build`.
enum Code { ReleaseDefinitions, StandardLibraries, Checksum, HeapSize, MapFile };

/// The words themselves.
struct Form {
    enum Kind { Word, Value, OtherThanDefault, Entries, ExpandedEntries, EntriesOfExpanded, Coded };
    Kind kind = Word;
    const char* text = "";
    Code code = {};
};
constexpr Form word(const char* text) { return {Form::Word, text}; }
/// The prefix and the setting's value, one word.
constexpr Form value(const char* prefix) { return {Form::Value, prefix}; }
/// The same without white space at the value's ends; none if nothing is left, or the default.
constexpr Form otherThanDefault(const char* prefix) { return {Form::OtherThanDefault, prefix}; }
/// For each entry of a list the prefix and the entry: as they are stated, expanded each, or the entries of
/// the expanded list. A "\" keeps a ";" within an entry in the last form alone.
constexpr Form entries(const char* prefix) { return {Form::Entries, prefix}; }
constexpr Form expandedEntries(const char* prefix) { return {Form::ExpandedEntries, prefix}; }
constexpr Form entriesOfExpanded(const char* prefix) { return {Form::EntriesOfExpanded, prefix}; }
constexpr Form coded(Code code) { return {Form::Coded, "", code}; }

/// What a setting adds to the command lines of steps. The position is that on the command line, and the same
/// for all steps.
struct Words {
    unsigned steps = 0;
    int position = 0;
    Form form = {};
    Condition condition = {};
};
/// Words from here on are those of the processor family: behind the output, or those of the preprocessor in
/// front of its input.
constexpr int behindOutput = 900;

/// All columns that need not be stated.
struct Columns {
    std::string_view values = {};
    int minimum = 0;
    int maximum = 0;
    std::string_view suffix = {};
    bool perConfiguration = true;
    bool readOnly = false;
    bool onlyOst = false; ///< nothing of the row exists for `ostmake`
    Place applies[3] = {};
    Words words[3] = {};
    Outdates outdates[1] = {};
};

} // namespace SettingTable
