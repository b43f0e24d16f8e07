#include "project/StandardProjectSystem.h"

#include "foundation/Text.h"
#include "project/PropertyValueGroupValue.h"
#include "properties/PropertyValueGroups.h"
#include "xml/XMLDocument.h"

namespace {

using enum Setting;
using SettingTable::List;

constexpr unsigned compiledProjects =
    SettingTable::Executable | SettingTable::Library | SettingTable::ObjectFile;

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
        append(list, SettingTable::Built);
        break;
    case ProjectElement::Folder:
        appendFolderProperties(list, projectType);
        break;
    case ProjectElement::File:
        if (projectType == "Staging")
            append(list, SettingTable::StagedFile);
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
    const List ofType = PropertyLists::listOfProject(projectType);
    if (ofType & compiledProjects) {
        appendProjectProperties(list, "Object file");
        append(list, SettingTable::CompiledFolder);
    } else if (ofType == SettingTable::Staging) {
        appendProjectProperties(list, "Staging");
    }
    append(list, SettingTable::Built);
}

void StandardProjectSystem::appendFileProperties(PropertyClassList& list, ProjectElement* file) {
    append(list, SettingTable::AnyFile);
    const QString type = getFileType(file);
    if (type == "C" || type == "C++")
        appendCCompilerProperties(list);
    if (type == "C++")
        appendCppCompilerProperties(list);
    if (type == "Assembly")
        appendAssemblerProperties(list);
    if (type == "C" || type == "C++" || type == "Assembly")
        append(list, SettingTable::CompiledFile);
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
    append(list, SettingTable::CCompiler);
}

void StandardProjectSystem::appendCppCompilerProperties(PropertyClassList& list) const {
    append(list, SettingTable::CppCompiler);
}

void StandardProjectSystem::appendAssemblerProperties(PropertyClassList& list) const {
    append(list, SettingTable::Assembler);
}

void StandardProjectSystem::appendLinkerProperties(PropertyClassList& list) const {
    append(list, SettingTable::Linker);
    list.appendUnique(m_tools.linker);
}

void StandardProjectSystem::appendArchiverProperties(PropertyClassList&) const {}

void StandardProjectSystem::appendDefaultProjectValues(PropertyValueList&, const QString&) const {}

void StandardProjectSystem::appendTargetProperties(PropertyClassList& list) const {
    append(list, SettingTable::Target);
}

void StandardProjectSystem::appendProjectProperties(PropertyClassList& list, const QString& type) const {
    append(list, SettingTable::AnyProject);
    append(list, PropertyLists::listOfProject(type));
}

void StandardProjectSystem::appendSolutionProperties(PropertyClassList& list) const {
    append(list, SettingTable::Solution);
}

void StandardProjectSystem::append(PropertyClassList& list, List which) const {
    PropertyLists::append(list, which, frontDoor(),
                          [this](PropertyClassList& to, List part) { appendPart(to, part); });
}

/// A list within a list, as all layers together make it.
void StandardProjectSystem::appendPart(PropertyClassList& list, List part) const {
    switch (part) {
    case SettingTable::CCompiler:
        return appendCCompilerProperties(list);
    case SettingTable::CppCompiler:
        return appendCppCompilerProperties(list);
    case SettingTable::Assembler:
        return appendAssemblerProperties(list);
    case SettingTable::Linker:
        return appendLinkerProperties(list);
    case SettingTable::Archiver:
        return appendArchiverProperties(list);
    case SettingTable::Target:
        return appendTargetProperties(list);
    case SettingTable::Compilers:
        append(list, part);
        return list.appendUnique(m_tools.compiler);
    default:
        return append(list, part);
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
