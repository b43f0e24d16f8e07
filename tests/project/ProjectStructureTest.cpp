#include "project/Wildcard.h"
#include "support/SolutionFixture.h"

#include <random>

using ::testing::ElementsAre;

namespace {

/// Listing keys as the definition has them: each solution collects twice, so the time doubles with each
/// level.
struct PlainListing {
    ElementMap solutions;
    std::map<ProjectElement*, ElementMap> projects;

    void collect(ElementMap& map, const QString& prefix, ProjectElement* element) {
        for (ProjectElement* child = element->firstChild(); child; child = child->nextSibling()) {
            if (child->is(ProjectElement::Project))
                map[prefix.isEmpty() ? child->getName() : QString(child->getName() + "(" + prefix + ")")] =
                    child;
            if (!child->is(ProjectElement::Solution))
                continue;
            const QString childPrefix =
                prefix.isEmpty() ? child->getName() : QString(prefix + "," + child->getName());
            solutions[childPrefix] = child;
            collect(map, childPrefix, child);
            projects[child].clear();
            collect(projects[child], QString(), child);
        }
    }
    explicit PlainListing(ProjectElement* root) {
        collect(projects[root], QString(), root);
        solutions[root->getName()] = root;
    }
};

} // namespace

class ProjectStructure : public SolutionFixture {
protected:
    static std::string project(const std::string& name, const std::string& dependencies) {
        return "<project Name=\"" + name + "\"><configuration Name=\"Common\" project_dependencies=\"" +
               dependencies + "\"/></project>";
    }
    QStringList order(const std::string& elements, const char* config = "D") {
        load(elements);
        return names(system.buildOrder(nullptr, config));
    }
};

TEST_F(ProjectStructure, KeysTellTheWayThroughNestedSolutions) {
    load("<solution Name=\"A\"><project Name=\"Q\"/><solution Name=\"B\"><project "
         "Name=\"P\"/></solution></solution>"
         "<project Name=\"P\"/><folder Name=\"d\"><project Name=\"unseen\"/></folder>");
    EXPECT_THAT(system.projectNames(), ElementsAre("P", "P(A,B)", "Q(A)"));
    EXPECT_THAT(system.solutionProjects(node("A")).keys(), ElementsAre("P(B)", "Q"));
    EXPECT_THAT(system.solutionProjects(node("B")).keys(), ElementsAre("P"));
    EXPECT_EQ(system.solutionProjects(node("d")).size(), 3) << "those of the root";
    EXPECT_THAT(system.solutionNames(), ElementsAre("A", "A,B", "B", "app"));
    ProjectElement* inner = system.solutionProjects(node("B")).value("P");
    EXPECT_EQ(system.findProject(inner, "P"), inner);
    EXPECT_EQ(system.findProject(node("Q"), "P(B)"), inner);
    EXPECT_NE(system.findProject(node("Q"), "P"), inner) << "found from the inside out";
    EXPECT_EQ(system.findProject(inner, "Q(A)"), node("Q"));
    EXPECT_EQ(system.findProject(node("A"), "nowhere"), nullptr);
}

TEST_F(ProjectStructure, OfTwoWithOneKeyTheLaterHolds) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::string text;
        int open = 0;
        for (int i = 0; i < 30; ++i) {
            const char* names[] = {"\"a\"", "\"b\"", "\"c\""};
            const std::string name = names[random() % 3];
            const unsigned what = random() % 4;
            if (what == 0 && open < 5 && ++open)
                text.append("<solution Name=").append(name).append(">");
            else if (what == 1 && open > 0 && open--)
                text += "</solution>";
            else if (what > 1)
                text.append("<project Name=").append(name).append("/>");
        }
        while (open-- > 0)
            text += "</solution>";
        ProjectElement* root = load(text);
        const PlainListing plain(root);
        ASSERT_EQ(system.solutionSolutions(), plain.solutions) << text;
        for (const auto& [solution, projects] : plain.projects)
            ASSERT_EQ(solution->projects(), projects) << text;
    }
}

TEST_F(ProjectStructure, ProjectsComeBehindWhatTheyDependOn) {
    EXPECT_THAT(order(project("a", "c;;gone;b") + project("b", "c") + project("c", "") + project("d", "a")),
                ElementsAre("c", "b", "a", "d"));
    EXPECT_THAT(order(project("a", "b") + project("b", "c") + project("c", "a")), ElementsAre("c", "b", "a"))
        << "in a circle the one met first stands last";
    EXPECT_THAT(order(project("a", "a")), ElementsAre("a"));
    EXPECT_THAT(names(system.buildOrder(node("a"), "D")), ElementsAre("a"));
    EXPECT_THAT(order("<configuration Name=\"D\" project_dependencies=\"b\"/>" + project("a", "c") +
                      project("b", "") + project("c", "")),
                ElementsAre("b", "c", "a"));
    load("<project Name=\"p\"><file file_name=\"f.c\"/></project>");
    EXPECT_TRUE(system.buildOrder(node("f.c"), "D").isEmpty());
}

TEST_F(ProjectStructure, ChainOfTwentyThousandProjectsIsWalkedWithoutTheStack) {
    std::string text;
    std::string name("p0");
    for (int i = 0; i < 20'000; ++i) {
        const std::string next = std::string("p").append(std::to_string(i + 1));
        text += project(name, next);
        name = next;
    }
    const QStringList walked = order(text);
    ASSERT_EQ(walked.size(), 20'000);
    EXPECT_EQ(walked.first(), "p19999");
    EXPECT_EQ(walked.last(), "p0");
}

TEST_F(ProjectStructure, BatchPatternsChooseConfigurations) {
    load("<configuration Name=\"Common\"/><configuration Name=\"MSP430 Debug\"/><configuration Name=\"MSP430 "
         "Release\"/><configuration Name=\"Test\"/><configuration Name=\"x/Debug\"/><project Name=\"p\"/>");
    const struct {
        const char* patterns;
        QStringList chosen;
    } rows[] = {
        {"", {}},
        {"Common", {"Common"}},
        {"Common;test", {"Test"}},
        {"TEST;Test", {"Test", "Test"}},
        {"*Debug", {"MSP430 Debug", "x/Debug"}},
        {"*debug", {}},
        {"Rel*", {}},
        {"M*[DR]e*", {"MSP430 Debug", "MSP430 Release"}},
        {"T?st", {}},
        {"T?st*", {"Test"}},
    };
    for (const auto& row : rows) {
        system.setProperty(node("p"), "batch_build_configurations", "Common", row.patterns, false);
        EXPECT_EQ(system.getBatchBuildConfigurations(node("p"), "Test"), row.chosen) << row.patterns;
    }
}

TEST(Wildcard, MatchesTheWholeText) {
    const struct {
        const char* pattern;
        const char* text;
        bool matches;
    } rows[] = {
        {"", "", true},           {"", "a", false},        {"*", "", true},       {"a*b*c", "a.b.b.c", true},
        {"a*b*c", "abcd", false}, {"?", "", false},        {"a.c", "abc", false}, {"[a-c]x", "bx", true},
        {"[^a-c]x", "bx", false}, {"[^a-c]x", "dx", true}, {"[]]", "]", true},    {"[a", "a", false},
        {"[a-]", "-", true},      {"\\*", "\\x", true},    {"**a", "xa", true},   {"*[0-9]", "a1b2", true},
        {"A", "a", false},        {"[!a]", "!", true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(wildcardMatches(QString(row.pattern), QString(row.text), Qt::CaseSensitive), row.matches)
            << row.pattern << " on " << row.text;
    EXPECT_TRUE(wildcardMatches(u"*.C", u"a.c", Qt::CaseInsensitive));
    EXPECT_TRUE(wildcardMatches(u"[A-C]", u"b", Qt::CaseInsensitive));
    const QString stars = QString("*a").repeated(500);
    EXPECT_FALSE(wildcardMatches(QString(stars + "b"), QString(20'000, u'a'), Qt::CaseSensitive));
}

TEST_F(ProjectStructure, FileTypeComesFromTheSettingThenTheExtension) {
    memory.write("/s/map.xml", "<?xml version=\"1.0\"?><!DOCTYPE Board_Memory_Definition_File><x/>");
    memory.write("/s/place.XML", "<!DOCTYPE Linker_Placement_File>");
    memory.write("/s/other.xml", "<!DOCTYPE Other>");
    const struct {
        const char* name;
        const char* type;
    } rows[] = {
        {"a.c", "C"},
        {"a.C", "C"},
        {"a.b.cpp", "C++"},
        {"a.cxx", "C++"},
        {"a.cc", "C++"},
        {"a.asm", "Assembly"},
        {"a.s", "Assembly"},
        {"a.S43", "Assembly"},
        {"a.vko", "Object file"},
        {"a.vkx", "Executable"},
        {"a.vka", "Library"},
        {"a.h", ""},
        {"c", ""},
        {"map.xml", "Memory Map"},
        {"place.XML", "Section Placement"},
        {"other.xml", ""},
        {"missing.xml", ""},
    };
    for (const auto& row : rows) {
        load("<file file_name=\"" + std::string(row.name) + "\"/>");
        EXPECT_EQ(system.getFileType(node(row.name)), row.type) << row.name;
    }
    load("<file file_name=\"a.c\"><configuration Name=\"Common\" file_type=\"Default\"/><configuration "
         "Name=\"D\" "
         "file_type=\"Library\"/></file><file file_name=\"b.c\"><configuration Name=\"Common\" "
         "file_type=\"Assembly\"/></file>");
    EXPECT_EQ(system.getFileType(node("a.c")), "C");
    EXPECT_EQ(system.getFileType(node("b.c")), "Assembly");
    memory.reads.clear();
    load("<file file_name=\"map.xml\"/>");
    system.getFileType(node("map.xml"));
    system.getFileType(node("map.xml"));
    EXPECT_EQ(memory.reads["/s/map.xml"], 1);
}

TEST_F(ProjectStructure, ChildrenAreFoundByTheTextOfTheirNames) {
    ProjectElement* root =
        load("<file file_name=\"$(X)/a.c\"/><folder Name=\"d\"><file file_name=\"b.c\"/></folder>");
    EXPECT_NE(system.findFile(root, "$(X)/a.c"), nullptr);
    EXPECT_EQ(system.findFile(root, "/a.c"), nullptr);
    EXPECT_EQ(system.findFile(root, "b.c"), nullptr);
    EXPECT_EQ(system.findFolder(root, "d"), node("d"));
    EXPECT_EQ(system.findFolder(root, "$(X)/a.c"), nullptr);
    root = load("<folder Name=\"D\"/><configuration Name=\"D\" a=\"1\"/><configuration Name=\"D\" a=\"2\"/>");
    EXPECT_EQ(system.findConfiguration(root, "D")->attribute("a"), "1");
    EXPECT_EQ(root->configuration("D")->attribute("a"), "2");
    EXPECT_EQ(system.findConfiguration(root, "E"), nullptr);
}
