#include "memorymap/MemoryMap.h"

#include "macros/MacroSystem.h"
#include "memorymap/MemoryMapOpenFiles.h"
#include "support/MemoryFiles.h"
#include "support/TemporaryDirectory.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

class Map : public MemoryMap {
public:
    QStringList warnings;
    void warning(const QString& message) override { warnings.append(message); }
};

class MemoryMapTest : public ::testing::Test {
protected:
    /// Whether /m/map.xml loads with this text.
    bool load(const std::string& text, const QString& macros = QString(), bool preprocess = true) {
        disk.write("/m/map.xml", text);
        return map.load("/m/map.xml", macros, preprocess);
    }
    /// The address and size of the first element of this name, in hexadecimal.
    std::string numbers(const QString& name) {
        for (int type = 0; type <= MemoryMapElement::Unsupported; ++type) {
            MemoryMapElement* element = MemoryMap::getNamedElementOfType(
                map.getRoot(), name, static_cast<MemoryMapElement::ElementType>(type));
            if (element)
                return QString("%1 %2")
                    .arg(element->address(), 0, 16)
                    .arg(element->size(), 0, 16)
                    .toStdString();
        }
        return "none";
    }
    static QStringList names(const QList<MemoryMapElement*>& elements) {
        QStringList names;
        for (const MemoryMapElement* element : elements)
            names.append(element->name());
        return names;
    }

    MemoryFiles disk;
    FilesInPlace inPlace{&disk};
    Map map;
};

} // namespace

TEST_F(MemoryMapTest, KindsGoByTheTag) {
    ASSERT_TRUE(load("<Root><Processor/><MemorySegment/><RegisterGroup/><Register/><BitField/><Enum/>"
                     "<ProgramSection/><Import/><memorysegment/></Root>"));
    std::string kinds = map.getRoot()->elementTypeAsString();
    for (auto* child = map.getRoot()->firstChildElement(); child; child = child->nextSiblingElement())
        kinds += std::string(" ") + child->elementTypeAsString() + std::to_string(child->elementType());
    EXPECT_EQ(kinds, "Root Processor7 MemorySegment0 RegisterGroup4 Register1 BitField5 Enum6 "
                     "ProgramSection2 Unsupported8 Unsupported8");
}

TEST_F(MemoryMapTest, AddressesCountFromWhatIsAround) {
    struct Row {
        const char* xml;
        const char* numbers; ///< of the element named x
    };
    const Row rows[] = {
        {"<MemorySegment start=\"0x200\"><ProgramSection name=\"x\" start=\"+0x10\"/></MemorySegment>",
         "210 0"},
        {"<MemorySegment start=\"0x200\"><ProgramSection name=\"x\" start=\"0x10\"/></MemorySegment>",
         "10 0"},
        {"<MemorySegment start=\"0x200\"><Processor start=\"7\"><ProgramSection name=\"x\" start=\"+1\"/>"
         "</Processor></MemorySegment>",
         "201 0"},
        {"<MemorySegment start=\"0x200\"><MemorySegment><ProgramSection name=\"x\" start=\"+1\"/>"
         "</MemorySegment></MemorySegment>",
         "201 0"},
        {"<MemorySegment start=\"0x200\"><MemorySegment start=\"\"><ProgramSection name=\"x\" start=\"+1\"/>"
         "</MemorySegment></MemorySegment>",
         "1 0"},
        {"<RegisterGroup start=\"0x100\"><Register name=\"x\" start=\"+2\"/></RegisterGroup>", "102 0"},
        {"<RegisterGroup start=\"0x100\"><Register start=\"+2\"><Register name=\"x\" "
         "start=\"+4\"/></Register>"
         "</RegisterGroup>",
         "104 0"},
        {"<RegisterGroup start=\"0x100\"><Register start=\"+2\"><BitField name=\"x\" start=\"+2\" "
         "size=\"3\"/>"
         "</Register></RegisterGroup>",
         "2 3"},
        {"<BitField start=\"4\"><Enum name=\"x\" start=\"+1\" size=\"0b11\"/></BitField>", "1 3"},
        {"<Processor name=\"x\" start=\"4\" size=\"2\"/>", "0 0"},
        {"<MemorySegment name=\"x\" start=\"0x100-0x80*1\" size=\"(1&lt;&lt;16)-1\"/>", "80 ffff"},
        {"<MemorySegment name=\"x\" start=\"-1\" size=\"0x1234\"/>", "ffffffff 1234"},
        {"<MemorySegment name=\"x\" start=\"1&lt;&lt;32|5\" size=\"1&lt;&lt;33|6\"/>", "5 6"},
        {"<Register name=\"x\" start=\"1\" size=\"0x2\"/>", "1 2"},
        // What can't be evaluated.
        {"<MemorySegment start=\"8\"><ProgramSection name=\"x\" start=\"+a\" size=\"b\"/></MemorySegment>",
         "0 0"},
        {"<MemorySegment start=\"8\"><ProgramSection name=\"x\" start=\"+(1==1)\"/></MemorySegment>", "8 0"},
        {"<MemorySegment name=\"x\" start=\"#\" size=\"4\"/>", "0 4"},
        {"<MemorySegment name=\"x\" start=\"1/0\" size=\"1==1\"/>", "0 0"},
        {"<MemorySegment name=\"x\" start=\"2\" size=\"\"/>", "2 0"},
        {"<MemorySegment start=\"1/0\"><ProgramSection name=\"x\" start=\"+3\"/></MemorySegment>", "3 0"},
    };
    for (const Row& row : rows) {
        ASSERT_TRUE(load(row.xml)) << row.xml;
        EXPECT_EQ(numbers("x"), row.numbers) << row.xml;
    }
}

TEST_F(MemoryMapTest, AttributesAreThereOrNot) {
    ASSERT_TRUE(load("<Root><MemorySegment name=\"FLASH\" start=\"x\" size=\"1\" address_symbol=\"\" "
                     "size_symbol=\"s\" addressSpace=\"a\" load=\"Yes\"/>"
                     "<MemorySegment start=\"\" load=\"yes\"/></Root>"));
    const MemoryMapElement* full = map.getRoot()->firstChildElement();
    EXPECT_TRUE(full->hasAddress() && full->hasSize() && full->hasAddressSymbol() && full->hasSizeSymbol() &&
                full->hasAddressSpace() && full->load());
    EXPECT_EQ(full->addressSymbol() + full->sizeSymbol() + full->addressSpace(), "sa");
    const MemoryMapElement* bare = full->nextSiblingElement();
    EXPECT_FALSE(bare->hasAddress() || bare->hasSize() || bare->hasAddressSymbol() || bare->hasSizeSymbol() ||
                 bare->hasAddressSpace() || bare->load());
    EXPECT_TRUE(bare->name().isNull());
    EXPECT_EQ(full->cmp(*bare), 0);
}

TEST_F(MemoryMapTest, ElementsCompareByUnsignedAddress) {
    ASSERT_TRUE(load("<Root><Register start=\"-1\"/><Register start=\"1\"/></Root>"));
    const MemoryMapElement* high = map.getRoot()->firstChildElement();
    const MemoryMapElement* low = high->nextSiblingElement();
    EXPECT_EQ(high->cmp(*low), -1);
    EXPECT_EQ(low->cmp(*high), 1);
    EXPECT_EQ(low->cmp(*low), 0);
}

TEST_F(MemoryMapTest, SearchesGoThroughTheTreeInItsOrder) {
    ASSERT_TRUE(load("<Root><Processor><MemorySegment name=\"A\" start=\"1\">"
                     "<ProgramSection name=\"s1\"><ProgramSection name=\"inner\"/></ProgramSection>"
                     "<Processor><ProgramSection name=\"s2\"/></Processor>"
                     "<MemorySegment name=\"nested\"><ProgramSection name=\"s3\"/></MemorySegment>"
                     "</MemorySegment></Processor><MemorySegment name=\"B\"/>"
                     "<MemorySegment name=\"A\" start=\"2\"/><Register name=\"B\"/></Root>"));
    EXPECT_THAT(names(map.getSegments(false)), ElementsAre("A", "B", "A"));
    EXPECT_THAT(names(map.getSegments(true)), ElementsAre("A", "B", "A"));
    EXPECT_EQ(map.getSegments(true).first()->address(), 2u);
    EXPECT_EQ(map.getSegment("A")->address(), 1u);
    EXPECT_EQ(map.getSegment("nested")->elementType(), MemoryMapElement::MemorySegment);
    EXPECT_EQ(map.getSegment("C"), nullptr);
    EXPECT_EQ(map.getSegment(QString()), nullptr);
    EXPECT_THAT(names(MemoryMap::getSections(map.getSegment("A"), true)), ElementsAre("s1", "s2", "s3"));
    EXPECT_THAT(names(MemoryMap::getSections(map.getSegment("A"), false)), ElementsAre("s3", "s2", "s1"));
    QList<MemoryMapElement*> list = {map.getRoot()};
    MemoryMap::getElementsOfType(map.getRoot(), MemoryMapElement::Register, true, list);
    EXPECT_THAT(names(list), ElementsAre("B", QString()));
    EXPECT_EQ(MemoryMap::getNamedElementOfType(map.getSegment("B"), "B", MemoryMapElement::MemorySegment),
              map.getSegment("B"))
        << "itself included";
}

TEST_F(MemoryMapTest, ImportsTakeTheirPlaceOnce) {
    macroSystem.setSystemMacro("Parts", "/parts");
    disk.write("/m/ram.xml", "<!DOCTYPE part><Root><MemorySegment name=\"RAM\" start=\"+1\"/>"
                             "<Import filename=\"ram.xml\"/></Root>");
    disk.write("/parts/info.xml", "<MemorySegment name=\"INFO\" start=\"0x1000\"/>");
    ASSERT_TRUE(
        load("<!DOCTYPE Board><MemorySegment name=\"top\" start=\"0x100\"><Import filename=\"ram.xml\"/>"
             "<Import filename=\"gone.xml\"/><Import/>"
             "<Processor><Import filename=\"ram.xml\"/></Processor>"
             "<Import filename=\"$(Parts)/info.xml\"/><Register name=\"last\"/></MemorySegment>"));
    std::string tags;
    for (auto* child = map.getRoot()->firstChildElement(); child; child = child->nextSiblingElement())
        tags += std::string(" ") + child->tagName();
    EXPECT_EQ(tags, " Root Import Import Processor MemorySegment Register");
    EXPECT_EQ(numbers("RAM"), "101 0") << "counts from the element that imports";
    EXPECT_EQ(numbers("INFO"), "1000 0");
    const MemoryMapElement* ram = map.getRoot()->firstChildElement();
    EXPECT_EQ(ram->importElement()->attributeText("filename"), "ram.xml");
    EXPECT_EQ(ram->lastModified(), disk.modified("/m/ram.xml"));
    EXPECT_EQ(ram->nextSiblingElement()->importElement(), nullptr);
    EXPECT_STREQ(map.docType(), "Board");
}

TEST_F(MemoryMapTest, ConditionalsSeeTheMacros) {
    const std::string text = "<Root><if Size=\"big\"><MemorySegment name=\"B\" size=\"$(Length)\"/></if>"
                             "<Import filename=\"more.xml\"/></Root>";
    disk.write("/m/more.xml", "<Root><if Size=\"big\"><MemorySegment name=\"C\"/></if></Root>");
    ASSERT_TRUE(load(text, "Size=big;Length=0x10"));
    EXPECT_EQ(numbers("B"), "0 10");
    EXPECT_NE(map.getSegment("C"), nullptr);
    ASSERT_TRUE(load(text, "Size=small"));
    EXPECT_EQ(map.getSegments(true).size(), 0);
    ASSERT_TRUE(load(text, "Size=small", false));
    EXPECT_THAT(names(map.getSegments(false)), ElementsAre("B", "C")) << "not preprocessed";
}

TEST_F(MemoryMapTest, LoadFailsWithoutARoot) {
    for (const char* text : {"", "text", "<a", "<a></b>", "<!-- a -->", "<Root a-b=\"1\"/>"})
        EXPECT_FALSE(load(text)) << text;
    EXPECT_FALSE(map.load("/m/gone.xml", QString(), true));
    EXPECT_EQ(map.getRoot(), nullptr);
    EXPECT_FALSE(map.upToDate());
}

TEST_F(MemoryMapTest, ReadOnlyIsWhatTheHostCannotWrite) {
    const TemporaryDirectory directory;
    const QString path = directory.path() + "/map.xml";
    disk.write(path, "<Root><Import filename=\"/m/part.xml\"/></Root>");
    disk.write("/m/part.xml", "<MemorySegment/>");
    ASSERT_TRUE(map.load(path, QString(), true));
    EXPECT_TRUE(map.getRoot()->readOnly());
    std::ofstream(path.toStdString()) << "";
    ASSERT_TRUE(map.load(path, QString(), true));
    EXPECT_FALSE(map.getRoot()->readOnly());
    EXPECT_TRUE(map.getRoot()->firstChildElement()->readOnly()) << "each file for itself";
}

TEST_F(MemoryMapTest, DeepAndSelfImportingFilesEnd) {
    std::string deep;
    for (int i = 0; i < 200'000; ++i)
        deep += "<MemorySegment start=\"+1\">";
    for (int i = 0; i < 200'000; ++i)
        deep += "</MemorySegment>";
    ASSERT_TRUE(load(deep));
    EXPECT_EQ(map.getSegments(true).size(), 1);
    EXPECT_EQ(map.getRoot()->address(), 1u);

    std::string self = "<Root>";
    for (int i = 0; i < 20'000; ++i)
        self += "<Import filename=\"map.xml\"/>";
    ASSERT_TRUE(load(self + "</Root>"));
    ASSERT_EQ(map.warnings.size(), 1);
    EXPECT_THAT(map.warnings.first().toStdString(), HasSubstr("grows too large"));
    disk.write("/m/part.xml", "<MemorySegment name=\"RAM\"/>");
    ASSERT_TRUE(load("<Root><Import filename=\"part.xml\"/></Root>"));
    EXPECT_NE(map.getSegment("RAM"), nullptr) << "the next load has the whole bound again";
}

class OpenFiles : public MemoryMapTest {
protected:
    std::shared_ptr<MemoryMap> get(const QString& path, const QString& macros = QString()) {
        return open.getMemoryMapFile(path, macros, true);
    }
    MemoryMapOpenFiles open;
};

TEST_F(OpenFiles, MapIsKeptAsLongAsNothingChanges) {
    disk.write("/m/map.xml", "<Root><Import filename=\"/m/part.xml\"/></Root>");
    disk.write("/m/part.xml", "<Root/>");
    const auto first = get("/m/map.xml");
    EXPECT_EQ(get("/m/./map.xml"), first);
    EXPECT_NE(get("/m/map.xml", "A=1"), first) << "other macros";
    const auto second = get("/m/map.xml");
    EXPECT_NE(second, first) << "the one with other macros has taken its place";
    disk.tick();
    disk.touch("/m/part.xml");
    const auto third = get("/m/map.xml");
    EXPECT_NE(third, second) << "an import was touched";
    disk.touch("/m/map.xml");
    EXPECT_NE(get("/m/map.xml"), third);
    disk.remove("/m/map.xml");
    EXPECT_EQ(get("/m/map.xml"), nullptr);
    disk.touch("/m/map.xml");
    disk.write("/m/map.xml", "<Root/>");
    EXPECT_NE(get("/m/map.xml"), nullptr) << "a failure is not kept";
}

TEST_F(OpenFiles, RelativeImportIsNeverUpToDate) {
    disk.write("/m/map.xml", "<Root><Import filename=\"part.xml\"/></Root>");
    disk.write("/m/part.xml", "<MemorySegment name=\"RAM\"/>");
    const auto first = get("/m/map.xml");
    ASSERT_NE(first->getSegment("RAM"), nullptr);
    EXPECT_NE(get("/m/map.xml"), first);
}

TEST_F(OpenFiles, MapInTwoRolesStaysInBoth) {
    disk.write("/m/map.xml", "<Root><MemorySegment name=\"$(Role)\" start=\"1\"/></Root>");
    const auto placement = get("/m/map.xml", "Role=placement");
    const auto memory = get("/m/map.xml", "Role=memory");
    EXPECT_EQ(placement->getRoot()->firstChildElement()->name(), "placement");
    EXPECT_EQ(memory->getRoot()->firstChildElement()->name(), "memory");
}
