// The words of a command line in their order: those of settings, from their table, and the others around
// them.

#include "build/CommandWords.h"

#include "build/LinkPlacement.h"
#include "build/SOBFBuildSystem.h"
#include "macros/MacroSystem.h"
#include "project/ProjectSystem.h"
#include "properties/SettingTable.h"

namespace {

using namespace SettingTable;
using SettingWords = Placed<Words>;

/// Words of a setting, or an operation that appends words of no setting.
struct CommandRow : SettingWords {
    bool (CommandWords::*append)() = nullptr;
};

constexpr CommandRow row(unsigned steps, int position, bool (CommandWords::*append)()) {
    return {{{steps, position}}, append};
}
constexpr CommandRow row(unsigned steps, int position, const char* fixedWord) {
    return {{{steps, position, word(fixedWord)}}};
}

constexpr CommandRow frame[] = {
    row(sources | Preprocess | Link | Archive, 10, &CommandWords::appendTool),
    row(Preprocess, 10, "-E"),
    row(Archive, 10, "-c"),
    row(Archive, 10, &CommandWords::appendOutput),
    row(Link | Archive, 10, &CommandWords::appendInputs),
    row(Link, 470, &CommandWords::appendPlacement),
    row(sources, 800, &CommandWords::appendSource),
    row(sources | Link, 800, "-o"),
    row(sources | Link, 800, &CommandWords::appendOutput),
    row(sources | Link, behindOutput, &CommandWords::appendBuildOptions),
    row(Preprocess, behindOutput, &CommandWords::appendPreprocessorOptions),
    row(Preprocess, behindOutput, &CommandWords::appendSource),
    row(Preprocess, behindOutput, "-o"),
    row(Preprocess, behindOutput, &CommandWords::appendOutput),
};

constexpr std::vector<CommandRow> makeCommandRows(FrontDoor door) {
    std::vector<CommandRow> made(std::begin(frame), std::end(frame));
    for (const SettingWords& each : column(rows, &Columns::words, door, {.end = behindOutput}))
        made.push_back({each});
    sortByPosition(made);
    return made;
}

constexpr std::vector<SettingWords> makeFamilyRows(FrontDoor door) {
    return column(rows, &Columns::words, door, {.from = behindOutput});
}

bool holds(const Condition& condition, Setting own, const CommandWords& command) {
    if (!condition.value)
        return true;
    const QString value = command.setting(condition.setting.value_or(own));
    return (value == QLatin1String(condition.value)) == condition.isWanted;
}

/// The words of a list, the prefix in front of each.
QStringList listOf(const SettingWords& row, const CommandWords& command) {
    const char* prefix = row.form.text;
    if (row.form.kind != Form::EntriesOfExpanded)
        return command.system.stringListSetting(prefix, command.element, row.setting, command.config,
                                                row.form.kind == Form::ExpandedEntries, false);
    QStringList list = MacroSystem::stringListFromString(command.expanded(row.setting), false);
    for (QString& entry : list)
        entry.prepend(prefix);
    return list;
}

void appendOtherThanDefault(const SettingWords& row, CommandWords& command) {
    const QString value = command.setting(row.setting).trimmed();
    if (!value.isEmpty() && value != propertyClass(row.setting).defaultValue())
        command.words.append(row.form.text + value);
}

void appendWords(const SettingWords& row, CommandWords& command) {
    if (!holds(row.condition, row.setting, command))
        return;
    switch (row.form.kind) {
    case Form::Word:
        command.words.append(row.form.text);
        break;
    case Form::Value:
        command.words.append(row.form.text + command.setting(row.setting));
        break;
    case Form::OtherThanDefault:
        appendOtherThanDefault(row, command);
        break;
    case Form::Entries:
    case Form::ExpandedEntries:
    case Form::EntriesOfExpanded:
        command.words += listOf(row, command);
        break;
    case Form::Coded:
        command.appendCoded(row.form.code);
        break;
    }
}

} // namespace

QString CommandWords::setting(Setting setting) const { return system.settingFor(element, setting, config); }

QString CommandWords::expanded(Setting setting) const {
    return system.settingForExpanded(element, setting, config);
}

bool CommandWords::compose() {
    for (const CommandRow& row : constantsFor<makeCommandRows>(projectSystem->frontDoor())) {
        if (!(row.steps & step))
            continue;
        if (!row.append)
            appendWords(row, *this);
        else if (!(this->*row.append)())
            return false;
    }
    return true;
}

void CommandWords::appendFamilyWords() {
    for (const SettingWords& row : constantsFor<makeFamilyRows>(projectSystem->frontDoor())) {
        if (row.steps & step)
            appendWords(row, *this);
    }
}

bool CommandWords::appendTool() {
    words.append(SOBFBuildSystem::toolRoot() + "/bin/" + SOBFBuildSystem::toolOf(step));
    return true;
}

bool CommandWords::appendInputs() { return words += inputs, true; }
bool CommandWords::appendSource() { return words.append(inputs.value(0)), true; }
bool CommandWords::appendOutput() { return words.append(output), true; }

bool CommandWords::appendPlacement() {
    LinkPlacement placement;
    if (!placement.load(system, element, config, *builder))
        return false;
    words += placement.words();
    return true;
}

bool CommandWords::appendBuildOptions() {
    return system.appendBuildOptions(element, config, action, words, builder);
}

bool CommandWords::appendPreprocessorOptions() {
    system.appendPreprocessorOptions(element, config, words);
    return true;
}
