#include "properties/PropertyValueGroups.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

class PropertyValueGroupsTest : public testing::Test {
protected:
    PropertyValueGroupsTest() : m_inPlace(&disk) {
        write("/g.xml", "<group name='Target' group='g' short='s' long='l' default='A'>"
                        "  <groupEntry name='A'/>"
                        "  <other/>"
                        "  <groupEntry name='B'>"
                        "    <property name='one' value='1'/>"
                        "    <cdefine/>"
                        "    <property name='two' value='2' configuration='Debug'/>"
                        "    <property/>"
                        "  </groupEntry>"
                        "</group>"
                        "<group name='Paged' page='P'/>");
    }

    /// A group file of these groups, with single quotes for double ones.
    void write(const QString& path, QByteArray elements) {
        disk.write(path, viewOf("<root>" + elements.replace('\'', '"') + "</root>"));
    }
    int reads() { return disk.reads.value("/g.xml"); }

    MemoryFiles disk;
    FilesInPlace m_inPlace;
    PropertyValueGroups groups;
};

TEST_F(PropertyValueGroupsTest, GroupIsAnEnumerationOfItsEntries) {
    groups.setGroupFile("/g.xml");
    const PropertyValueGroupClass* target = groups.getGroupClass("Target");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->type(), PropertyClass::Enumeration);
    EXPECT_THAT(target->enumerates(), ElementsAre(QString("A"), QString("B")));
    EXPECT_EQ(target->page(), "General");
    EXPECT_EQ(target->group() + target->shortDescription() + target->longDescription() +
                  target->defaultValue(),
              "gslA");
    ASSERT_TRUE(groups.getGroupClass("Paged"));
    EXPECT_EQ(groups.getGroupClass("Paged")->page(), "P");
    EXPECT_TRUE(groups.getGroupClass("Paged")->enumerates().isEmpty());
    EXPECT_FALSE(groups.getGroupClass("Other"));
}

TEST_F(PropertyValueGroupsTest, EntryTellsWhatItWrites) {
    groups.setGroupFile("/g.xml");
    const PropertyValueGroupEntry b = groups.getGroupClass("Target")->getGroupEntry("B");
    ASSERT_TRUE(b);
    const auto properties = b.properties();
    ASSERT_EQ(properties.size(), 3);
    EXPECT_EQ(properties[0].name + properties[0].value, "one1");
    EXPECT_TRUE(properties[0].configuration.isNull());
    EXPECT_EQ(properties[1].configuration, "Debug");
    EXPECT_TRUE(properties[2].name.isEmpty());
    EXPECT_TRUE(b.hasDefines());

    const PropertyValueGroupEntry a = groups.getGroupClass("Target")->getGroupEntry("A");
    EXPECT_TRUE(a && !a.hasDefines() && a.properties().isEmpty());
    const PropertyValueGroupEntry none = groups.getGroupClass("Target")->getGroupEntry("C");
    EXPECT_TRUE(!none && !none.hasDefines() && none.properties().isEmpty());
}

TEST_F(PropertyValueGroupsTest, UnchangedFileIsReadOnceAndGivesTheSameClasses) {
    groups.setGroupFile("/g.xml");
    const PropertyValueGroupClass* first = groups.getGroupClass("Target");
    groups.setGroupFile("None");
    EXPECT_FALSE(groups.getGroupClass("Target"));
    groups.setGroupFile("/g.xml");
    EXPECT_EQ(groups.getGroupClass("Target"), first);
    EXPECT_EQ(reads(), 1);
}

TEST_F(PropertyValueGroupsTest, ChangedFileIsReadAgainAndOldClassesStay) {
    groups.setGroupFile("/g.xml");
    const PropertyValueGroupClass* old = groups.getGroupClass("Target");
    disk.tick();
    write("/g.xml", "<group name='Target'><groupEntry name='New'/></group>");
    groups.setGroupFile("/g.xml");
    EXPECT_THAT(groups.getGroupClass("Target")->enumerates(), ElementsAre(QString("New")));
    EXPECT_TRUE(old->getGroupEntry("B").hasDefines());
}

TEST_F(PropertyValueGroupsTest, UnreadableFileIsNoFileAndIsTriedAgain) {
    for (const char* contents : {"<root><group></root>", ""}) {
        disk.write("/bad.xml", contents);
        groups.setGroupFile("/g.xml");
        groups.setGroupFile("/bad.xml");
        EXPECT_FALSE(groups.current()) << contents;
    }
    write("/bad.xml", "<group name='Target'/>");
    groups.setGroupFile("/bad.xml");
    EXPECT_TRUE(groups.getGroupClass("Target"));
    disk.remove("/bad.xml");
    groups.setGroupFile("/bad.xml");
    EXPECT_FALSE(groups.current());
}

TEST_F(PropertyValueGroupsTest, ConditionalsAreCarriedOutAndTheirFaultsTold) {
    write("/g.xml",
          "<define name='F' value='1'/><if F='1'><group name='On'/></if><ifdef name='G'><group name='Off'/>"
          "</ifdef><include/>");
    testing::internal::CaptureStderr();
    groups.setGroupFile("/g.xml");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "XmlPP::processConditionals(): missing filename in <include>\n");
    EXPECT_TRUE(groups.getGroupClass("On"));
    EXPECT_FALSE(groups.getGroupClass("Off"));
}

TEST_F(PropertyValueGroupsTest, WalkEndsAtTheFirstNodeThatIsNoElement) {
    write("/g.xml", "<group name='a'/><![CDATA[x]]><group name='b'/>");
    groups.setGroupFile("/g.xml");
    EXPECT_TRUE(groups.getGroupClass("a"));
    EXPECT_FALSE(groups.getGroupClass("b"));
}

} // namespace
