#pragma once

#include "properties/SettingColumns.h"

#include <functional>

/// Which settings apply where, as the table of settings has it.
namespace PropertyLists {

/// The classes that a tool properties file adds behind the built-in ones.
struct ToolProperties {
    PropertyClassList compiler;
    PropertyClassList linker;
};

/// Appends a list within a list.
using AppendPart = std::function<void(PropertyClassList&, SettingTable::List)>;

/// Appends the settings of a list that the front door knows, in their order and without repeats. Lists within
/// it go through `appendPart`, since layers extend them; those of C++ only where the target has C++.
void append(PropertyClassList& list, SettingTable::List which, FrontDoor door, const AppendPart& appendPart);

/// What a project of this type has, behind what any project has; none for an unknown type.
SettingTable::List listOfProject(const QString& projectType);

} // namespace PropertyLists
