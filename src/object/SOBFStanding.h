#pragma once

#include "object/SOBFContainers.h"

#include <unordered_map>
#include <vector>

/// The objects of a map from names that a reader of the written map will find in it, in order. An object may
/// have got another name since it was entered; of several that now have one name the last one stands.
template<class Object>
std::vector<Object*> standing(const SOBFNameMap<Object*>& map) {
    std::unordered_map<const HString*, const Object*> last;
    for (const auto& [name, object] : map)
        if (object)
            last[object->getName()] = object;
    std::vector<Object*> result;
    result.reserve(last.size());
    for (const auto& [name, object] : map) {
        const auto entry = object ? last.find(object->getName()) : last.end();
        if (entry == last.end() || entry->second != object)
            continue;
        result.push_back(object);
        last.erase(entry);
    }
    return result;
}
