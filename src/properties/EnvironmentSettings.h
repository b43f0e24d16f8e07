#pragma once

#include "macros/MacroSystem.h"
#include "properties/PropertyValue.h"
#include "properties/Settings.h"

#include <QHash>
#include <deque>
#include <functional>
#include <map>

class EnvironmentSettings;

/// A value in the user's settings. Read once, and answered from memory ever after.
class EnvironmentPropertyValue : public PropertyValue {
public:
    /// Registers the value under the page of its class, unless that is empty or "(Internal)".
    EnvironmentPropertyValue(const PropertyClass* propertyClass, EnvironmentSettings& settings);

    QString propertyValue() const override;
    /// Writes the setting and tells the listener if the text differs from the present one.
    void setPropertyValue(const QString& text) override;

    std::function<void(EnvironmentPropertyValue*)> changed;

private:
    EnvironmentSettings& m_settings;
    mutable bool m_loaded = false;
    mutable QString m_text;
};

/// The settings of the user that are no part of any project, in two files in the user's directories. Both are
/// written when the object goes. The global macros of the macro system live here as long as it exists.
class EnvironmentSettings : private GlobalMacroStore {
public:
    EnvironmentSettings();
    ~EnvironmentSettings() override;
    EnvironmentSettings(const EnvironmentSettings&) = delete;
    EnvironmentSettings& operator=(const EnvironmentSettings&) = delete;

    /// Builds the value of every key; called once, before any value is asked for.
    virtual void createEntries();

    QString readSetting(const PropertyClass& propertyClass) const;
    void writeSetting(const PropertyClass& propertyClass, const QString& text);
    /// Brings both files up to date, and takes what other processes have written. Always true.
    bool saveSettings();

    void registerProperty(const QString& page, PropertyValue* value);
    /// The value of this key; null if there is none.
    PropertyValue* property(const QString& saveName) const { return m_bySaveName.value(saveName); }
    /// The values of a page; null if nothing is registered there.
    const PropertyValueList* page(const QString& name) const;

    std::function<void(const QString& saveName)> settingChanged;

private:
    QStringList read() const override;
    void write(const QStringList& entries) override;

    Settings m_productSettings;
    Settings m_ownerSettings;
    std::deque<PropertyClass> m_classes;
    std::deque<EnvironmentPropertyValue> m_values;
    std::map<QString, PropertyValueList> m_pages;
    QHash<QString, PropertyValue*> m_bySaveName;
};

/// The keys that the builder reads.
namespace EnvironmentKeys {
constexpr const char* globalMacros = "Environment/Macros/Global Macros";
constexpr const char* toolChainRootDirectory = "Environment/Build/Tool Chain Root Directory";
} // namespace EnvironmentKeys

/// The settings of this process; null before `main` makes them and after it has saved them.
extern EnvironmentSettings* environment;
