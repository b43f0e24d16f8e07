// What the linker is told of memory, by maps of real devices.

#include "build/LinkPlacement.h"

#include "support/BuildFixture.h"

#include <QRegularExpression>

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// The memory of a small device.
constexpr const char* deviceMap =
    "<!DOCTYPE Board_Memory_Definition_File><Root name=\"MSP430F149\">"
    "<MemorySegment name=\"RAM\" start=\"0x200\" size=\"2*1024\"/>"
    "<MemorySegment name=\"INFO\" start=\"0x1000\" size=\"256\" addressSpace=\"Data\"/>"
    "<MemorySegment name=\"FLASH\" start=\"0x1100\" size=\"0x10000-0x1100\" address_symbol=\"__flash\" "
    "size_symbol=\"__flash_size\"/></Root>";

/// Where its program goes: the vectors at the end of the flash, a stack at the end of the RAM.
constexpr const char* programPlacement =
    "<!DOCTYPE Linker_Placement_File><Root name=\"Sections\">"
    "<MemorySegment name=\"FLASH\"><ProgramSection name=\"CODE\" load=\"Yes\"/>"
    "<ProgramSection name=\"CONST\" load=\"Yes\"/>"
    "<ProgramSection name=\"INTVEC\" start=\"0xFFE0\" size=\"32\" load=\"Yes\"/></MemorySegment>"
    "<MemorySegment name=\"RAM\"><ProgramSection name=\"IDATA0\"/><ProgramSection name=\"UDATA0\" "
    "load=\"No\"/>"
    "<ProgramSection name=\"STACK\" start=\"0x980\" size=\"0x80\"/></MemorySegment></Root>";

} // namespace

class LinkPlacementTest : public BuildFixture {
protected:
    /// The words between "-Xbefore" and "-Kafter" of a link with these files, empty for none; nothing at all
    /// if there was no link.
    QStringList words(const std::string& placement, const std::string& map, const std::string& further = "") {
        memoryMapOpenFiles = {};
        std::string attributes =
            " linker_additional_options=\"-Xbefore\" linker_keep_symbols=\"after\" " + further;
        attributes +=
            std::string(" linker_section_placement_file=\"") + (placement.empty() ? "" : "p.xml") + "\"";
        attributes += std::string(" linker_memory_map_file=\"") + (map.empty() ? "" : "m.xml") + "\"";
        memory.write("/s/p.xml", placement);
        memory.write("/s/m.xml", map);
        load("<project Name=\"p\"><configuration Name=\"Common\"" + attributes + "/></project>");
        build("Debug", BuildFlags::Quiet | BuildFlags::Force);
        if (builder->commands.isEmpty())
            return {};
        const QStringList command = builder->commands.constFirst();
        const qsizetype before = command.indexOf("-Xbefore");
        return command.mid(before + 1, command.indexOf("-Kafter") - before - 1);
    }
    static std::string segment(const std::string& attributes, const std::string& sections = "") {
        return "<Root><MemorySegment name=\"S\" " + attributes + ">" + sections + "</MemorySegment></Root>";
    }
    static std::string section(const std::string& name, const std::string& attributes = "") {
        return "<ProgramSection name=\"" + name + "\" " + attributes + "/>";
    }
    /// What the last build said beside captions and commands.
    QStringList said() const { return builder->log.filter(QRegularExpression("^(message|error): ")); }
};

TEST_F(LinkPlacementTest, NoFilesGiveNoWords) { EXPECT_THAT(words("", ""), IsEmpty()); }

TEST_F(LinkPlacementTest, MapAloneOpensItsSegments) {
    EXPECT_THAT(words("", deviceMap),
                ElementsAre("-D__flash=4352", "-D__flash_size=61184", "-D___FLASH_Address=4352",
                            "-D___FLASH_Size=61184", "-T=1100-10000", "-D___INFO_Address=4096",
                            "-D___INFO_Size=256", "-D__INFO_Data=1", "-T=1000-1100", "-D___RAM_Address=512",
                            "-D___RAM_Size=2048", "-T=200-a00"));
}

TEST_F(LinkPlacementTest, BothFilesGiveTheirWordsOneBehindTheOther) {
    QStringList expected = {"-D___RAM_Address=512",
                            "-D___RAM_Size=2048",
                            "-TSTACK=980-9ff",
                            "-TIDATA0,UDATA0=200-980",
                            "-D__flash=4352",
                            "-D__flash_size=61184",
                            "-D___FLASH_Address=4352",
                            "-D___FLASH_Size=61184",
                            "-GCODE=L",
                            "-GCONST=L",
                            "-TINTVEC=ffe0-ffff",
                            "-GINTVEC=L",
                            "-TCODE,CONST=1100-ffe0"};
    expected += words("", deviceMap);
    EXPECT_EQ(words(programPlacement, deviceMap), expected);
    EXPECT_THAT(said(), IsEmpty());
}

TEST_F(LinkPlacementTest, PlacementMayKnowItsSegmentsItself) {
    const std::string whole = segment("start=\"0x200\" size=\"0x100\"", section("A"));
    EXPECT_THAT(words(whole, ""), ElementsAre("-D___S_Address=512", "-D___S_Size=256", "-TA=200-300"));
    EXPECT_EQ(words(whole, segment("start=\"0\" size=\"1\"")).first(), "-D___S_Address=512");
    EXPECT_EQ(words(segment("start=\"0x200\"", section("A")), segment("start=\"0x300\" size=\"4\"")).first(),
              "-D___S_Address=768")
        << "without a size the map counts";
}

TEST_F(LinkPlacementTest, SectionsLeaveWhatIsUnused) {
    struct Row {
        std::string sections;
        QStringList words; ///< behind those that tell the segment of 0x100 bytes at 0x200
    };
    const auto at = [](const std::string& name, const char* start, const char* size) {
        return section(name, std::string("start=\"") + start + "\" size=\"" + size + "\"");
    };
    const Row rows[] = {
        {"", {"-T=200-300"}},
        {section("A") + section("B"), {"-TA,B=200-300"}},
        {at("A", "0x200", "0x100"), {"-TA=200-2ff"}},
        {at("A", "0x200", "0x100") + section("B"), {"-TA=200-2ff", "-TB"}},
        {at("A", "+0x10", "0x10"), {"-TA=210-21f", "-T=200-210,220-300"}},
        {section("B") + at("C", "0x280", "8") + at("A", "0x210", "16") + section("D"),
         {"-TC=280-287", "-TA=210-21f", "-TB,D=200-210,220-280,288-300"}},
        {section("A", "start=\"0x210\""), {"-TA=200-300"}},
        {section("A", "size=\"4\""), {"-TA=200-300"}},
        {section("A", "start=\"\" size=\"4\""), {"-TA=200-300"}},
        {section("A", "load=\"Yes\"") + section("B", "load=\"yes\""), {"-GA=L", "-TA,B=200-300"}},
        {at("A", "0x200", "0x80") + at("B", "0x200", "0x10"), {"-TA=200-27f", "-TB=200-20f", "-T=280-300"}},
        {at("A", "0x200", "0x80") + at("B", "0x210", "0x10"), // the walk goes back behind the inner one
         {"-TA=200-27f", "-TB=210-21f", "-T=220-300"}},
        {at("A", "0x100", "0x10"), {"-TA=100-10f", "-T=110-300"}},
        {at("A", "0x400", "0x10"), {"-TA=400-40f", "-T=200-400"}},
        {"<ProgramSection name=\"O\"><ProgramSection name=\"I\"/></ProgramSection>", {"-TO=200-300"}},
    };
    for (const Row& row : rows) {
        const QStringList all = words("", segment("start=\"0x200\" size=\"0x100\"", row.sections));
        EXPECT_EQ(all.mid(2), row.words) << row.sections;
    }
    EXPECT_EQ(words("", segment("start=\"-0x100\" size=\"0x100\"", section("A"))).last(),
              "-TA=ffffff00-100000000")
        << "the end of the last segment of all does not wrap";
}

TEST_F(LinkPlacementTest, SectionBeyondItsSegmentIsToldOf) {
    struct Row {
        const char* start;
        const char* size;
        bool isTold;
    };
    const Row rows[] = {{"0x2F0", "0x10", false}, {"0x2F0", "0x11", true},  {"0x300", "1", true},
                        {"0x300", "0", false},    {"0x301", "0x10", false}, {"0x1FF", "0x200", false},
                        {"0x200", "0x101", true}};
    for (const Row& row : rows) {
        words("",
              segment("start=\"0x200\" size=\"0x100\"",
                      section("A", std::string("start=\"") + row.start + "\" size=\"" + row.size + "\"")));
        EXPECT_EQ(said(),
                  row.isTold ? QStringList("message: section A is larger than the segment S") : QStringList())
            << row.start << " " << row.size;
        EXPECT_EQ(builder->commands.size(), 1) << "nothing stops";
    }
}

TEST_F(LinkPlacementTest, SegmentThatTheMapLacksIsPassedOver) {
    const std::string two = "<Root><MemorySegment name=\"GONE\"><ProgramSection name=\"A\"/></MemorySegment>"
                            "<MemorySegment name=\"RAM\"/></Root>";
    EXPECT_EQ(words(two, deviceMap).mid(0, 3),
              QStringList({"-D___RAM_Address=512", "-D___RAM_Size=2048", "-T=200-a00"}));
    EXPECT_THAT(
        said(),
        ElementsAre("message: section placement file referenced segment GONE not in memory map file"));
}

TEST_F(LinkPlacementTest, WithoutAMapThatIsNeededNothingIsLinked) {
    EXPECT_THAT(words(segment("", section("A")), ""), IsEmpty());
    EXPECT_THAT(said(), Contains("error: memory map file is required."));
    EXPECT_EQ(builder->log.filter("Linking").size(), 0);
}

TEST_F(LinkPlacementTest, FileThatCannotBeLoadedEndsTheLinkAndNothingElse) {
    const auto logOf = [this](const std::string& placement, const std::string& map) {
        words(placement, map, "linker_post_build_command=\"tool\"");
        return builder->log.mid(1);
    };
    EXPECT_THAT(logOf("<Root", deviceMap), ElementsAre("error: Cannot load section placement file: /s/p.xml",
                                                       "Post-link command ", "/s> tool"));
    EXPECT_THAT(logOf(programPlacement, "text"), ElementsAre("error: Cannot load memory map file: /s/m.xml",
                                                             "Post-link command ", "/s> tool"));
}

TEST_F(LinkPlacementTest, FileInTheProjectWinsAndNeedNotBeThere) {
    const auto project = [this](const std::string& files) {
        memoryMapOpenFiles = {};
        memory.write("/s/set.xml", "<Root><MemorySegment name=\"SET\" start=\"1\" size=\"1\"/></Root>");
        memory.write("/s/own.xml", "<!DOCTYPE Board_Memory_Definition_File><Root>"
                                   "<MemorySegment name=\"OWN\" start=\"1\" size=\"1\"/></Root>");
        load("<project Name=\"p\"><configuration Name=\"Common\" linker_memory_map_file=\"$(P).xml\" "
             "linker_section_placement_file=\"\" macros=\"P=set\"/>" +
             files + "</project>");
        build("Debug", BuildFlags::Quiet | BuildFlags::Force);
        return builder->commands.isEmpty() ? said() : builder->commands.first().filter("_Address");
    };
    EXPECT_THAT(project(""), ElementsAre("-D___SET_Address=1"));
    EXPECT_THAT(project("<folder Name=\"f\"><file file_name=\"own.xml\"/></folder>"),
                ElementsAre("-D___OWN_Address=1"));
    const std::string excluded = "<configuration Name=\"Common\" build_exclude_from_build=\"Yes\"/>";
    EXPECT_THAT(project("<file file_name=\"own.xml\">" + excluded + "</file>"),
                ElementsAre("-D___SET_Address=1"));
    EXPECT_THAT(project("<file file_name=\"gone.xml\"><configuration Name=\"Common\" "
                        "file_type=\"Memory Map\"/></file>"),
                ElementsAre("error: Cannot load memory map file: /s/gone.xml"));
    EXPECT_THAT(project("<file file_name=\"a.ld\"><configuration Name=\"Common\" "
                        "file_type=\"Linker Script\"/></file>"),
                ElementsAre("-D___SET_Address=1"))
        << "a script only changes what the link depends on";
}

TEST_F(LinkPlacementTest, PathOfTheSettingIsLookedForTwice) {
    QString path;
    const auto uses = [&](const char* setting) {
        load(std::string("<project Name=\"p\"><configuration Name=\"Common\" linker_memory_map_file=\"") +
             setting + "\" project_directory=\"sub\"/></project>");
        return engine->useMemoryMapFileForLink(node("p"), "Debug", path);
    };
    memory.write("/abs/m.xml", "");
    memory.write("/s/sub/m.xml", "");
    EXPECT_TRUE(uses("/abs/m.xml"));
    EXPECT_EQ(path, "/abs/m.xml");
    EXPECT_TRUE(uses("m.xml"));
    EXPECT_EQ(path, "/s/sub/m.xml");
    EXPECT_FALSE(uses("gone.xml"));
    EXPECT_EQ(path, "/s/sub/gone.xml");
    EXPECT_FALSE(uses(""));
    EXPECT_EQ(path, "");
}

TEST_F(LinkPlacementTest, MacrosOfTheSettingsReachTheFilesAndOneFileMayPlayBothRoles) {
    memory.write("/s/both.xml",
                 "<Root><if Role=\"place\"><MemorySegment name=\"RAM\"><ProgramSection name=\"$(Role)\"/>"
                 "</MemorySegment></if><if Role=\"map\"><MemorySegment name=\"RAM\" start=\"$(Start)\" "
                 "size=\"16\"/></if><Import filename=\"more.xml\"/></Root>");
    memory.write("/s/more.xml", "<MemorySegment name=\"MORE\" start=\"1\" size=\"1\"/>");
    load("<project Name=\"p\"><configuration Name=\"Common\" linker_memory_map_file=\"both.xml\" "
         "linker_section_placement_file=\"both.xml\" linker_section_placement_macros=\"Role=place\" "
         "linker_memory_map_macros=\"Role=map;Start=0x20\" linker_keep_symbols=\"k\"/></project>");
    build("Debug", BuildFlags::Quiet | BuildFlags::Force);
    EXPECT_THAT(builder->commands.first().filter(QRegularExpression("^-[DT]")),
                ElementsAre("-D___MORE_Address=1", "-D___MORE_Size=1", "-T=1-2", "-D___RAM_Address=32",
                            "-D___RAM_Size=16", "-Tplace=20-30", "-D___MORE_Address=1", "-D___MORE_Size=1",
                            "-T=1-2", "-D___RAM_Address=32", "-D___RAM_Size=16", "-T=20-30"));
}

TEST_F(LinkPlacementTest, UnusedRangesFollowTheWalk) {
    using Ranges = std::vector<AddressRange>;
    struct Row {
        Ranges used;
        AddressRange memory;
        Ranges unused;
    };
    const Row rows[] = {
        {{}, {0, 0}, {}},
        {{}, {5, 9}, {{5, 9}}},
        {{{8, 9}, {2, 4}, {2, 3}}, {0, 10}, {{0, 2}, {4, 8}, {9, 10}}},
        {{{2, 8}, {4, 5}}, {0, 10}, {{0, 2}, {5, 10}}},
        {{{12, 14}}, {0, 10}, {{0, 12}}},
        {{{0, 20}}, {5, 10}, {}},
        {{{3, 3}}, {0, 6}, {{0, 3}, {3, 6}}},
    };
    for (const Row& row : rows) {
        const Ranges unused = LinkPlacement::findUnusedRanges(row.used, row.memory);
        std::string got;
        std::string wanted;
        for (const AddressRange& range : unused)
            got += std::to_string(range.start) + "-" + std::to_string(range.end) + " ";
        for (const AddressRange& range : row.unused)
            wanted += std::to_string(range.start) + "-" + std::to_string(range.end) + " ";
        EXPECT_EQ(got, wanted);
    }
}
