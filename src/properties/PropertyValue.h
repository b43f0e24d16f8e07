#pragma once

#include "properties/PropertyClass.h"

/// A view of one value of one class in one place. The value is text; typed reads and writes convert.
class PropertyValue {
public:
    explicit PropertyValue(const PropertyClass* propertyClass)
        : m_readOnly(propertyClass && propertyClass->readOnly()), m_propertyClass(propertyClass) {}
    virtual ~PropertyValue() = default;
    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;

    virtual bool readOnly() const { return m_readOnly; }
    /// Whether no value is stated at this place, so that the one in force comes from elsewhere.
    virtual bool inherited() const { return true; }
    virtual void setPropertyValue(const QString& text) = 0;
    /// The text, null if there is none.
    virtual QString propertyValue() const = 0;

    const PropertyClass* propertyClass() const { return m_propertyClass; }
    /// Takes the class and its default as the value. Null changes nothing.
    void setPropertyClass(const PropertyClass* propertyClass);
    void setReadOnly(bool value) { m_readOnly = value; }
    /// Whether the list that holds the value deletes it.
    bool transient() const { return m_transient; }
    void setTransient(bool value) { m_transient = value; }
    bool visible() const { return m_visible; }
    void setVisible(bool value) { m_visible = value; }

    void setValue(const QString& text) { setPropertyValue(text); }
    void setValue(const char* text) { setPropertyValue(QString::fromLatin1(text)); }
    void setValue(const QStringList& entries);
    /// The entry at this index of an enumeration (null text and a warning if there is none), or a number as
    /// the type writes it. Any other type gets a warning and keeps its value.
    void setValue(int value);
    /// Warns if the class is not Boolean, and writes 0 or 1.
    void setValue(bool value);
    void setToDefault() { setPropertyValue(m_propertyClass->defaultValue()); }

    /// The text as it stands, without the default.
    QString toString() const { return propertyValue(); }
    /// The others read the default in the place of an empty text.
    QStringList toStringList(bool keepEmpty) const;
    /// An index into the values of an enumeration or Boolean, else the number, "0x" and "0" in front telling
    /// the base; 0 for what is neither.
    int toInt() const;
    bool toBool() const;

private:
    bool isEnumerated() const {
        return m_propertyClass->type() == PropertyClass::Enumeration ||
               m_propertyClass->type() == PropertyClass::Boolean;
    }
    QString textOrDefault() const;
    void setEnumerated(int index);

    bool m_readOnly;
    bool m_transient = false;
    bool m_visible = true;
    const PropertyClass* m_propertyClass;
};

/// Values in order. Deletes, when it goes, those whose `transient` flag is set, and no others.
class PropertyValueList {
public:
    explicit PropertyValueList(bool transient) : m_transient(transient) {}
    ~PropertyValueList();
    PropertyValueList(PropertyValueList&& other) noexcept
        : m_values(std::move(other.m_values)), m_transient(other.m_transient) {
        other.m_values.clear();
    }
    PropertyValueList(const PropertyValueList&) = delete;
    PropertyValueList& operator=(const PropertyValueList&) = delete;
    PropertyValueList& operator=(PropertyValueList&&) = delete;

    bool transient() const { return m_transient; }
    /// Appends unless there is a value of the same class. A transient value belongs to the list from now on,
    /// and is deleted at once if it was a repeat. Null and a value without a class get a warning.
    void appendUnique(PropertyValue* value);
    /// The value of this class; null if there is none.
    PropertyValue* find(const PropertyClass* propertyClass) const;

    auto begin() const { return m_values.begin(); }
    auto end() const { return m_values.end(); }
    qsizetype size() const { return m_values.size(); }
    bool isEmpty() const { return m_values.isEmpty(); }
    PropertyValue* operator[](qsizetype index) const { return m_values[index]; }

private:
    QList<PropertyValue*> m_values;
    bool m_transient;
};
