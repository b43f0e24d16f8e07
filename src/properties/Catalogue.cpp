#include "properties/Catalogue.h"

#include <QHash>
#include <string_view>
#include <vector>

// The rows are constant data, and their texts are pointed at, never copied. The classes are made of them all
// together at the first question.

namespace {

/// Who enters a setting in the catalogue, in the order in which they do.
enum class SettingOwner { Project, Build, Standard, SOBF, MSP430 };

struct Further {
    std::string_view values = {};
    int minimum = 0;
    int maximum = 0;
    std::string_view suffix = {};
    bool perConfiguration = true;
    bool readOnly = false;
};

/// A setting, or with an empty save name the beginning of a group: then the short and the long description
/// are page and group.
struct Row {
    SettingOwner owner;
    PropertyClass::Type type;
    std::u16string_view saveName;
    std::u16string_view defaultValue;
    std::u16string_view shortDescription;
    std::u16string_view longDescription;
    Further further;
};

#define GROUP(page, group) {{}, {}, u"", u"", u"" page, u"" group, {}},
#define NAMED_SETTING(enumerator, saveName, owner, type, defaultValue, shortDescription, longDescription,    \
                      ...)                                                                                   \
    {SettingOwner::owner,  PropertyClass::type, u"" saveName,        u"" defaultValue,                       \
     u"" shortDescription, u"" longDescription, Further{__VA_ARGS__}},
#define SETTING(name, ...) NAMED_SETTING(name, #name, __VA_ARGS__)
constexpr Row rows[] = {
#include "properties/CatalogueRows.inc"
};
#undef GROUP
#undef SETTING
#undef NAMED_SETTING

QString textOf(std::u16string_view text) {
    return QString::fromRawData(reinterpret_cast<const QChar*>(text.data()), std::ssize(text));
}

QString textOf(std::string_view text) { return QString::fromLatin1(text.data(), std::ssize(text)); }

PropertyClass makeClass(const Row& row, const QString& page, const QString& group) {
    PropertyClass made(textOf(row.saveName), row.type, row.further.minimum, row.further.maximum, page, group,
                       textOf(row.shortDescription), textOf(row.longDescription), 0);
    made.setDefault(row.defaultValue.empty() ? QString() : textOf(row.defaultValue));
    if (!row.further.values.empty())
        made.setEnumerates(textOf(row.further.values).split(u';'));
    if (!row.further.suffix.empty())
        made.setSuffix(textOf(row.further.suffix));
    made.setPerConfiguration(row.further.perConfiguration);
    made.setReadOnly(row.further.readOnly);
    return made;
}

struct Catalogue {
    std::vector<PropertyClass> classes; ///< by enumerator
    std::vector<SettingOwner> owners;
    PropertyClassList list;
};

Catalogue makeCatalogue() {
    Catalogue made;
    made.classes.reserve(settingCount);
    made.owners.reserve(settingCount);
    made.list.reserve(settingCount);
    QString page, group;
    for (const Row& row : rows) {
        if (row.saveName.empty()) {
            page = textOf(row.shortDescription);
            group = textOf(row.longDescription);
            continue;
        }
        made.classes.push_back(makeClass(row, page, group));
        made.owners.push_back(row.owner);
        made.list.append(&made.classes.back());
    }
    return made;
}

const Catalogue& theCatalogue() {
    static const Catalogue made = makeCatalogue();
    return made;
}

QHash<QString, const PropertyClass*> makeClassesByName() {
    QHash<QString, const PropertyClass*> made;
    for (const SettingOwner owner : {SettingOwner::Project, SettingOwner::Build, SettingOwner::Standard,
                                     SettingOwner::SOBF, SettingOwner::MSP430}) {
        for (size_t i = 0; i < settingCount; ++i) {
            if (theCatalogue().owners[i] == owner)
                made.insert(theCatalogue().classes[i].saveName(), &theCatalogue().classes[i]);
        }
    }
    return made;
}

} // namespace

const PropertyClass& propertyClass(Setting setting) {
    return theCatalogue().classes[static_cast<size_t>(setting)];
}

const PropertyClassList& catalogue() { return theCatalogue().list; }

const PropertyClass* catalogueClass(const QString& saveName) {
    static const QHash<QString, const PropertyClass*> classes = makeClassesByName();
    return classes.value(saveName);
}
