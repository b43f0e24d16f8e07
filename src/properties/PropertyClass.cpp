#include "properties/PropertyClass.h"

#include "xml/XMLNode.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<const char*, PropertyClass::Custom + 1> typeNames = {
    "Boolean",     "Integer",      "IntegerHex", "IntegerRange",   "String",
    "FileName",    "ProjFileName", "StringList", "DirPath",        "DirPathList",
    "Enumeration", "Color",        "Font",       "FixedPitchFont", "Custom"};

const QString& no() {
    static const QString text = QStringLiteral("No");
    return text;
}

const QString& yes() {
    static const QString text = QStringLiteral("Yes");
    return text;
}

const QStringList& noAndYes() {
    static const QStringList values = {no(), yes()};
    return values;
}

/// The type of this name; Boolean if there is none.
PropertyClass::Type typeNamed(const QString& name) {
    const auto found =
        std::find_if(typeNames.begin(), typeNames.end(), [&](const char* each) { return name == each; });
    return found == typeNames.end() ? PropertyClass::Boolean
                                    : static_cast<PropertyClass::Type>(found - typeNames.begin());
}

} // namespace

PropertyClass::PropertyClass(const QString& saveName, Type type, int minimum, int maximum,
                             const QString& page, const QString& group, const QString& shortDescription,
                             const QString& longDescription, int defaultValue)
    : PropertyClass(saveName, type, page, group, shortDescription, longDescription,
                    type == IntegerHex ? toHexString(defaultValue, maximum) : QString::number(defaultValue)) {
    m_minimum = minimum;
    m_maximum = maximum;
}

PropertyClass::PropertyClass(const QString& saveName, Type type, const QString& page, const QString& group,
                             const QString& shortDescription, const QString& longDescription,
                             const QString& defaultValue)
    : m_saveName(saveName),
      m_group(group),
      m_shortDescription(shortDescription),
      m_longDescription(longDescription),
      m_defaultValue(type == Boolean && defaultValue.isNull() ? no() : defaultValue),
      m_page(page),
      m_type(type) {}

PropertyClass::PropertyClass(const QString& saveName, Type type, const QStringList& enumerates,
                             const QString& page, const QString& group, const QString& shortDescription,
                             const QString& longDescription, const QString& defaultValue)
    : PropertyClass(saveName, type, page, group, shortDescription, longDescription, defaultValue) {
    m_enumerates = enumerates;
}

PropertyClass::PropertyClass(const QString& saveName, const QString& page, const QString& group,
                             const QString& shortDescription, const QString& longDescription,
                             bool defaultValue)
    : PropertyClass(saveName, Boolean, noAndYes(), page, group, shortDescription, longDescription,
                    defaultValue ? yes() : no()) {}

PropertyClass::PropertyClass(const QString& saveName, Type type) : m_saveName(saveName), m_type(type) {}

PropertyClass::PropertyClass(const QString& saveName, Type type, int minimum, int maximum)
    : m_saveName(saveName), m_type(type), m_minimum(minimum), m_maximum(maximum) {}

PropertyClass::PropertyClass(const XMLElement* descriptor)
    : m_saveName(descriptor->attributeText("name")),
      m_group(descriptor->attributeText("group")),
      m_shortDescription(descriptor->attributeText("short")),
      m_longDescription(descriptor->attributeText("long")),
      m_defaultValue(descriptor->attributeText("default")),
      m_specialValueText(descriptor->attributeText("specialvalue")),
      m_type(typeNamed(descriptor->attributeText("type"))),
      m_enumerates(descriptor->attributeText("enumeration").split(u';', Qt::SkipEmptyParts)),
      m_minimum(static_cast<int>(descriptor->attributeText("minimum").toUInt())),
      m_maximum(static_cast<int>(descriptor->attributeText("maximum").toUInt())) {}

const QStringList& PropertyClass::enumerates() const {
    return m_type == Boolean && m_enumerates.isEmpty() ? noAndYes() : m_enumerates;
}

const char* PropertyClass::typeName(Type type) { return typeNames[type]; }

QString PropertyClass::toHexString(int value, int maximum) {
    const qsizetype width = QString::number(static_cast<uint>(maximum), 16).size();
    return "0x" + QString::number(static_cast<uint>(value), 16).rightJustified(width, u'0');
}
