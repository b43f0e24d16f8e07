#pragma once

#include "properties/PropertyClass.h"
#include "xml/XMLPP2.h"

#include <memory>
#include <vector>

/// One value of a group: a reference to a `groupEntry` element, possibly empty. Lasts as long as its file.
class PropertyValueGroupEntry {
public:
    /// A setting that choosing the entry writes. The configuration is null unless the entry names one.
    struct Property {
        QString name;
        QString value;
        QString configuration;
    };

    explicit PropertyValueGroupEntry(const XMLElement* element = nullptr) : m_element(element) {}
    explicit operator bool() const { return m_element != nullptr; }
    const XMLElement* element() const { return m_element; }

    /// What the entry writes, in file order.
    QList<Property> properties() const;
    /// Whether choosing the entry affects compilation.
    bool hasDefines() const;

private:
    const XMLElement* m_element;
};

/// A group: a choice that stands for a set of settings. To the rest of the system it is an enumeration.
class PropertyValueGroupClass : public PropertyClass {
public:
    /// Of a `group` element, whose document must outlast the class.
    explicit PropertyValueGroupClass(const XMLElement* group);

    /// The first entry of this name; empty if there is none.
    PropertyValueGroupEntry getGroupEntry(const QString& name) const;

private:
    const XMLElement* m_group;
};

/// A file of groups, read through the conditional preprocessor.
class PropertyValueGroupFile : public XMLPP2 {
public:
    explicit PropertyValueGroupFile(const QString& name) : m_name(name) {}

    /// False if the file can't be read or holds no element.
    bool load();
    void warning(const QString& message) override;

    const QString& name() const { return m_name; }
    /// The modification time of the file when it was loaded, in nanoseconds.
    qint64 time() const { return m_time; }
    /// The groups, in file order; they belong to the file.
    const QList<const PropertyValueGroupClass*>& classes() const { return m_classes; }
    /// The first group of this name; null if there is none.
    const PropertyValueGroupClass* getGroupClass(const QString& name) const;

private:
    QString m_name;
    qint64 m_time = 0;
    std::vector<std::unique_ptr<PropertyValueGroupClass>> m_owned;
    QList<const PropertyValueGroupClass*> m_classes;
};

/// The group files of the process. A class that was handed out stays valid, also when its file has changed
/// and been read again.
class PropertyValueGroups {
public:
    /// Makes this file current, reading it if it is new or has changed. "None", or a file that can't be read,
    /// leaves no current file.
    void setGroupFile(const QString& path);
    /// The file in force, or null.
    const PropertyValueGroupFile* current() const { return m_current; }
    /// The group of this name in the current file; null if there is none.
    const PropertyValueGroupClass* getGroupClass(const QString& name) const {
        return m_current ? m_current->getGroupClass(name) : nullptr;
    }

private:
    using Files = std::vector<std::unique_ptr<PropertyValueGroupFile>>;

    Files m_loaded;
    Files m_replaced; ///< kept, since classes and values may still refer to them
    const PropertyValueGroupFile* m_current = nullptr;
};

extern PropertyValueGroups propertyValueGroups;
