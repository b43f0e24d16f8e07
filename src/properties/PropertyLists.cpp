#include "properties/PropertyLists.h"

#include "macros/ReleaseConstants.h"
#include "properties/SettingTable.h"

namespace {

using namespace SettingTable;

/// A list within other lists.
struct Part : Place {
    List part;
};

constexpr unsigned withCompilers = Solution | Executable | Library | ObjectFile;

constexpr Part parts[] = {
    {{withCompilers, 50}, CCompiler},
    {{withCompilers, 60}, CppCompiler},
    {{withCompilers, 70}, Assembler},
    {{Solution | Executable, 80}, Linker},
    {{Library, 80}, Archiver},
    {{Executable | External, 90}, Target},
    {{CCompiler, 20}, CCompilerBesideCpp},
    {{CCompiler | Assembler, 100}, Compilers},
};

/// A setting in a list, or a list within a list.
struct Item : Place {
    Setting setting = {};
    List part = {}; ///< none for a setting
};

constexpr std::vector<Item> makeItems(FrontDoor door) {
    std::vector<Item> items;
    for (const Placed<Place>& each : column(rows, &Columns::applies, door))
        items.push_back({each, each.setting, {}});
    for (const Part& each : parts) {
        if (Get_TARGET_CPP() || (each.part != CppCompiler && each.part != CCompilerBesideCpp))
            items.push_back({each, {}, each.part});
    }
    sortByPosition(items);
    return items;
}

struct ProjectType {
    const char* name;
    List list;
};

constexpr ProjectType projectTypes[] = {
    {"Executable", Executable}, {"Library", Library},     {"Object file", ObjectFile},
    {"Staging", Staging},       {"Combining", Combining}, {"Externally Built Executable", External}};

} // namespace

void PropertyLists::append(PropertyClassList& list, List which, FrontDoor door,
                           const AppendPart& appendPart) {
    for (const Item& item : constantsFor<makeItems>(door)) {
        if (!(item.lists & which))
            continue;
        if (item.part)
            appendPart(list, item.part);
        else
            list.appendUnique(&propertyClass(item.setting));
    }
}

List PropertyLists::listOfProject(const QString& projectType) {
    for (const ProjectType& each : projectTypes) {
        if (projectType == QLatin1String(each.name))
            return each.list;
    }
    return {};
}
