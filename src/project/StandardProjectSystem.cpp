#include "project/StandardProjectSystem.h"

#include "foundation/Text.h"
#include "project/PropertyValueGroupValue.h"
#include "properties/PropertyValueGroups.h"
#include "xml/XMLDocument.h"

#include <algorithm>
#include <iterator>

namespace {

using enum Setting;

void append(PropertyClassList& list, std::initializer_list<Setting> settings) {
    for (const Setting setting : settings)
        list.appendUnique(&propertyClass(setting));
}

constexpr const char* compiledProjects[] = {"Executable", "Library", "Object file"};

bool isCompiled(const QString& projectType) {
    return std::any_of(std::begin(compiledProjects), std::end(compiledProjects),
                       [&](const char* type) { return projectType == QLatin1String(type); });
}

} // namespace

PropertyValueList StandardProjectSystem::applicableSettingsFor(ProjectElement* element,
                                                               const QString& configName) {
    PropertyValueList values(true);
    for (const PropertyClass* propertyClass : applicableClasses(element))
        values.appendUnique(new ProjectPropertyValue(*this, propertyClass, configName, element));
    appendGroups(values, element, configName);
    return values;
}

PropertyClassList StandardProjectSystem::applicableClasses(ProjectElement* element) {
    PropertyClassList list;
    ProjectElement* project = projectContaining(element);
    const QString projectType = project ? getProjectType(project) : QString();
    switch (element->kind()) {
    case ProjectElement::Solution:
        appendSolutionProperties(list);
        break;
    case ProjectElement::Project:
        appendProjectProperties(list, projectType);
        append(list, {build_exclude_from_build, build_always_rebuild});
        break;
    case ProjectElement::Folder:
        appendFolderProperties(list, projectType);
        break;
    case ProjectElement::File:
        if (projectType == "Staging")
            append(list, {stage_output_filepath, stage_package_filepath, stage_package_member_name,
                          stage_command, stage_command_wd, build_exclude_from_build, stage_set_readonly});
        else
            appendFileProperties(list, element);
        break;
    case ProjectElement::Configuration:
    case ProjectElement::Other:
        break;
    }
    return list;
}

void StandardProjectSystem::appendFolderProperties(PropertyClassList& list,
                                                   const QString& projectType) const {
    if (isCompiled(projectType)) {
        appendProjectProperties(list, "Object file");
        append(list, {build_intermediate_directory});
    } else if (projectType == "Staging") {
        appendProjectProperties(list, "Staging");
    }
    append(list, {build_exclude_from_build, build_always_rebuild});
}

void StandardProjectSystem::appendFileProperties(PropertyClassList& list, ProjectElement* file) {
    append(list, {file_codec, file_open_with, file_type, build_exclude_from_build, build_always_rebuild});
    const QString type = getFileType(file);
    if (type == "C" || type == "C++")
        appendCCompilerProperties(list);
    if (type == "C++")
        appendCppCompilerProperties(list);
    if (type == "Assembly")
        appendAssemblerProperties(list);
    if (type == "C" || type == "C++" || type == "Assembly")
        append(list, {build_object_file_name});
}

/// The groups of the property groups file that the element names.
void StandardProjectSystem::appendGroups(PropertyValueList& values, ProjectElement* element,
                                         const QString& configName) {
    const QString type = element->is(ProjectElement::Project) ? getProjectType(element) : QString();
    if (!element->is(ProjectElement::Solution) && type != "Executable" &&
        type != "Externally Built Executable")
        return;
    const QString groupFile = settingForExpanded(element, property_groups_file_path, configName);
    if (groupFile.isEmpty())
        return;
    propertyValueGroups.setGroupFile(groupFile);
    if (const PropertyValueGroupFile* current = propertyValueGroups.current()) {
        for (const PropertyValueGroupClass* groupClass : current->classes())
            values.appendUnique(new PropertyValueGroupValue(*this, groupClass, configName, element));
    }
}

void StandardProjectSystem::appendCCompilerProperties(PropertyClassList& list) const {
    PropertyLists::appendCCompilerProperties(list, m_tools);
}

void StandardProjectSystem::appendCppCompilerProperties(PropertyClassList& list) const {
    PropertyLists::appendCppCompilerProperties(list);
}

void StandardProjectSystem::appendAssemblerProperties(PropertyClassList& list) const {
    PropertyLists::appendAssemblerProperties(list, m_tools);
}

void StandardProjectSystem::appendLinkerProperties(PropertyClassList& list) const {
    PropertyLists::appendLinkerProperties(list, m_tools);
}

void StandardProjectSystem::appendArchiverProperties(PropertyClassList&) const {}

void StandardProjectSystem::appendDefaultProjectValues(PropertyValueList&, const QString&) const {}

void StandardProjectSystem::appendTargetProperties(PropertyClassList& list) const {
    PropertyLists::appendTargetProperties(list);
}

void StandardProjectSystem::appendProjectProperties(PropertyClassList& list, const QString& type) const {
    PropertyLists::appendProjectProperties(
        list, type, [this](PropertyLists::Part part, PropertyClassList& to) { appendPart(part, to); });
}

void StandardProjectSystem::appendSolutionProperties(PropertyClassList& list) const {
    PropertyLists::appendSolutionProperties(
        list, [this](PropertyLists::Part part, PropertyClassList& to) { appendPart(part, to); });
}

void StandardProjectSystem::appendPart(PropertyLists::Part part, PropertyClassList& list) const {
    switch (part) {
    case PropertyLists::Part::CCompiler:
        return appendCCompilerProperties(list);
    case PropertyLists::Part::CppCompiler:
        return appendCppCompilerProperties(list);
    case PropertyLists::Part::Assembler:
        return appendAssemblerProperties(list);
    case PropertyLists::Part::Linker:
        return appendLinkerProperties(list);
    case PropertyLists::Part::Archiver:
        return appendArchiverProperties(list);
    case PropertyLists::Part::Target:
        return appendTargetProperties(list);
    }
}

QString StandardProjectSystem::getFileType(ProjectElement* file) {
    const QString stated = commonSettingFor(file, file_type);
    if (!stated.isEmpty() && stated != QLatin1String("Default"))
        return stated;
    if (file->fileTypeCache().isEmpty()) {
        const QString type = typeByExtension(file);
        if (!type.isEmpty())
            file->setFileTypeCache(type);
        return type;
    }
    return file->fileTypeCache();
}

namespace {

struct TypeRow {
    const char* key;
    QString type;
};

const TypeRow extensionTypes[] = {{"c", u"C"_qs},    {"cpp", u"C++"_qs},      {"cxx", u"C++"_qs},
                                  {"cc", u"C++"_qs}, {"asm", u"Assembly"_qs}, {"s", u"Assembly"_qs}};

const TypeRow documentTypes[] = {{"Board_Memory_Definition_File", u"Memory Map"_qs},
                                 {"Linker_Placement_File", u"Section Placement"_qs},
                                 {"OstrelTarn_Target_Definition_File", u"Target Definitions"_qs}};

template<size_t count>
QString typeOf(const TypeRow (&rows)[count], const QString& key) {
    for (const TypeRow& row : rows) {
        if (key == QLatin1String(row.key))
            return row.type;
    }
    return "";
}

} // namespace

QString StandardProjectSystem::typeByExtension(ProjectElement* file) const {
    file->checkDoFileStuff();
    const QString extension = file->path().extension(false).toLower();
    if (const QString type = typeOf(extensionTypes, extension); !type.isEmpty())
        return type;
    if (extension == QLatin1String("xml")) {
        const char* documentType = XMLDocument::xmlDocumentType(Path::absolute(file->path().filePath()));
        return documentType ? typeOf(documentTypes, toText(documentType)) : QString("");
    }
    const QString dotted = "." + extension;
    if (dotted == assemblyCodeFileExtension())
        return "Assembly";
    if (dotted == objectFileExtension())
        return "Object file";
    if (dotted == executableFileExtension())
        return "Executable";
    if (dotted == libraryFileExtension())
        return "Library";
    return "";
}
