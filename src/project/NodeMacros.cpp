#include "project/NodeMacros.h"

#include "macros/MacroSystem.h"
#include "project/ProjectSystem.h"

#include <algorithm>
#include <iterator>

/// A macro of the table and how a node gets its text; nothing if the node has none. A row that expands a
/// setting sees the rows in front of it only, and below them what they lie over.
struct NodeMacros::Row {
    QLatin1String name;
    std::optional<QString> (*text)(const NodeMacros& macros);

    using Text = std::optional<QString>;

    static ProjectElement* projectOf(const NodeMacros& macros) {
        return macros.m_system.projectContaining(macros.m_element);
    }
    template<typename Take>
    static Text ofProject(const NodeMacros& macros, Take take) {
        ProjectElement* project = projectOf(macros);
        return project ? Text(take(project)) : std::nullopt;
    }
    /// Something of the path of the solution's file.
    template<typename Take>
    static Text ofSolution(const NodeMacros& macros, Take take) {
        ProjectElement* solution = macros.m_system.solutionContaining(macros.m_element);
        if (!solution)
            return std::nullopt;
        solution->checkDoFileStuff();
        return Text(take(solution->path()));
    }
    template<typename Take>
    static Text ofFile(const NodeMacros& macros, Take take) {
        if (!macros.m_element->is(ProjectElement::File))
            return std::nullopt;
        macros.m_element->checkDoFileStuff();
        return Text(take(macros.m_element));
    }

    static Text projectDir(const NodeMacros& m) {
        return ofProject(m, [&m](ProjectElement* p) { return m.m_system.projectDirectoryPath(p); });
    }
    static Text projectName(const NodeMacros& m) {
        return ofProject(m, [](ProjectElement* p) { return p->getName(); });
    }
    static Text platform(const NodeMacros& m) { return m.m_system.platform(projectOf(m)).toLower(); }
    static Text solutionDir(const NodeMacros& m) {
        return ofSolution(m, [](const Path& path) { return path.dirPath(true); });
    }
    static Text solutionName(const NodeMacros& m) {
        return ofSolution(m, [](const Path& path) { return path.baseName(); });
    }
    static Text solutionFileName(const NodeMacros& m) {
        return ofSolution(m, [](const Path& path) { return path.fileName(); });
    }
    static Text solutionPath(const NodeMacros& m) {
        return ofSolution(m, [](const Path& path) { return Path::absolute(path.filePath()); });
    }
    static Text solutionExt(const NodeMacros& m) {
        return ofSolution(m, [](const Path& path) { return path.extension(true); });
    }
    static Text inputDir(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return file->path().dirPath(false); });
    }
    static Text inputName(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return file->path().baseName(); });
    }
    static Text inputFileName(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return file->path().fileName(); });
    }
    static Text inputExt(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return file->path().extension(true); });
    }
    static Text inputPath(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return Path::absolute(file->path().filePath()); });
    }
    static Text relInputPath(const NodeMacros& m) {
        return ofFile(m, [](ProjectElement* file) { return file->relativeName(); });
    }
    static QString orHere(const QString& directory) { return directory.isEmpty() ? "." : directory; }
    static Text intDir(const NodeMacros& m) {
        return orHere(m.expanded("IntDir", Setting::build_intermediate_directory));
    }
    static Text rootOutDir(const NodeMacros& m) {
        return m.expanded("RootOutDir", Setting::build_root_output_directory);
    }
    static Text outDir(const NodeMacros& m) {
        return orHere(m.expanded("OutDir", Setting::build_output_directory));
    }
    static Text rootRelativeOutDir(const NodeMacros& m) {
        const QString root = *rootOutDir(m);
        QString way;
        if (root.isEmpty() || !Path::relativeDirPath(*outDir(m), root, way))
            return std::nullopt;
        return way;
    }
    static Text libExt(const NodeMacros& m) {
        if (!m.m_element->is(ProjectElement::Project))
            return std::nullopt;
        const QString variant = m.m_system.libraryVariant(m.m_element, m.m_configName);
        return variant.isNull() ? std::nullopt : Text(variant);
    }

    static const Row rows[];
    static const Row* end();
    template<typename Name>
    static const Row* find(Name wanted) {
        return std::find_if(rows, end(), [&](const Row& row) { return row.name == wanted; });
    }
};

const NodeMacros::Row NodeMacros::Row::rows[] = {
    {QLatin1String("ProjectNodeName"), [](const NodeMacros& m) { return Text(m.m_element->getName()); }},
    {QLatin1String("ProjectDir"), projectDir},
    {QLatin1String("ProjectName"), projectName},
    {QLatin1String("Configuration"), [](const NodeMacros& m) { return Text(m.m_configName); }},
    {QLatin1String("Platform"), platform},
    {QLatin1String("SolutionDir"), solutionDir},
    {QLatin1String("SolutionName"), solutionName},
    {QLatin1String("SolutionFileName"), solutionFileName},
    {QLatin1String("SolutionPath"), solutionPath},
    {QLatin1String("SolutionExt"), solutionExt},
    {QLatin1String("InputDir"), inputDir},
    {QLatin1String("InputName"), inputName},
    {QLatin1String("InputFileName"), inputFileName},
    {QLatin1String("InputExt"), inputExt},
    {QLatin1String("InputPath"), inputPath},
    {QLatin1String("RelInputPath"), relInputPath},
    {QLatin1String("OBJ"), [](const NodeMacros& m) { return Text(m.m_system.objectFileExtension()); }},
    {QLatin1String("EXE"), [](const NodeMacros& m) { return Text(m.m_system.executableFileExtension()); }},
    {QLatin1String("LIB"), [](const NodeMacros& m) { return Text(m.m_system.libraryFileExtension()); }},
    {QLatin1String("PackageExt"), [](const NodeMacros&) { return Text("vkq"); }},
    {QLatin1String("IntDir"), intDir},
    {QLatin1String("RootOutDir"), rootOutDir},
    {QLatin1String("OutDir"), outDir},
    {QLatin1String("RootRelativeOutDir"), rootRelativeOutDir},
    {QLatin1String("LibExt"), libExt},
};

const NodeMacros::Row* NodeMacros::Row::end() { return std::end(rows); }

/// The macros in front of a row.
class NodeMacros::Before : public MacroScope {
public:
    Before(const NodeMacros& macros, const Row* end) : m_macros(macros), m_end(end) {}
    std::optional<QString> value(const QString& name) const override {
        return m_macros.valueBefore(m_end, name);
    }

private:
    const NodeMacros& m_macros;
    const Row* m_end;
};

NodeMacros::NodeMacros(const ProjectSystem& system, ProjectElement* element, const QString& configName)
    : m_system(system), m_element(element), m_configName(configName) {}

std::optional<QString> NodeMacros::value(const QString& name) const { return valueBefore(Row::end(), name); }

std::optional<QString> NodeMacros::valueBefore(const Row* end, const QString& name) const {
    if (const Row* row = Row::find(QStringView(name)); row < end) {
        if (const auto text = row->text(*this))
            return text;
    }
    return MapScope(underlying()).value(name);
}

const MacroMap& NodeMacros::underlying() const {
    if (!m_underlying) {
        const QString entries = m_system.settingFor(m_element, Setting::macros, m_configName);
        const MacroMap macros =
            MacroSystem::macrosFromStringList(MacroSystem::stringListFromString(entries, false));
        m_underlying = MacroSystem::overwriteMacros(macroSystem.globalMacros(true), macros);
    }
    return *m_underlying;
}

QString NodeMacros::expanded(const char* before, Setting setting) const {
    return MacroSystem::replaceMacros(Before(*this, Row::find(QLatin1String(before))),
                                      m_system.settingFor(m_element, setting, m_configName));
}

MacroMap NodeMacros::map() const {
    MacroMap all = underlying();
    for (const Row* row = Row::rows; row != Row::end(); ++row) {
        if (const auto text = row->text(*this))
            all.insert(row->name, *text);
    }
    return all;
}
