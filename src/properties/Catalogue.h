#pragma once

#include "properties/PropertyClass.h"

#include <cstddef>

/// Every setting that a project file may state. The enumerator is the save name wherever that is a name of
/// its own.
enum class Setting {
#define GROUP(page, group)
#define SETTING(name, ...) name,
#define NAMED_SETTING(name, ...) name,
#include "properties/CatalogueRows.inc"
#undef GROUP
#undef SETTING
#undef NAMED_SETTING
};

constexpr size_t settingCount = 0
#define GROUP(page, group)
#define SETTING(...) +1
#define NAMED_SETTING(...) +1
#include "properties/CatalogueRows.inc"
#undef GROUP
#undef SETTING
#undef NAMED_SETTING
    ;

/// The programs that build. Each knows all settings but those that the table marks for the other.
enum class FrontDoor { Ostmake, Ost };

/// The class of a setting; lasts as long as the program.
const PropertyClass& propertyClass(Setting setting);

/// The classes that a front door knows, by page and group.
const PropertyClassList& catalogue(FrontDoor door = FrontDoor::Ostmake);

/// The class of this save name; null if there is none that the front door knows. Of several it is the one
/// that was entered last: a library's file name, a dynamic folder's filter.
const PropertyClass* catalogueClass(const QString& saveName, FrontDoor door = FrontDoor::Ostmake);
