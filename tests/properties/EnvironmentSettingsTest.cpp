#include "properties/EnvironmentSettings.h"
#include "macros/QTx.h"
#include "macros/SystemMacros.h"
#include "properties/EnvironmentKeys.h"
#include "support/MemoryFiles.h"

#include <QSet>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace {

using testing::ElementsAre;

class EnvironmentSettingsTest : public testing::Test {
protected:
    EnvironmentSettingsTest() : m_inPlace(&disk) { begin(); }
    ~EnvironmentSettingsTest() override { settings.reset(); }

    /// A run of the program begins; the one before, if any, ends.
    void begin() {
        settings.reset();
        settings.emplace();
        settings->createEntries();
    }
    PropertyValue& value(const char* key) { return *settings->property(key); }

    const QString productFile = tarnLocalDataDir() + "/settings.xml";
    MemoryFiles disk;
    FilesInPlace m_inPlace;
    std::optional<EnvironmentSettings> settings;
};

TEST_F(EnvironmentSettingsTest, HasEveryKeyOnce) {
    QSet<QString> keys;
    for (const EnvironmentKeyGroup& group : environmentKeyGroups()) {
        for (const EnvironmentKey& key : group.keys)
            keys.insert(QString(group.prefix) + key.name);
    }
    EXPECT_EQ(keys.size(), 175);
    for (const QString& key : keys)
        EXPECT_TRUE(settings->property(key)) << key.toLatin1().constData();
}

TEST_F(EnvironmentSettingsTest, DefaultsHoldWithoutAFile) {
    EXPECT_EQ(value(EnvironmentKeys::toolChainRootDirectory).toString(), "$(TarnDir)");
    EXPECT_TRUE(value(EnvironmentKeys::globalMacros).toStringList(false).isEmpty());
    ASSERT_TRUE(settings->page("Building"));
    EXPECT_TRUE(
        settings->page("Building")->find(value(EnvironmentKeys::toolChainRootDirectory).propertyClass()));
    EXPECT_FALSE(settings->page("No such page"));
}

TEST_F(EnvironmentSettingsTest, GlobalMacrosOutlastTheRun) {
    macroSystem.setGlobalMacro("Path", "a;b\\c=<&>\r\n");
    macroSystem.setGlobalMacro("Blank", " ");
    begin();
    EXPECT_EQ(macroSystem.globalMacro("Path"), "a;b\\c=<&>\r\n");
    EXPECT_EQ(macroSystem.globalMacro("Blank"), " ");
    macroSystem.setGlobalMacro("Path", "");
    begin();
    EXPECT_EQ(macroSystem.globalMacro("Path"), "");
    settings.reset();
    EXPECT_EQ(macroSystem.globalMacro("Blank"), "");
}

TEST_F(EnvironmentSettingsTest, EndOfTheRunWritesBothFiles) {
    const QString ownerFile = QTx::userLocalAppDataDirectory("Ferrant Associates Limited") + "/settings.xml";
    EXPECT_TRUE(settings->saveSettings());
    EXPECT_FALSE(disk.has(productFile) || disk.has(ownerFile)) << "nothing has changed";
    settings.reset();
    EXPECT_TRUE(disk.has(productFile) && disk.has(ownerFile));
}

TEST_F(EnvironmentSettingsTest, ListenersHearOfAChangeOnce) {
    auto& macros = dynamic_cast<EnvironmentPropertyValue&>(value(EnvironmentKeys::globalMacros));
    QStringList heard;
    settings->settingChanged = [&](const QString& name) { heard.append("setting " + name); };
    macros.changed = [&](EnvironmentPropertyValue* changed) { heard.append("value " + changed->toString()); };
    macros.setValue("A=1");
    macros.setValue("A=1");
    EXPECT_THAT(heard,
                ElementsAre(QString("setting Environment/Macros/Global Macros"), QString("value A=1")));
}

TEST_F(EnvironmentSettingsTest, UnknownSettingsOfTheFileAreCarried) {
    settings.reset();
    disk.write(productFile, "<settings><setting name=\"Front End/Only\">x</setting></settings>");
    settings.emplace();
    settings.reset();
    EXPECT_TRUE(disk.contents(productFile).contains("<setting name=\"Front End/Only\">x</setting>"));
}

} // namespace
