#include "properties/Catalogue.h"
#include "foundation/FileAccess.h"
#include "properties/BuildOptions.h"
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
