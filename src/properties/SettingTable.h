#pragma once

#include "properties/SettingColumns.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <vector>

/// The table of settings, as constant data. Its texts are pointed at, never copied.
namespace SettingTable {

/// Who enters a setting in the catalogue, in the order in which they do.
enum class Owner { Project, Build, Standard, SOBF, MSP430 };

struct Row {
    Setting setting;
    Owner owner;
    PropertyClass::Type type;
    std::u16string_view page;
    std::u16string_view group;
    std::u16string_view saveName;
    std::u16string_view defaultValue;
    std::u16string_view shortDescription;
    std::u16string_view longDescription;
    Columns columns;
};

inline constexpr auto rows = [] {
    std::u16string_view page, group;
    std::array<Row, settingCount> made{};
    size_t next = 0;
#define GROUP(ofPage, ofGroup)                                                                               \
    page = u"" ofPage;                                                                                       \
    group = u"" ofGroup;
#define NAMED_SETTING(enumerator, saveName, owner, type, defaultValue, shortDescription, longDescription,    \
                      ...)                                                                                   \
    made[next++] = {Setting::enumerator,                                                                     \
                    Owner::owner,                                                                            \
                    PropertyClass::type,                                                                     \
                    page,                                                                                    \
                    group,                                                                                   \
                    u"" saveName,                                                                            \
                    u"" defaultValue,                                                                        \
                    u"" shortDescription,                                                                    \
                    u"" longDescription,                                                                     \
                    Columns{__VA_ARGS__}};
#define SETTING(name, ...) NAMED_SETTING(name, #name, __VA_ARGS__)
#include "properties/CatalogueRows.inc"
#undef GROUP
#undef SETTING
#undef NAMED_SETTING
    return made;
}();

/// The rows of the settings that exist for a front door.
constexpr std::vector<const Row*> knownRows(std::span<const Row> of, FrontDoor door) {
    std::vector<const Row*> known;
    for (const Row& row : of) {
        if (!row.columns.onlyOst || door == FrontDoor::Ost)
            known.push_back(&row);
    }
    return known;
}

/// An entry of a column, and the setting in whose row it stands.
template<typename Entry>
struct Placed : Entry {
    Setting setting = {};
};

/// Sorts entries by position; those of the same position stay as they are.
template<typename Entry>
constexpr void sortByPosition(std::vector<Entry>& entries) {
    const auto isBefore = [](const Entry& a, const Entry& b) { return a.position < b.position; };
    for (auto each = entries.begin(); each != entries.end(); ++each)
        std::rotate(std::upper_bound(entries.begin(), each, *each, isBefore), each, each + 1);
}

/// From one position up to, and not including, another.
struct Positions {
    int from = 1;
    int end = std::numeric_limits<int>::max();
};

/// The entries of a column in their order, of the settings that exist for a front door.
template<typename Entry, size_t count>
constexpr std::vector<Placed<Entry>> column(std::span<const Row> of, Entry (Columns::*member)[count],
                                            FrontDoor door, Positions positions = {}) {
    std::vector<Placed<Entry>> entries;
    for (const Row* row : knownRows(of, door)) {
        for (const Entry& entry : row->columns.*member) {
            if (entry.position >= positions.from && entry.position < positions.end)
                entries.push_back({entry, row->setting});
        }
    }
    sortByPosition(entries);
    return entries;
}

/// What `make` returns for a front door, a vector, as constant data.
template<auto make, FrontDoor door>
constexpr auto constants = [] {
    constexpr size_t count = make(door).size();
    std::array<typename decltype(make(door))::value_type, count> made{};
    std::ranges::copy(make(door), made.begin());
    return made;
}();

/// The same for a door that is known when the program runs.
template<auto make>
auto constantsFor(FrontDoor door) {
    using Constants = std::span<const typename decltype(make(door))::value_type>;
    return door == FrontDoor::Ost ? Constants(constants<make, FrontDoor::Ost>)
                                  : Constants(constants<make, FrontDoor::Ostmake>);
}

} // namespace SettingTable
