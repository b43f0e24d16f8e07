#include "project/PropertyValueGroupValue.h"
#include "macros/MacroSystem.h"
#include "properties/PropertyValueGroups.h"
#include "support/SolutionFixture.h"

class GroupValue : public SolutionFixture {
protected:
    GroupValue() {
        memory.write(
            "/g/groups.xml",
            "<groups><group name=\"Target\" default=\"F1\">"
            "<groupEntry name=\"F1\"><property name=\"linker_memory_map_file\" value=\"f1.xml\"/>"
            "<property name=\"msp430_insn_set\" value=\"MSP430\" configuration=\"Debug\"/></groupEntry>"
            "<groupEntry name=\"F2\"><property name=\"linker_memory_map_file\" "
            "value=\"f2.xml\"/></groupEntry>"
            "<groupEntry name=\"bare\"/></group><group name=\"Board\"/></groups>");
        macroSystem.setSystemMacro("Groups", "/g");
    }
    static std::string project(const std::string& attributes) {
        return "<project Name=\"p\"><configuration Name=\"Common\" project_type=\"Executable\" "
               "property_groups_file_path=\"$(Groups)/groups.xml\" " +
               attributes + "/></project>";
    }
    /// What the project's configurations state, without its type and group file.
    QString stated(const QString& configuration) {
        QStringList list;
        ProjectElement* holder = node("p")->configuration(configuration);
        for (const auto& [name, value] :
             holder ? holder->attributes() : std::vector<ProjectElement::Attribute>()) {
            if (name.text() != "Name" && !name.text().startsWith("pro"))
                list.append(name.text() + "=" + value);
        }
        return list.join(" ");
    }
};

TEST_F(GroupValue, ChoiceStatesTheSettingsOfItsEntry) {
    load(project(""));
    propertyValueGroups.setGroupFile("/g/groups.xml");
    const PropertyValueGroupClass* target = propertyValueGroups.getGroupClass("Target");
    ASSERT_NE(target, nullptr);
    PropertyValueGroupValue value(system, target, "Release", node("p"));
    value.setValue("F2");
    EXPECT_EQ(stated("Release"), "Target=F2 linker_memory_map_file=f2.xml");
    value.setValue("bare");
    EXPECT_EQ(stated("Release"), "Target=bare linker_memory_map_file=f2.xml");
    value.setValue("no such entry");
    EXPECT_EQ(stated("Release"), "Target=F1 linker_memory_map_file=f1.xml");
    EXPECT_EQ(stated("Debug"), "msp430_insn_set=MSP430");
    EXPECT_EQ(value.toInt(), 0);
}

TEST_F(GroupValue, GroupsOfTheNamedFileAreSettingsOfTheProject) {
    load(project(""));
    const PropertyValueList values = system.applicableSettingsFor(node("p"), "Debug");
    EXPECT_EQ(values[values.size() - 2]->propertyClass()->saveName(), "Target");
    EXPECT_EQ(values[values.size() - 1]->propertyClass()->saveName(), "Board");
    system.setProperty(node("p"), "property_groups_file_path", "Debug", "None", false);
    EXPECT_EQ(system.applicableSettingsFor(node("p"), "Debug").size(), values.size() - 2);
}

TEST_F(GroupValue, OlderVersionHasItsTargetAppliedAnew) {
    for (const char* target : {"Target=\"F2\"", ""}) {
        memory.write("/s/app.vkp", file("<solution Name=\"app\">" + project(target) + "</solution>"));
        EXPECT_EQ(loadError(), "");
        EXPECT_EQ(stated("Common"), *target ? "Target=F2 linker_memory_map_file=f2.xml"
                                            : "Target=F1 linker_memory_map_file=f1.xml");
    }
}

TEST_F(GroupValue, RecipeChoosesUnlessTheProjectHasChosen) {
    macroSystem.setSystemMacro("TargetsDir", "/t");
    memory.write(
        "/t/project_templates.xml",
        "<x><project template_name=\"T\" type=\"Executable\"><property name=\"property_groups_file_path\" "
        "value=\"/g/groups.xml\"/><propertygroup name=\"Target\" value=\"F2\"/><propertygroup "
        "name=\"Nowhere\" value=\"1\"/></project></x>");
    load("<project Name=\"p\" template_name=\"T\"/>");
    EXPECT_EQ(stated("Common"), "Target=F2 linker_memory_map_file=f2.xml");
    load("<project Name=\"p\" template_name=\"T\"><configuration Name=\"Common\" Target=\"F1\"/></project>");
    EXPECT_EQ(stated("Common"), "Target=F1 linker_memory_map_file=f1.xml");
}
