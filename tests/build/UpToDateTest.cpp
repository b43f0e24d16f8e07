#include "support/BuildFixture.h"

#include "foundation/HException.h"

#include <QRegularExpression>
#include <random>

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class UpToDate : public BuildFixture {
protected:
    void project(const std::string& attributes = "") {
        load("<project Name=\"p\"><configuration Name=\"Common\" " + attributes +
             "/><file file_name=\"a.c\"/></project>");
    }
    /// The lines that a verbose build says about its decisions.
    QStringList reasons() { return verbose().filter(QRegularExpression("^(message|success): ")); }
};

TEST_F(UpToDate, EveryDecisionSaysItsReason) {
    project("linker_output_format=\"hex\"");
    touch("a.c");
    touch("a.h");
    headers = {"a.h"};
    EXPECT_THAT(reasons(),
                ElementsAre("message: Debug/a.vko does not exist.", "message: Debug/p.vkx does not exist."));
    EXPECT_THAT(reasons(),
                ElementsAre("success: 'Debug/a.vko' is up to date", "success: 'Debug/p.vkx' is up to date"));
    memory.tick();
    touch("a.h");
    EXPECT_THAT(reasons(), ElementsAre("message: a.h is newer than Debug/a.vko."));
    memory.remove("/s/a.h");
    EXPECT_THAT(reasons(), ElementsAre("message: a.h does not exist."));
    touch("a.h");
    verbose();
    memory.remove("/s/Debug/p.map");
    EXPECT_EQ(reasons().last(), "message: /s/Debug/p.map does not exist.");
    memory.remove("/s/Debug/p.hex");
    EXPECT_EQ(reasons().last(), "message: /s/Debug/p.hex does not exist.");
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    EXPECT_EQ(builder->log.size(), 1) << "a quiet build says nothing";
}

TEST_F(UpToDate, TimesCountInWholeSeconds) {
    project();
    touch("a.c");
    build();
    memory.advance(999'999'999);
    touch("a.c");
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    touch("a.c");
    EXPECT_EQ(build(), BuildStatus::Built);
}

TEST_F(UpToDate, ObjectWithoutDependenciesCountsItsSourceAlone) {
    project();
    touch("a.c");
    build();
    memory.tick();
    memory.write("/s/Debug/a.vko", viewOf(objectFrom({})));
    build();
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    memory.tick();
    touch("a.c");
    EXPECT_THAT(reasons(), Contains("message: /s/a.c is newer than Debug/a.vko."));
}

TEST_F(UpToDate, DamagedObjectEndsTheRun) {
    project();
    touch("a.c");
    build();
    memory.write("/s/Debug/a.vko", "\xFF");
    EXPECT_THROW(build(), HException);
}

TEST_F(UpToDate, ForceComesBeforeAnyTest) {
    project();
    touch("a.c");
    build();
    memory.write("/s/Debug/a.vko", "\xFF");
    EXPECT_EQ(build("Debug", BuildFlags::Force), BuildStatus::Built);
    EXPECT_THAT(builder->ran(), ElementsAre("qcomp Debug/a.vko", "qlink Debug/p.vkx"));
    EXPECT_THAT(builder->log.filter("message"), IsEmpty());
}

TEST_F(UpToDate, AlwaysRebuiltFileMakesItsProjectLink) {
    load("<project Name=\"p\"><file file_name=\"a.c\"/><file file_name=\"b.c\"><configuration "
         "Name=\"Common\" build_always_rebuild=\"Yes\"/></file></project>");
    touch("a.c");
    touch("b.c");
    build();
    build();
    EXPECT_THAT(builder->ran(), ElementsAre("qcomp Debug/b.vko", "qlink Debug/p.vkx"));
}

TEST_F(UpToDate, LinkWatchesMapAndPlacementFilesOrTheScript) {
    load("<project Name=\"p\"><configuration Name=\"Common\" linker_memory_map_file=\"map.xml\" "
         "linker_section_placement_file=\"$(TarnDir)/place.xml\"/></project>"
         "<project Name=\"q\"><configuration Name=\"Common\" linker_memory_map_file=\"map.xml\"/>"
         "<file file_name=\"s.x\"><configuration Name=\"Common\" file_type=\"Linker "
         "Script\"/></file></project>");
    memory.write("/tarn/place.xml", "<Root/>");
    memory.write("/s/map.xml", "<Root/>");
    memory.write("/s/s.x", "<Root/>");
    build();
    for (const char* name : {"/s/map.xml", "/tarn/place.xml", "/s/s.x"}) {
        memory.tick();
        memory.touch(name);
        const QString project = name == std::string("/s/s.x") ? "q" : "p";
        EXPECT_THAT(reasons(),
                    Contains("message: " + QString(name) + " is newer than Debug/" + project + ".vkx."));
        EXPECT_EQ(builder->commands.size(), 1) << name;
    }
}

TEST_F(UpToDate, SettingChangedInThisRunCountsAfterTheOutput) {
    project();
    touch("a.c");
    build();
    const auto change = [this](const char* name) {
        system.solutionElement()->clearMarks();
        system.setProperty(node("p"), *catalogueClass(name), "Debug", "x", false);
        return reasons().filter("property has changed.");
    };
    // Changes bear the time of the clock on the wall, behind that of files in memory.
    ASSERT_GT(QDateTime::currentSecsSinceEpoch(), memory.now() / 1'000'000'000);
    EXPECT_THAT(change("cpp_enable_rtti"), ElementsAre("message: Enable RTTI Support property has changed."));
    EXPECT_THAT(change("msp430_insn_set"), ElementsAre("message: Instruction Set property has changed."));
    EXPECT_THAT(change("linker_stack_size"), ElementsAre("message: Stack Size property has changed."));
    EXPECT_THAT(change("link_msp430_workaround_CPU_6_bug"),
                ElementsAre("message: Work Around CPU6 Bug property has changed."));
    EXPECT_THAT(change("c_ignore_includes"), IsEmpty()) << "not every setting of a command is tested";
}

TEST_F(UpToDate, NothingToDoAsksEachFileOnce) {
    load("<project Name=\"p\"><file file_name=\"a.c\"/><file file_name=\"b.c\"/></project>");
    headers = {"a.h", "/tarn/x.h"};
    for (const char* name : {"a.c", "b.c", "a.h"})
        touch(name);
    memory.write("/tarn/x.h", "");
    build();
    memory.statuses.clear();
    memory.reads.clear();
    EXPECT_EQ(build(), BuildStatus::NothingToDo);
    for (const char* name : {"/s/a.c", "/s/b.c", "/s/a.h", "/tarn/x.h", "/s/Debug/a.vko", "/s/Debug/p.vkx"})
        EXPECT_EQ(memory.statuses.value(name), 1) << name;
    EXPECT_EQ(memory.reads.value("/s/Debug/a.vko"), 1);
}

/// Tools whose outputs hold the contents of all that they are made from.
class RandomEdits : public BuildFixture {
protected:
    QByteArray read(const QString& name) const {
        return memory.contents(name.startsWith('/') ? name : QString("/s/" + name));
    }
    QByteArray contents(const QString& output, const QStringList& words) override {
        QByteArray bytes = BuildFixture::contents(output, words);
        const QStringList inputs = words.first().endsWith("qcomp")
                                       ? words.filter(QRegularExpression("^[abl]\\.c$")) + headers
                                       : words.filter(QRegularExpression("^[^-/].*\\.vko$|/lib\\.vka$"));
        for (const QString& input : inputs) {
            if (input != words.at(words.indexOf("-c") + 1))
                bytes += read(input);
        }
        return bytes;
    }
    QByteArray outputs() const {
        QByteArray all;
        for (const char* name : {"a.vko", "b.vko", "l.vko", "lib.vka", "p.vkx"})
            all += read("Debug/" + QString(name)) + "|";
        return memory.has("/s/Debug/p.map") ? all : QByteArray();
    }
};

TEST_F(RandomEdits, IncrementalBuildLeavesWhatABuildFromScratchMakes) {
    load("<project Name=\"lib\"><configuration Name=\"Common\" project_type=\"Library\"/>"
         "<file file_name=\"l.c\"/></project>"
         "<project Name=\"p\"><configuration Name=\"Common\" project_dependencies=\"lib\"/>"
         "<file file_name=\"a.c\"/><folder Name=\"d\"><file file_name=\"b.c\"/></folder></project>");
    headers = {"a.h", "b.h"};
    const QStringList sources = {"a.c", "b.c", "l.c", "a.h", "b.h"};
    const QStringList made = {"a.vko", "b.vko", "l.vko", "lib.vka", "p.vkx", "p.map"};
    std::mt19937 random(20);
    const auto pick = [&](const QStringList& names) {
        return names[static_cast<qsizetype>(random() % static_cast<unsigned>(names.size()))];
    };
    for (const QString& source : sources)
        memory.write("/s/" + source, "first");
    build();
    for (int round = 0; round < 200; ++round) {
        memory.tick();
        if (random() % 3 != 0)
            memory.write("/s/" + pick(sources), std::to_string(random()));
        else
            memory.remove("/s/Debug/" + pick(made));
        EXPECT_EQ(build(), BuildStatus::Built);
        EXPECT_EQ(build(), BuildStatus::NothingToDo);
        const QByteArray incremental = outputs();
        build("Debug", BuildFlags::clean);
        build();
        ASSERT_EQ(incremental, outputs()) << round;
        ASSERT_FALSE(incremental.isEmpty());
    }
}
