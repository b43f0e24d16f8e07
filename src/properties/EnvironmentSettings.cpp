#include "properties/EnvironmentSettings.h"

#include "macros/QTx.h"
#include "macros/ReleaseConstants.h"
#include "macros/SystemMacros.h"
#include "properties/EnvironmentKeys.h"

EnvironmentSettings* environment = nullptr;

EnvironmentPropertyValue::EnvironmentPropertyValue(const PropertyClass* propertyClass,
                                                   EnvironmentSettings& settings)
    : PropertyValue(propertyClass), m_settings(settings) {
    if (!propertyClass->page().isEmpty() && propertyClass->page() != "(Internal)")
        settings.registerProperty(propertyClass->page(), this);
}

QString EnvironmentPropertyValue::propertyValue() const {
    if (!m_loaded) {
        m_text = m_settings.readSetting(*propertyClass());
        m_loaded = true;
    }
    return m_text;
}

void EnvironmentPropertyValue::setPropertyValue(const QString& text) {
    const bool differs = text != propertyValue();
    m_text = text;
    if (!differs)
        return;
    m_settings.writeSetting(*propertyClass(), text);
    if (changed)
        changed(this);
}

EnvironmentSettings::EnvironmentSettings() {
    m_productSettings.setPath(QString(tarnLocalDataDir() + "/settings.xml"));
    m_ownerSettings.setPath(QString(QTx::userLocalAppDataDirectory(Get_OWNER()) + "/settings.xml"));
    macroSystem.setGlobalMacroStore(this);
}

EnvironmentSettings::~EnvironmentSettings() { macroSystem.setGlobalMacroStore(nullptr); }

void EnvironmentSettings::createEntries() {
    for (const EnvironmentKeyGroup& group : environmentKeyGroups()) {
        const QString page = QString::fromLatin1(group.page);
        const QString groupName = QString::fromLatin1(group.group);
        for (const EnvironmentKey& key : group.keys) {
            const QString name = QString::fromLatin1(key.name);
            m_classes.emplace_back(group.prefix + name, key.type, page, groupName, name, QString(),
                                   QString::fromLatin1(key.defaultValue));
            m_values.emplace_back(&m_classes.back(), *this);
            if (!m_bySaveName.contains(m_classes.back().saveName()))
                registerProperty(page, &m_values.back());
        }
    }
}

QString EnvironmentSettings::readSetting(const PropertyClass& propertyClass) const {
    return m_productSettings.readEntry(propertyClass.saveName(), propertyClass.defaultValue());
}

void EnvironmentSettings::writeSetting(const PropertyClass& propertyClass, const QString& text) {
    m_productSettings.writeEntry(propertyClass.saveName(), text);
    if (settingChanged)
        settingChanged(propertyClass.saveName());
}

bool EnvironmentSettings::saveSettings() {
    m_productSettings.sync();
    m_ownerSettings.sync();
    return true;
}

void EnvironmentSettings::registerProperty(const QString& page, PropertyValue* value) {
    m_pages.try_emplace(page, false).first->second.appendUnique(value);
    m_bySaveName.insert(value->propertyClass()->saveName(), value);
}

const PropertyValueList* EnvironmentSettings::page(const QString& name) const {
    const auto found = m_pages.find(name);
    return found == m_pages.end() ? nullptr : &found->second;
}

QStringList EnvironmentSettings::read() const {
    const PropertyValue* value = property(EnvironmentKeys::globalMacros);
    return value ? value->toStringList(false) : QStringList();
}

void EnvironmentSettings::write(const QStringList& entries) {
    if (PropertyValue* value = property(EnvironmentKeys::globalMacros))
        value->setValue(entries);
}
