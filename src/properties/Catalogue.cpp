#include "properties/Catalogue.h"

#include "properties/SettingTable.h"

#include <QHash>

// The classes are made of the rows all together at the first question.

namespace {

using SettingTable::Row;

QString textOf(std::u16string_view text) {
    return QString::fromRawData(reinterpret_cast<const QChar*>(text.data()), std::ssize(text));
}

QString textOf(std::string_view text) { return QString::fromLatin1(text.data(), std::ssize(text)); }

PropertyClass makeClass(const Row& row) {
    const SettingTable::Columns& columns = row.columns;
    PropertyClass made(textOf(row.saveName), row.type, columns.minimum, columns.maximum, textOf(row.page),
                       textOf(row.group), textOf(row.shortDescription), textOf(row.longDescription), 0);
    made.setDefault(row.defaultValue.empty() ? QString() : textOf(row.defaultValue));
    if (!columns.values.empty())
        made.setEnumerates(textOf(columns.values).split(u';'));
    if (!columns.suffix.empty())
        made.setSuffix(textOf(columns.suffix));
    made.setPerConfiguration(columns.perConfiguration);
    made.setReadOnly(columns.readOnly);
    return made;
}

std::vector<PropertyClass> makeClasses() {
    std::vector<PropertyClass> made;
    made.reserve(settingCount);
    for (const Row& row : SettingTable::rows)
        made.push_back(makeClass(row));
    return made;
}

/// What one front door knows.
class Catalogue {
public:
    explicit Catalogue(FrontDoor door) {
        std::vector<const Row*> known = SettingTable::knownRows(SettingTable::rows, door);
        for (const Row* row : known)
            m_list.append(&propertyClass(row->setting));
        std::ranges::stable_sort(known, {}, &Row::owner);
        for (const Row* row : known)
            m_byName.insert(propertyClass(row->setting).saveName(), &propertyClass(row->setting));
    }
    const PropertyClassList& list() const { return m_list; }
    const PropertyClass* find(const QString& saveName) const { return m_byName.value(saveName); }

private:
    PropertyClassList m_list;
    QHash<QString, const PropertyClass*> m_byName;
};

const Catalogue& catalogueOf(FrontDoor door) {
    if (door == FrontDoor::Ost) {
        static const Catalogue ost(FrontDoor::Ost);
        return ost;
    }
    static const Catalogue ostmake(FrontDoor::Ostmake);
    return ostmake;
}

} // namespace

const PropertyClass& propertyClass(Setting setting) {
    static const std::vector<PropertyClass> classes = makeClasses();
    return classes[static_cast<size_t>(setting)];
}

const PropertyClassList& catalogue(FrontDoor door) { return catalogueOf(door).list(); }

const PropertyClass* catalogueClass(const QString& saveName, FrontDoor door) {
    return catalogueOf(door).find(saveName);
}
