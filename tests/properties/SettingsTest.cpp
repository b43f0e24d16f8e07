#include "properties/Settings.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace {

class SettingsTest : public testing::Test {
protected:
    SettingsTest() : m_inPlace(&disk) {
        disk.write("/home/u/x", "");
        settings.emplace();
    }
    ~SettingsTest() override { settings.reset(); }

    static QByteArray file(const char* entries) {
        return QByteArray("<!DOCTYPE Ostrel_Settings_File>\n<settings>\n") + entries + "</settings>\n";
    }
    /// Another process writes the file, a second later.
    void othersWrite(const char* entries) {
        disk.tick();
        disk.write(path, viewOf(file(entries)));
    }

    const QString path = "/home/u/.data/settings.xml";
    MemoryFiles disk;
    FilesInPlace m_inPlace;
    std::optional<Settings> settings;
};

TEST_F(SettingsTest, ReadsTheDefaultWhereNothingIsStored) {
    settings->setPath(path);
    bool ok = false;
    EXPECT_EQ(settings->readEntry("a", "d", &ok), "d");
    EXPECT_TRUE(ok);
    EXPECT_TRUE(settings->readEntry("a", QString()).isNull());
}

TEST_F(SettingsTest, DestructorWritesTheFileEvenIfNothingChanged) {
    settings->setPath(path);
    settings.reset();
    EXPECT_EQ(disk.contents(path), file(""));
}

TEST_F(SettingsTest, SyncWritesOnlyWhatChanged) {
    settings->setPath(path);
    settings->sync();
    EXPECT_FALSE(disk.has(path));
    settings->writeEntry("a", "1");
    EXPECT_TRUE(settings->dirty());
    settings->sync();
    EXPECT_FALSE(settings->dirty());
    EXPECT_EQ(disk.contents(path), file("  <setting name=\"a\">1</setting>\n"));
    settings->writeEntry("a", "1");
    EXPECT_FALSE(settings->dirty());
}

TEST_F(SettingsTest, SyncTakesWhatAnotherProcessWrote) {
    settings->setPath(path);
    othersWrite("<setting name=\"a\">theirs</setting>");
    settings->sync();
    EXPECT_EQ(settings->readEntry("a", "d"), "theirs");
    othersWrite("damaged <");
    settings->sync();
    EXPECT_EQ(settings->readEntry("a", "d"), "theirs");
}

TEST_F(SettingsTest, SyncLaysOwnChangesOverTheirs) {
    othersWrite("<setting name=\"a\">1</setting><setting name=\"b\">1</setting>");
    settings->setPath(path);
    settings->writeEntry("a", "mine");
    othersWrite("<setting name=\"a\">theirs</setting><setting name=\"c\">theirs</setting>");
    settings->sync();
    EXPECT_EQ(disk.contents(path), file("  <setting name=\"a\">mine</setting>\n"
                                        "  <setting name=\"c\">theirs</setting>\n"));
    // What was written is theirs to change from now on.
    othersWrite("<setting name=\"a\">later</setting>");
    settings->writeEntry("b", "mine");
    settings->sync();
    EXPECT_EQ(settings->readEntry("a", "d"), "later");
}

TEST_F(SettingsTest, SyncKeepsItsEntriesWhenTheirFileIsDamaged) {
    othersWrite("<setting name=\"a\">1</setting>");
    settings->setPath(path);
    settings->writeEntry("b", "2");
    othersWrite("<setting");
    settings->sync();
    EXPECT_EQ(disk.contents(path),
              file("  <setting name=\"a\">1</setting>\n  <setting name=\"b\">2</setting>\n"));
}

TEST_F(SettingsTest, FailedWriteStaysDirtyAndLeavesTheOldFile) {
    othersWrite("<setting name=\"a\">1</setting>");
    settings->setPath(path);
    settings->writeEntry("a", "2");
    const QByteArray before = disk.contents(path);
    disk.failWith(ENOSPC);
    EXPECT_TRUE(settings->sync());
    EXPECT_TRUE(settings->dirty());
    EXPECT_EQ(disk.contents(path), before);
    disk.failWith(0);
    settings->sync();
    EXPECT_FALSE(settings->dirty());
    EXPECT_NE(disk.contents(path), before);
}

TEST_F(SettingsTest, KeyWithAnAmpersandMakesTheNextLoadFail) {
    settings->setPath(path);
    settings->writeEntry("a&b", "1");
    settings->sync();
    Settings::Map map;
    EXPECT_FALSE(Settings::load(path, map));
}

} // namespace
