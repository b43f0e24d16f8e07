#include "build/SOBFBuildSystem.h"

#include "build/Builder.h"
#include "build/CommandWords.h"
#include "build/OutputNames.h"
#include "build/Words.h"
#include "macros/MacroSystem.h"
#include "macros/Path.h"
#include "macros/ReleaseConstants.h"
#include "object/ObjectFile.h"
#include "project/ProjectSystem.h"
#include "properties/EnvironmentSettings.h"

#include <algorithm>

namespace {

struct Tool {
    unsigned step;
    const char* program;
    const char* caption; ///< what stands in front of the name of what is built
};

// There is none for C++ and Forth.
constexpr Tool tools[] = {
    {SettingTable::CompileC, "qcomp", "Compiling "}, {SettingTable::CompileBasic, "qbas", "Compiling "},
    {SettingTable::Assemble, "qasm", "Assembling "}, {SettingTable::Preprocess, "qcomp", "Preprocessing "},
    {SettingTable::Link, "qlink", "Linking "},       {SettingTable::Archive, "qarc", "Archiving "},
};

const Tool* findTool(unsigned step) {
    const auto found = std::ranges::find_if(tools, [&](const Tool& tool) { return tool.step & step; });
    return found == std::end(tools) ? nullptr : found;
}

} // namespace

QString SOBFBuildSystem::toolRoot() {
    const QString text = environment->property(EnvironmentKeys::toolChainRootDirectory)->propertyValue();
    return MacroSystem::replaceMacros(macroSystem.systemMacros(), text);
}

void SOBFBuildSystem::addCommonPreprocessorDefinitions(QStringList& command) {
    command.append("-D__OSTREL_MAJOR_VERSION=" + QString::number(Get_RELEASE_MAJOR_NUMBER()));
    command.append("-D__OSTREL_MINOR_VERSION=" + QString::number(Get_RELEASE_MINOR_NUMBER()));
    command.append("-D__OSTREL_REVISION=" + QString::number(Get_RELEASE_REVISION_NUMBER()));
}

const char* SOBFBuildSystem::toolOf(unsigned step) {
    const Tool* tool = findTool(step);
    return tool ? tool->program : nullptr;
}

void SOBFBuildSystem::createCommandFor(ProjectElement* element, const QString& config, BuildAction action,
                                       const QString& output, const QString& fullOutput,
                                       const QStringList& inputs, Builder* builder, bool, bool) {
    if (!builder)
        return;
    builder->init();
    builder->setDirectory(projectSystem->projectDirectoryPath(projectSystem->projectContaining(element)));
    const Tool* tool = findTool(stepOf(action));
    if (!tool)
        return;
    CommandWords command{*this, element, config, action, tool->step, builder, output, inputs};
    if (!command.compose())
        return;
    const QString name = isSource(action) ? element->getName() : Path(output).fileName();
    builder->beginGroup(element, tool->caption + name, 0);
    builder->setOutputFiles({fullOutput});
    builder->setCommand(command.words);
    carryOut(builder);
    if (action == Link)
        runBehindLink(command, fullOutput);
    builder->endGroup(element);
}

QString SOBFBuildSystem::preprocess(ProjectElement* element, const QString& config, Builder* builder) {
    const QString directory = projectSystem->projectDirectoryPath(projectSystem->projectContaining(element));
    element->checkDoFileStuff();
    const QString input = getAbsPath(directory, element->relativeName());
    const QString result = OutputNames::directoryOf(input) + "/" + OutputNames::completeBaseName(input) +
                           "_PP." + Path(input).extension(false);
    if (!builder)
        return result;
    const Tool* tool = findTool(SettingTable::Preprocess);
    CommandWords command{*this, element, config, CompileC, tool->step, builder, result, {input}};
    command.compose();
    builder->init();
    builder->setDirectory(directory);
    builder->beginGroup(element, tool->caption + element->getName(), 0);
    builder->setCommand(command.words);
    builder->setTemporaryFiles({result});
    carryOut(builder);
    builder->endGroup(element);
    return result;
}

void SOBFBuildSystem::appendFamilyWords(ProjectElement* element, const QString& config, unsigned step,
                                        QStringList& command) {
    CommandWords words{*this, element, config, NoAction, step, nullptr};
    words.words.swap(command);
    words.appendFamilyWords();
    words.words.swap(command);
}

DependencyList SOBFBuildSystem::getObjectFileDependencies(const QString&, const QString&,
                                                          const QString& objectFile) {
    return objectFileDependencies(objectFile);
}
