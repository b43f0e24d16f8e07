#include "properties/SettingTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace SettingTable;
using testing::ElementsAre;
using testing::IsEmpty;
using enum Setting;

Row row(Setting setting, const Columns& columns) {
    Row made = rows[0];
    made.setting = setting;
    made.columns = columns;
    return made;
}

const Row table[] = {
    row(name, Columns{.applies = {{Linker, 30}, {Target, 10}}}),
    row(filter, Columns{.applies = {{Linker, 20}}}),
    row(macros, Columns{.onlyOst = true,
                        .applies = {{Linker, 20}},
                        .words = {{Link, 10, word("-w")}},
                        .outdates = {{Link, 10}}}),
    row(file_type, Columns{.applies = {{Linker, 20}}}),
};

template<typename Entry, size_t count>
std::vector<Setting> order(Entry (Columns::*member)[count], FrontDoor door, Positions positions = {}) {
    std::vector<Setting> settings;
    for (const Placed<Entry>& each : column(table, member, door, positions))
        settings.push_back(each.setting);
    return settings;
}

TEST(SettingTable, PositionsOrderAColumnAndRowsWhatHasTheSame) {
    EXPECT_THAT(order(&Columns::applies, FrontDoor::Ost), ElementsAre(name, filter, macros, file_type, name));
    EXPECT_THAT(order(&Columns::applies, FrontDoor::Ost, {.from = 10, .end = 20}), ElementsAre(name));
}

TEST(SettingTable, NothingOfARowThatOnlyOstKnowsExistsForOstmake) {
    EXPECT_THAT(order(&Columns::applies, FrontDoor::Ostmake), ElementsAre(name, filter, file_type, name));
    EXPECT_THAT(order(&Columns::words, FrontDoor::Ostmake), IsEmpty());
    EXPECT_THAT(order(&Columns::outdates, FrontDoor::Ostmake), IsEmpty());
    EXPECT_EQ(knownRows(table, FrontDoor::Ostmake).size(), 3u);
    EXPECT_THAT(order(&Columns::words, FrontDoor::Ost), ElementsAre(macros));
}

} // namespace
