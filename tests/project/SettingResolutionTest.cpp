#include "project/MessageReceiver.h"
#include "project/ProjectPropertyValue.h"
#include "support/SolutionFixture.h"

using ::testing::ElementsAre;

class SettingResolution : public SolutionFixture {
protected:
    QString setting(const char* name, const QString& node_, const QString& config) {
        return system.settingFor(node(node_), *catalogueClass(name), config);
    }
};

// Combinations of places that state a value: four levels, and at each the configuration itself, two that it
// inherits from, and "Common". The stride is prime to their number's, so every place meets every other.
TEST_F(SettingResolution, NearestLevelWinsAndListsGatherInSearchOrder) {
    load("<configuration Name=\"D\" inherited_configurations=\"X;;Y;Undeclared\"/>"
         "<project Name=\"p\"><folder Name=\"d\"><file file_name=\"f.c\"/></folder></project>");
    const PropertyClass single("single", PropertyClass::String, "", "", "", "", "default");
    const PropertyClass list("list", PropertyClass::StringList, "", "", "", "", "default");
    const QStringList levels = {"f.c", "d", "p", "app"};
    const QStringList configurations = {"D", "X", "Y", "Common"};
    std::vector<ProjectElement*> places;
    QStringList texts;
    for (const QString& level : levels) {
        for (const QString& name : configurations) {
            ProjectElement* element = node(level);
            ProjectElement* found = element->configuration(name);
            places.push_back(found ? found : system.createConfiguration(element, name, false));
            texts.append(level + "." + name);
        }
    }
    ProjectElement* file = node("f.c");
    for (unsigned stated = 0; stated < 1u << places.size(); stated += 11) {
        QStringList expected;
        for (size_t i = 0; i < places.size(); ++i) {
            if (stated >> i & 1)
                expected.append(texts[static_cast<qsizetype>(i)]);
            for (const char* name : {"single", "list"})
                stated >> i & 1 ? places[i]->setAttribute(name, texts[static_cast<qsizetype>(i)], false)
                                : places[i]->removeAttribute(name);
        }
        const QString first = expected.isEmpty() ? "default" : expected.first();
        const QString all = expected.isEmpty() ? "default" : expected.join(";");
        ASSERT_EQ(system.settingFor(file, single, "D"), first);
        SettingOrigins origins;
        ASSERT_EQ(system.settingFor(file, list, "D", nullptr, &origins), all);
        QStringList traced;
        for (const SettingOrigin& origin : origins)
            traced.append(origin.element ? origin.element->getName() + "." + origin.configuration
                                         : origin.text);
        ASSERT_EQ(traced.join(";"), all);
        // "Common" is searched alone.
        const QStringList common = expected.filter(".Common");
        ASSERT_EQ(system.settingFor(file, list, "Common"), common.isEmpty() ? "default" : common.join(";"));
    }
}

TEST_F(SettingResolution, EmptyValueIsAValue) {
    load("<configuration Name=\"Common\" macros=\"A=1\" c_system_include_directories=\"\"/><project "
         "Name=\"p\">"
         "<configuration Name=\"Common\" linker_output_format=\"hex\"/>"
         "<configuration Name=\"D\" linker_output_format=\"\" macros=\"\"/></project>");
    EXPECT_EQ(setting("linker_output_format", "p", "D"), "");
    EXPECT_EQ(setting("linker_output_format", "p", "E"), "hex");
    EXPECT_EQ(setting("linker_output_format", "app", "D"), "None");
    EXPECT_EQ(setting("macros", "p", "D"), "A=1") << "an empty list entry takes no separator";
    EXPECT_EQ(setting("c_system_include_directories", "p", "D"), "");
}

TEST_F(SettingResolution, InheritanceComesFromTheNearestSolutionThatTellsOfIt) {
    load("<configuration Name=\"D\" inherited_configurations=\"Outer\"/>"
         "<configuration Name=\"E\" inherited_configurations=\"Outer\"/>"
         "<configuration Name=\"Outer\" build_quietly=\"outer\" inherited_configurations=\"Far\"/>"
         "<configuration Name=\"Inner\" build_quietly=\"wrong\"/>"
         "<configuration Name=\"Far\" build_debug_information=\"far\"/>"
         "<solution Name=\"in\"><configuration Name=\"D\" inherited_configurations=\"Inner\"/>"
         "<configuration Name=\"E\"/><project Name=\"p\"/>"
         "<project Name=\"q\"><configuration Name=\"Inner\" build_quietly=\"inner\"/></project></solution>");
    EXPECT_EQ(setting("build_quietly", "q", "D"), "inner");
    EXPECT_EQ(setting("build_quietly", "q", "E"), "outer");
    EXPECT_EQ(setting("build_quietly", "p", "D"), "outer") << "at the outer solution its own list counts";
    EXPECT_EQ(setting("build_debug_information", "p", "D"), "Yes") << "lists of lists don't count";
    system.setProperty(node("app"), "inherited_configurations", "E", "Inner", false);
    EXPECT_EQ(setting("build_quietly", "p", "E"), "outer");
    system.updateProjectList();
    EXPECT_EQ(setting("build_quietly", "p", "E"), "wrong");
}

TEST_F(SettingResolution, TraceLeavesOutWhatCommonGives) {
    load("<configuration Name=\"D\" macros=\"A=1\"/><project Name=\"p\"><configuration Name=\"Common\" "
         "macros=\"B=2\"/></project>");
    PropertyInheritanceInformation info;
    EXPECT_EQ(system.settingFor(node("p"), propertyClass(Setting::macros), "D", &info), "B=2;A=1");
    ASSERT_EQ(info.size(), 1);
    EXPECT_EQ(info[0].name, "app");
    info.clear();
    system.settingFor(node("p"), propertyClass(Setting::linker_map_file), "D", &info);
    ASSERT_EQ(info.size(), 1);
    EXPECT_EQ(info[0].value, "Yes");
    EXPECT_EQ(info[0].name, "");
    EXPECT_EQ(info[0].element, nullptr);
}

TEST_F(SettingResolution, ConfigurationsAreThoseThatSolutionsOffer) {
    load("<configuration Name=\"Release\"/><configuration Name=\"Debug\"/><configuration Name=\"Common\"/>"
         "<configuration Name=\"Base\" hidden=\"No\"/><configuration Name=\"ARM\" Platform=\"ARM\"/>"
         "<project Name=\"p\"><configuration Name=\"Own\"/></project>"
         "<solution Name=\"in\"><configuration Name=\"Debug\" hidden=\"\"/><configuration "
         "Name=\"Alone\"/></solution>");
    EXPECT_THAT(system.configurations(node("p"), 4), ElementsAre("Debug", "Release"));
    EXPECT_THAT(system.configurations(nullptr, 5), ElementsAre("Common", "Debug", "Release"));
    EXPECT_THAT(system.configurations(node("app"), 2), ElementsAre("Base"));
    EXPECT_THAT(system.configurations(node("in"), 4), ElementsAre("Alone", "Debug", "Release"));
    EXPECT_THAT(system.configurations(node("in"), 6), ElementsAre("Alone", "Base", "Debug", "Release"));
    load("<configuration Name=\"D\" hidden=\"1\"/><configuration Name=\"Common\"/>");
    EXPECT_THAT(system.configurations(nullptr, 4), ElementsAre("Common"));
    EXPECT_EQ(system.platform(node("app")), "MSP430");
    EXPECT_THAT(MSP430ProjectSystem().configurations(nullptr, 7), ElementsAre("Common"));
}

TEST_F(SettingResolution, ValuesReadAndWriteTheirNode) {
    load("<configuration Name=\"Common\" macros=\"A=1\" build_quietly=\"No\" "
         "stage_command=\"cp $(ProjectName)\"/><project Name=\"p\"/>");
    ProjectElement* project = node("p");
    EXPECT_EQ(system.settingForExpanded(project, propertyClass(Setting::stage_command), "D"), "cp p");
    ProjectPropertyValue quietly(system, &propertyClass(Setting::build_quietly), "D", project);
    EXPECT_TRUE(quietly.inherited());
    EXPECT_FALSE(quietly.toBool());
    quietly.setValue(true);
    EXPECT_FALSE(quietly.inherited());
    EXPECT_EQ(project->configuration("D")->attribute("build_quietly"), "Yes");
    ProjectPropertyValue list(system, &propertyClass(Setting::macros), "D", project);
    EXPECT_TRUE(list.toString().isNull()) << "lists are not resolved here";
    ProjectPropertyValue type(system, &propertyClass(Setting::project_type), "D", project);
    type.setValue("Library");
    EXPECT_EQ(type.configuration(), "Common");
    EXPECT_EQ(system.getProjectType(project), "Library");
    EXPECT_TRUE(system.getProjectType(node("app")).isNull());
}

TEST_F(SettingResolution, ApplicableSettingsFollowTheKindOfNode) {
    const auto typed = [](const char* type) {
        const std::string t = type;
        return "<project Name=\"" + t + "\"><configuration Name=\"Common\" project_type=\"" + t +
               "\"/><folder Name=\"folder " + t + "\"><file file_name=\"" + t + ".c\"/><file file_name=\"" +
               t + ".s43\"/><file file_name=\"" + t + ".cpp\"/><file file_name=\"" + t +
               ".txt\"/></folder></project>";
    };
    load(typed("Executable") + typed("Staging") + typed("Combining"));
    const struct {
        const char* node;
        int count;
        const char* first;
        const char* last;
    } rows[] = {
        {"app", -1, "build_output_directory", "stage_set_readonly"},
        {"Executable", -1, "project_dependencies", "build_always_rebuild"},
        {"Combining", 9, "project_dependencies", "build_always_rebuild"},
        {"folder Executable", -1, "project_dependencies", "build_always_rebuild"},
        {"folder Staging", 13, "project_dependencies", "build_always_rebuild"},
        {"folder Combining", 2, "build_exclude_from_build", "build_always_rebuild"},
        {"Staging.c", 7, "stage_output_filepath", "stage_set_readonly"},
        {"Executable.c", -1, "file_codec", "build_object_file_name"},
        {"Executable.s43", 26, "file_codec", "build_object_file_name"},
        {"Executable.cpp", -1, "file_codec", "build_object_file_name"},
        {"Executable.txt", 5, "file_codec", "build_always_rebuild"},
    };
    for (const auto& row : rows) {
        const PropertyValueList values = system.applicableSettingsFor(node(row.node), "D");
        ASSERT_FALSE(values.isEmpty()) << row.node;
        EXPECT_EQ(values[0]->propertyClass()->saveName(), row.first) << row.node;
        EXPECT_EQ(values[values.size() - 1]->propertyClass()->saveName(), row.last) << row.node;
        EXPECT_TRUE(row.count < 0 || values.size() == row.count) << row.node << " has " << values.size();
    }
    const auto has = [&](const char* name, Setting setting) {
        return system.applicableSettingsFor(node(name), "D").find(&propertyClass(setting)) != nullptr;
    };
    EXPECT_TRUE(has("Executable", Setting::msp430_insn_set));
    EXPECT_TRUE(has("Executable.c", Setting::optimize_register_allocation));
    EXPECT_FALSE(has("Executable.c", Setting::cpp_enable_rtti));
    EXPECT_TRUE(has("Executable.cpp", Setting::cpp_enable_rtti));
}

TEST_F(SettingResolution, NearestChangeDecidesForOneValueAnyForAList) {
    load("<configuration Name=\"D\" inherited_configurations=\"X\"/><project Name=\"p\"/>");
    struct : MessageReceiver {
        void message(const QString& text) override { told.append(text); }
        QStringList told;
    } receiver;
    const QDateTime past = QDateTime::currentDateTime().addSecs(-100);
    const QDateTime future = past.addSecs(200);
    const PropertyClass& single = propertyClass(Setting::linker_map_file);
    const PropertyClass& list = propertyClass(Setting::macros);
    const auto upToDate = [&](const PropertyClass& property, const char* config, const QDateTime& since) {
        return system.upToDate(node("p"), property, config, since, &receiver, false);
    };
    EXPECT_TRUE(upToDate(single, "D", past));
    system.setProperty(node("app"), single, "X", "No", false);
    system.setProperty(node("app"), list, "Common", "A=1", false);
    EXPECT_FALSE(upToDate(single, "D", past));
    EXPECT_FALSE(upToDate(list, "D", past));
    EXPECT_TRUE(upToDate(single, "D", future));
    EXPECT_TRUE(upToDate(single, "Common", past));
    EXPECT_FALSE(upToDate(list, "Common", past));
    EXPECT_THAT(receiver.told,
                ElementsAre("Generate Map File property has changed.", "Project Macros property has changed.",
                            "Project Macros property has changed."));
    EXPECT_FALSE(system.upToDate(node("p"), list, "D", past, nullptr, false));
    EXPECT_FALSE(system.upToDate(node("p"), list, "D", past, &receiver, true));
    EXPECT_EQ(receiver.told.size(), 3);
}
