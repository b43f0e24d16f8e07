#include "properties/PropertyValue.h"

#include "foundation/Number.h"
#include "macros/MacroSystem.h"

#include <QDebug>

void PropertyValue::setPropertyClass(const PropertyClass* propertyClass) {
    if (!propertyClass)
        return;
    m_propertyClass = propertyClass;
    m_readOnly = propertyClass->readOnly();
    setToDefault();
    m_visible = true;
}

void PropertyValue::setValue(const QStringList& entries) {
    setPropertyValue(MacroSystem::stringFromStringList(entries));
}

void PropertyValue::setValue(int value) {
    switch (m_propertyClass->type()) {
    case PropertyClass::Enumeration:
    case PropertyClass::Boolean:
        setEnumerated(value);
        break;
    case PropertyClass::IntegerHex:
        setPropertyValue(PropertyClass::toHexString(value, m_propertyClass->maximum()));
        break;
    case PropertyClass::Integer:
    case PropertyClass::IntegerRange:
        setPropertyValue(QString::number(value));
        break;
    default:
        qWarning("PropertyValue::setValue(int): Setting a non-integer property");
    }
}

void PropertyValue::setEnumerated(int index) {
    const QStringList& values = m_propertyClass->enumerates();
    if (index < 0 || index >= values.size()) {
        qWarning("PropertyValue::setValue(int): Setting an enumeration to a value which isn't in its "
                 "enumerates");
        setPropertyValue(QString());
        return;
    }
    setPropertyValue(values[index]);
}

void PropertyValue::setValue(bool value) {
    if (m_propertyClass->type() != PropertyClass::Boolean)
        qWarning("PropertyValue::setValue(int): Setting a non-Boolean property");
    setValue(value ? 1 : 0);
}

QString PropertyValue::textOrDefault() const {
    const QString text = propertyValue();
    return text.isEmpty() ? m_propertyClass->defaultValue() : text;
}

QStringList PropertyValue::toStringList(bool keepEmpty) const {
    return MacroSystem::stringListFromString(textOrDefault(), keepEmpty);
}

int PropertyValue::toInt() const {
    const QString text = textOrDefault();
    if (isEnumerated())
        return static_cast<int>(std::max<qsizetype>(m_propertyClass->enumerates().indexOf(text), 0));
    return isBinaryNumber(text) ? 0 : text.toInt(nullptr, 0);
}

bool PropertyValue::toBool() const {
    const QString text = textOrDefault();
    if (const qsizetype index = m_propertyClass->enumerates().indexOf(text); index == 0 || index == 1)
        return index == 1;
    const QString lower = text.toLower();
    return lower == "true" || lower == "yes" || lower == "1";
}

PropertyValueList::~PropertyValueList() {
    for (PropertyValue* value : m_values) {
        if (value->transient())
            delete value;
    }
}

void PropertyValueList::appendUnique(PropertyValue* value) {
    if (!value || !value->propertyClass()) {
        qWarning("Bad property value in PropertyValueList::appendUnique");
        return;
    }
    const PropertyValue* present = find(value->propertyClass());
    if (!present)
        m_values.append(value);
    else if (present != value && value->transient())
        delete value;
}

PropertyValue* PropertyValueList::find(const PropertyClass* propertyClass) const {
    for (PropertyValue* value : m_values) {
        if (value->propertyClass() == propertyClass)
            return value;
    }
    return nullptr;
}
