#include "properties/Catalogue.h"
#include "foundation/FileAccess.h"
#include "properties/BuildOptions.h"
#include "properties/PropertyLists.h"
#include "support/MemoryFiles.h"

#include <QRegularExpression>
#include <QSet>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

std::vector<std::string> namesOf(const PropertyClassList& list) {
    std::vector<std::string> names;
    for (const PropertyClass* each : list)
        names.push_back(each->saveName().toStdString());
    return names;
}

TEST(Catalogue, HasEverySettingUnderItsName) {
    EXPECT_EQ(catalogue().size(), 144);
    QSet<QString> names;
    for (const PropertyClass* each : catalogue())
        names.insert(each->saveName());
    EXPECT_EQ(names.size(), 142); // "path" and "build_output_file_name" stand twice
    EXPECT_EQ(propertyClass(Setting::msp430_insn_set).saveName(), "msp430_insn_set");
    EXPECT_EQ(propertyClass(Setting::element_name).saveName(), "(Name)");
    EXPECT_EQ(propertyClass(Setting::build_library_file_name).defaultValue(),
              "$(OutDir)/$(ProjectName)$(LIB)");
}

TEST(Catalogue, RowsFitTheirTypes) {
    for (const PropertyClass* each : catalogue()) {
        SCOPED_TRACE(each->saveName().toStdString());
        EXPECT_FALSE(each->page().isEmpty() || each->group().isEmpty());
        EXPECT_FALSE(each->shortDescription().isEmpty() || each->longDescription().isEmpty());
        EXPECT_TRUE(each->defaultValue().isNull() || !each->defaultValue().isEmpty());
        switch (each->type()) {
        case PropertyClass::Boolean:
        case PropertyClass::Enumeration:
            EXPECT_TRUE(each->enumerates().contains(each->defaultValue()));
            EXPECT_EQ(QSet<QString>(each->enumerates().begin(), each->enumerates().end()).size(),
                      each->enumerates().size());
            break;
        case PropertyClass::IntegerRange: {
            bool isNumber = false;
            const int value = each->defaultValue().toInt(&isNumber);
            EXPECT_TRUE(isNumber && each->minimum() < each->maximum() && value <= each->maximum());
            EXPECT_TRUE(value >= each->minimum() || value == 0); // 0: none at all
            break;
        }
        default:
            EXPECT_TRUE(each->enumerates().isEmpty() && each->minimum() == 0 && each->maximum() == 0);
        }
    }
}

TEST(Catalogue, LookUpGivesTheClassThatWasEnteredLast) {
    EXPECT_EQ(catalogueClass("build_output_file_name"), &propertyClass(Setting::build_library_file_name));
    EXPECT_EQ(catalogueClass("path"), &propertyClass(Setting::dynamic_folder_filter));
    EXPECT_EQ(catalogueClass("macros"), &propertyClass(Setting::macros));
    EXPECT_EQ(catalogueClass("no_such_setting"), nullptr);
}

/// The parts as the present layers make them together.
void appendPart(PropertyLists::Part part, PropertyClassList& list) {
    using namespace PropertyLists;
    switch (part) {
    case Part::CCompiler:
        appendCCompilerProperties(list, {});
        return appendSOBFCCompilerProperties(list);
    case Part::CppCompiler:
        return appendCppCompilerProperties(list);
    case Part::Assembler:
        appendAssemblerProperties(list, {});
        return appendSOBFAssemblerProperties(list);
    case Part::Linker:
        appendLinkerProperties(list, {});
        appendSOBFLinkerProperties(list);
        return appendMSP430LinkerProperties(list);
    case Part::Archiver:
        return appendSOBFArchiverProperties(list);
    case Part::Target:
        return appendTargetProperties(list);
    }
}

std::vector<std::string> projectList(const char* type) {
    PropertyClassList list;
    PropertyLists::appendProjectProperties(list, type, appendPart);
    return namesOf(list);
}

TEST(PropertyLists, LibraryHasCompilerAssemblerAndArchiverSettingsWithoutRepeats) {
    EXPECT_THAT(
        projectList("Library"),
        ElementsAre(
            "project_dependencies", "macros", "build_output_directory", "build_intermediate_directory",
            "build_object_file_name", "c_additional_options", "c_enforce_ansi_checking",
            "c_preprocessor_definitions", "c_preprocessor_undefinitions", "c_user_include_directories",
            "c_system_include_directories", "c_undefine_all_preprocessor_definitions", "c_ignore_includes",
            "build_treat_warnings_as_errors", "build_suppress_warnings", "build_debug_information",
            "build_quietly", "default_code_section", "default_data_section", "default_zeroed_section",
            "default_const_section", "default_vector_section", "compile_pre_build_command",
            "compile_pre_build_command_wd", "compile_post_build_command", "compile_post_build_command_wd",
            "compiler_optimization_strategy", "optimize_register_allocation", "asm_additional_options",
            "double_is_float", "build_use_hardware_multiplier", "build_output_file_name"));
}

TEST(PropertyLists, SizesAndEndsOfTheOtherLists) {
    struct Case {
        const char* type;
        size_t size;
        const char* last;
    };
    const std::vector<Case> cases = {{"Executable", 29 + 47 + 18 + 2, "property_groups_file_path"},
                                     {"Object file", 28, "asm_additional_options"},
                                     {"Staging", 11, "stage_set_readonly"},
                                     {"Combining", 7, "combine_set_readonly"},
                                     {"Externally Built Executable", 27, "property_groups_file_path"},
                                     {"Unheard of", 2, "macros"}};
    for (const auto& [type, size, last] : cases) {
        EXPECT_EQ(projectList(type).size(), size) << type;
        EXPECT_EQ(projectList(type).back(), last);
    }
    PropertyClassList solution;
    PropertyLists::appendSolutionProperties(solution, appendPart);
    EXPECT_EQ(namesOf(solution).front(), "build_output_directory");
    EXPECT_EQ(namesOf(solution).back(), "stage_set_readonly");
}

TEST(BuildOptions, ToolDecidesWhereAnOptionGoes) {
    MemoryFiles disk;
    const FilesInPlace inPlace(&disk);
    disk.write("/bin/build_options.xml",
               R"(<options>
                    <option name="c" type="Enumeration" tool="compiler" enumeration="a;;b" default="b"
                            short="s" long="l" group="g" specialvalue="v"/>
                    <option name="l" type="IntegerHex" tool="linker" minimum="1" maximum="255"/>
                    <option name="neither" type="Unknown" tool=""/>
                    <option name="dropped" type="String"/>
                    <![CDATA[end]]>
                    <option name="behind" tool="linker"/>
                  </options>)");
    const BuildOptions options = loadBuildOptions("/bin/build_options.xml");
    EXPECT_THAT(namesOf(options.tools.compiler), ElementsAre("c"));
    EXPECT_THAT(namesOf(options.tools.linker), ElementsAre("l"));
    ASSERT_EQ(options.classes.size(), 3u);

    const PropertyClass& c = *options.classes[0];
    EXPECT_EQ(c.type(), PropertyClass::Enumeration);
    EXPECT_THAT(c.enumerates(), ElementsAre(QString("a"), QString("b")));
    EXPECT_EQ(c.specialValueText(), "v");
    EXPECT_TRUE(c.page().isNull());
    EXPECT_EQ(options.classes[1]->maximum(), 255);
    EXPECT_EQ(options.classes[2]->type(), PropertyClass::Boolean);
    EXPECT_TRUE(options.classes[2]->defaultValue().isNull());
}

TEST(BuildOptions, MissingOrBrokenFileAddsNothing) {
    MemoryFiles disk;
    const FilesInPlace inPlace(&disk);
    disk.write("/empty.xml", "");
    disk.write("/broken.xml", "<options><option name=\"a\" tool=\"linker\"></options>");
    for (const char* name : {"/missing.xml", "/empty.xml", "/broken.xml"})
        EXPECT_TRUE(loadBuildOptions(name).classes.empty()) << name;
}

} // namespace
