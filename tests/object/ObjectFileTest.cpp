#include "object/ObjectFile.h"
#include "object/ObjectBytes.h"
#include "support/MemoryFiles.h"

using ::testing::ElementsAreArray;

namespace {

const std::string smallest("\x08\x01\x13\x26"
                           "dependenciesa.h;b.h"
                           "\x09\x09\x09\x4A\x4E\x00\x21\x4F\x00\x08\x01\x0C\x23\x08\x01\x0C\x07\x23\x51\x66",
                           43);

} // namespace

TEST(ObjectFileTest, DependenciesAreTheEntriesOfTheAttribute) {
    MemoryFiles disk;
    const FilesInPlace place(&disk);
    const std::string module = "09 09 09 4A 4F ";
    const struct {
        std::string contents;
        std::vector<std::string_view> dependencies;
    } cases[] = {
        {smallest, {"a.h", "b.h"}},
        {ObjectBytes::bytes(module + "'dependencies' 'a.h;;b.h;' 51 66"), {"a.h", "b.h"}},
        {ObjectBytes::bytes(module + "'dependencies' '' 51 66"), {}},
        {ObjectBytes::bytes(module + "'dependencies' ';;' 51 66"), {}},
        {ObjectBytes::bytes(module + "'others' 'a.h' 51 66"), {}},
        {ObjectBytes::bytes(module + "'dependencies' '\xE4.h' 51 66 FF"), {"\xE4.h"}},
        {"", {}},
    };
    for (const auto& each : cases) {
        disk.write("a.vko", each.contents);
        const DependencyList found = objectFileDependencies("a.vko");
        EXPECT_THAT(std::vector<std::string_view>(found.begin(), found.end()),
                    ElementsAreArray(each.dependencies));
        EXPECT_EQ(found.isEmpty(), each.dependencies.empty());
    }
}

TEST(ObjectFileTest, MissingOrDamagedObjectIsRefused) {
    MemoryFiles disk;
    const FilesInPlace place(&disk);
    disk.write("bad.vko", "\xFF");
    const struct {
        const char* path;
        const char* refusal;
    } cases[] = {{"none.vko", "can't open file none.vko"}, {"bad.vko", "bad object file: unknown tag"}};
    for (const auto& each : cases) {
        try {
            objectFileDependencies(each.path);
            ADD_FAILURE() << each.path;
        } catch (const HException& exception) {
            EXPECT_EQ(exception.text(), each.refusal);
        }
    }
}
