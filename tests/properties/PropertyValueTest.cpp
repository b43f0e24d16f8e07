#include "properties/PropertyValue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace {

using testing::ElementsAre;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// A value in memory.
class MemoryValue : public PropertyValue {
public:
    explicit MemoryValue(const PropertyClass* propertyClass, const QString& stored = QString())
        : PropertyValue(propertyClass), text(stored) {}
    void setPropertyValue(const QString& value) override { text = value; }
    QString propertyValue() const override { return text; }
    QString text;
};

const PropertyClass boolean("b", "page", "group", "short", "long", true);
const PropertyClass integer("i", PropertyClass::Integer, 0, 0, "", "", "", "", 7);
const PropertyClass hex("h", PropertyClass::IntegerHex, 0, 0xffff, "", "", "", "", 0x1f);
const PropertyClass choice("e", PropertyClass::Enumeration, {"one", "two", "three"}, "", "", "", "", "two");
const PropertyClass list("l", PropertyClass::StringList, "", "", "", "", "x;y");

TEST(PropertyClass, HexadecimalTextIsAsWideAsTheMaximum) {
    const std::vector<std::tuple<int, int, const char*>> cases = {
        {5, 0xffff, "0x0005"}, {0x12345, 0xff, "0x12345"}, {0, 0, "0x0"},        {15, 0xf, "0xf"},
        {15, 0x10, "0x0f"},    {-1, 0, "0xffffffff"},      {1, -1, "0x00000001"}};
    for (const auto& [value, maximum, text] : cases)
        EXPECT_EQ(PropertyClass::toHexString(value, maximum), text);
}

TEST(PropertyClass, ConstructorsSetDefaultsOfTheirType) {
    EXPECT_EQ(boolean.defaultValue(), "Yes");
    EXPECT_EQ(integer.defaultValue(), "7");
    EXPECT_EQ(hex.defaultValue(), "0x001f");
    EXPECT_EQ(PropertyClass("n", PropertyClass::Boolean, "", "", "", "", QString()).defaultValue(), "No");
    EXPECT_TRUE(PropertyClass("n", PropertyClass::String, "", "", "", "", QString()).defaultValue().isNull());
    EXPECT_TRUE(PropertyClass("n", PropertyClass::Boolean).defaultValue().isNull());
    const PropertyClass range("n", PropertyClass::IntegerRange, -1, 9);
    EXPECT_TRUE(range.minimum() == -1 && range.maximum() == 9 && range.defaultValue().isNull());
    EXPECT_THAT(PropertyClass("n", PropertyClass::Boolean).enumerates(),
                ElementsAre(QString("No"), QString("Yes")));
}

TEST(PropertyValue, TypedReads) {
    struct Case {
        const PropertyClass& propertyClass;
        const char* text;
        int number;
        bool truth;
    };
    const std::vector<Case> cases = {
        {boolean, nullptr, 1, true},        {boolean, "", 1, true},       {boolean, "No", 0, false},
        {boolean, "TRUE", 0, true},         {boolean, "on", 0, false},    {boolean, "1", 0, true},
        {choice, nullptr, 1, true},         {choice, "three", 2, false},  {choice, "none of them", 0, false},
        {integer, nullptr, 7, false},       {integer, "0x10", 16, false}, {integer, "010", 8, false},
        {integer, "-3", -3, false},         {integer, "12x", 0, false},   {integer, "0b11", 0, false},
        {integer, "99999999999", 0, false}, {hex, "0xBb", 0xbb, false},   {integer, "1", 1, true},
    };
    for (const Case& each : cases) {
        const MemoryValue value(&each.propertyClass, each.text ? QString(each.text) : QString());
        EXPECT_EQ(value.toInt(), each.number) << (each.text ? each.text : "(null)");
        EXPECT_EQ(value.toBool(), each.truth) << (each.text ? each.text : "(null)");
        EXPECT_EQ(value.toString().isNull(), each.text == nullptr);
    }
}

TEST(PropertyValue, ListsFallBackToTheDefaultAndKeepEmptyEntriesOnRequest) {
    EXPECT_THAT(MemoryValue(&list, "a;;b").toStringList(false), ElementsAre(QString("a"), QString("b")));
    EXPECT_EQ(MemoryValue(&list, "a;;b").toStringList(true).size(), 3);
    EXPECT_EQ(MemoryValue(&list, "").toStringList(false).size(), 2);
}

TEST(PropertyValue, TypedWritesMakeTheTextOfTheType) {
    const auto written = [](const PropertyClass& propertyClass, auto argument) {
        MemoryValue value(&propertyClass);
        value.setValue(argument);
        return value.text;
    };
    EXPECT_EQ(written(boolean, true), "Yes");
    EXPECT_EQ(written(boolean, 0), "No");
    EXPECT_EQ(written(choice, 2), "three");
    EXPECT_EQ(written(integer, -5), "-5");
    EXPECT_EQ(written(hex, 255), "0x00ff");
    EXPECT_EQ(written(list, QStringList({"a;b", "c\\"})), "a\\;b;c\\\\");
    EXPECT_EQ(written(list, "as it is"), "as it is");
}

TEST(PropertyValue, WritesThatDontFitWarn) {
    MemoryValue chosen(&choice, "one");
    CaptureStderr();
    chosen.setValue(3);
    EXPECT_EQ(GetCapturedStderr(),
              "PropertyValue::setValue(int): Setting an enumeration to a value which isn't in "
              "its enumerates\n");
    EXPECT_TRUE(chosen.text.isNull());

    MemoryValue text(&list, "kept");
    CaptureStderr();
    text.setValue(true);
    EXPECT_EQ(GetCapturedStderr(), "PropertyValue::setValue(int): Setting a non-Boolean property\n"
                                   "PropertyValue::setValue(int): Setting a non-integer property\n");
    EXPECT_EQ(text.text, "kept");
}

TEST(PropertyValue, TakingAClassTakesItsDefaultAndItsMark) {
    PropertyClass fixed("f", PropertyClass::String, "", "", "", "", "start");
    fixed.setReadOnly(true);
    MemoryValue value(&list, "old");
    value.setPropertyClass(nullptr);
    EXPECT_EQ(value.text, "old");
    value.setPropertyClass(&fixed);
    EXPECT_EQ(value.text, "start");
    EXPECT_TRUE(value.readOnly());
}

TEST(PropertyValueList, DeletesTransientValuesAndNoOthers) {
    MemoryValue kept(&choice);
    auto* taken = new MemoryValue(&list);
    auto* repeat = new MemoryValue(&list);
    taken->setTransient(true);
    repeat->setTransient(true);
    PropertyValueList values(false);
    for (PropertyValue* value : std::initializer_list<PropertyValue*>{&kept, taken, taken, repeat})
        values.appendUnique(value);
    EXPECT_THAT(std::vector<PropertyValue*>(values.begin(), values.end()), ElementsAre(&kept, taken));
    EXPECT_EQ(values.find(&list), taken);
    EXPECT_EQ(values.find(&integer), nullptr);
}

TEST(PropertyValueList, RefusesNothingWithAWarning) {
    PropertyValueList values(true);
    MemoryValue classless(nullptr);
    CaptureStderr();
    values.appendUnique(nullptr);
    values.appendUnique(&classless);
    EXPECT_EQ(GetCapturedStderr(), "Bad property value in PropertyValueList::appendUnique\n"
                                   "Bad property value in PropertyValueList::appendUnique\n");
    EXPECT_TRUE(values.isEmpty());
}

} // namespace
