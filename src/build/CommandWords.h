#pragma once

#include "build/StandardBuildSystem.h"
#include "properties/SettingColumns.h"

class SOBFBuildSystem;

/// The command line of one step in the making. Settings are those of the step's node.
struct CommandWords {
    SOBFBuildSystem& system;
    ProjectElement* element;
    QString config;
    StandardBuildSystem::BuildAction action;
    unsigned step; ///< the same for the table of settings, which knows preprocessing too
    Builder* builder;

    QString output = {}; ///< as the step names it
    QStringList inputs = {};
    QStringList words = {};

    QString setting(Setting setting) const;
    QString expanded(Setting setting) const;

    /// Appends the whole command. False, with the error reported, if no command is to run.
    bool compose();
    /// Appends the words of the processor family.
    void appendFamilyWords();
    /// Appends what a setting gives that its row can't say without code.
    void appendCoded(SettingTable::Code code);

    // Words of no setting. False ends the operation without a command.
    bool appendTool();
    bool appendInputs();
    bool appendSource();
    bool appendOutput();
    /// Where the sections go, since the linker reads no file that says it.
    bool appendPlacement();
    /// What the processor family adds.
    bool appendBuildOptions();
    bool appendPreprocessorOptions();
};
