#pragma once

#include "properties/PropertyClass.h"

#include <span>

/// A key of the user's settings, without its prefix.
struct EnvironmentKey {
    const char* name;
    PropertyClass::Type type;
    const char* defaultValue = nullptr;
};

/// Keys that share a prefix and a place in a settings editor.
struct EnvironmentKeyGroup {
    const char* prefix;
    const char* page; ///< null for none
    const char* group;
    std::span<const EnvironmentKey> keys;
};

/// All keys, in their order.
std::span<const EnvironmentKeyGroup> environmentKeyGroups();
