// What a parser asks of a host that knows names, types and memory.

#include "memorymap/ExpressionParser.h"
#include "memorymap/ParserException.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

namespace {

using T = ExpressionType;

/// A place with a name. Members are places too: "a.x", "a[2]".
class Place : public MarkerType {
public:
    Place(ExpressionParser& host, std::string name) : MarkerType(host), m_name(std::move(name)) {}
    const std::string& name() const { return m_name; }

private:
    std::string m_name;
};

/// A host of places that hold integers. It notes what it is asked.
class Host : public ExpressionParser {
public:
    std::map<std::string, int64_t> values;
    std::string asked;

    T getScopedIdentifier(const std::vector<std::string>& names) override {
        std::string all;
        for (const std::string& name : names)
            all += "::" + name;
        return place(all);
    }
    T getIdentifier(const std::string& name) override { return place(name); }
    T getRegister(const std::string& name) override { return T::ofUnsigned(name == "R4" ? 0xFFFF : 0, 2); }
    bool isUserTypeName(const std::string& name) override { return name == "word" || name == "struct s"; }
    T cast(const BaseType* type, const T& value) override {
        asked += "cast(" + type->dump() + ")";
        return T::ofUnsigned(value.getUInteger(), 1);
    }
    T getDereference(const T& marker, uint64_t offset) override {
        return place(nameOf(marker) + "[" + std::to_string(offset) + "]");
    }
    T getDereference(const T& marker, const std::string& field) override {
        return place(nameOf(marker) + "." + field);
    }
    T getDereference(const T& marker, const std::vector<std::string>& names) override {
        return place(nameOf(marker) + "." + names.at(0) + "::" + names.at(1));
    }
    T getAddressof(const T& marker) override { return T::ofString(std::string("&").append(nameOf(marker))); }
    T getSizeof(const T& marker) override { return T::ofSigned(static_cast<int>(nameOf(marker).size())); }
    T assign(const T& marker, const T& value) override {
        asked += nameOf(marker) + "=" + std::to_string(value.getInteger()) + ";";
        values[nameOf(marker)] = value.getInteger();
        return marker;
    }
    T getValue(const T& marker) override {
        asked += nameOf(marker) + "?";
        return T::ofSigned(values.at(nameOf(marker)));
    }
    T callFunction(const T& marker, const std::vector<T>& arguments) override {
        asked += nameOf(marker) + "()";
        int64_t sum = 0;
        for (const T& argument : arguments)
            sum += argument.fetched().getInteger();
        return T::ofSigned(sum);
    }

private:
    T place(const std::string& name) { return T::ofMarker(std::make_shared<Place>(*this, name)); }
    static std::string nameOf(const T& value) {
        return value.marker() ? dynamic_cast<const Place&>(*value.marker()).name() : value.TypeToString();
    }
};

} // namespace

TEST(ExpressionHost, IsAskedForWhatAnExpressionNames) {
    struct Row {
        const char* text;
        int64_t value;
        const char* asked;
    };
    const Row rows[] = {
        {"a - b", 4, "b?a?"}, // the right one first
        {"-a", -7, "a?"},
        {"!a + 0", 0, "a?"},
        {"1 << b", 8, "b?"},
        {"::a + b::c", 30, "::b::c?::a?"},
        {"s.x + p->y", 9, "p.y?s.x?"},
        {"s.b::c", 6, "s.b::c?"},
        {"v[1+1]", 5, "v[2]?"},
        {"v[b-1]", 5, "b?v[2]?"},
        {"*v", 8, "v[0]?"},
        {"sizeof(s.x)", 3, ""},
        {"@R4 + 1", 0, ""}, // two bytes wrap when they are read
        {"f(a b, 1) * 2", 22, "f()a?b?"},
        {"(char)a", 7, "a?cast(char)"},
        {"(word*)a", 7, "a?cast(word*)"},
        {"(const word)a", 7, "a?cast(word)"},
        {"(struct s[2])a", 7, "a?cast(struct s[2])"},
        {"(unsigned)-1", 255, "cast(unsigned int)"},
        {"a = b", 3, "b?a=3;"},
        {"a += b", 10, "b?a?a=10;"},
        {"a <<= 1", 14, "a?a=14;"},
        {"++a", 8, "a?a=8;"},
        {"a--", 6, "a?a=6;"},
        {"a = b = 1", 1, "b?a=3;a=1;"}, // to the left, as all operators
        {"s.x = v[2]", 5, "v[2]?s.x=5;"},
    };
    for (const Row& row : rows) {
        Host host;
        host.values = {{"a", 7},   {"b", 3},    {"::a", 10}, {"::b::c", 20}, {"s.x", 4},
                       {"p.y", 5}, {"v[2]", 5}, {"v[0]", 8}, {"s.b::c", 6}};
        ExpressionType value = host.parseAndEvaluate(row.text);
        const bool isAssigned = host.asked.ends_with(';');
        const std::string asked = host.asked;
        value = value.fetched();
        EXPECT_EQ(value.kind() == T::Signed ? value.getInteger() : static_cast<int64_t>(value.getUInteger()),
                  row.value)
            << row.text;
        EXPECT_EQ(isAssigned ? asked : host.asked, row.asked) << row.text;
    }
}

TEST(ExpressionHost, MarkersStayUntilTheyAreNeeded) {
    Host host;
    host.values = {{"a", 7}};
    const ExpressionType place = host.parseAndEvaluate("a");
    EXPECT_STREQ(place.TypeToString(), "marker");
    EXPECT_FALSE(place.isNumberType());
    EXPECT_EQ(place.getUInteger(), 0u);
    EXPECT_EQ(host.asked, "");
    EXPECT_EQ(place.fetched().getInteger(), 7);
    EXPECT_EQ(host.parseAndEvaluate("&a").text(), "&a");
}

TEST(ExpressionHost, MarkerOfAMarkerIsNoNumber) {
    class Endless : public Host {
        T getValue(const T& marker) override { return marker; }
    } host;
    for (const char* text : {"a + 1", "1 + a", "-a", "!a"})
        EXPECT_THROW(host.parseAndEvaluate(text), ParserException) << text;
}

TEST(ExpressionHost, OwnFieldsOfTypesAreTold) {
    class Types : public Host {
        T cast(const BaseType* type, const T&) override {
            if (const auto* structure = dynamic_cast<const StructType*>(type)) {
                for (const StructType::Field& field : structure->fields())
                    asked += field.type->dump() + "/" + field.name + "/" + std::to_string(field.bits) + " ";
            } else if (const auto* fields = dynamic_cast<const RegisterType*>(type)) {
                asked += std::to_string(fields->size());
                for (const RegisterType::Field& field : fields->fields())
                    asked += " " + field.name + "@" + std::to_string(field.bitOffset) + ":" +
                             std::to_string(field.bitSize);
            } else if (const auto* array = dynamic_cast<const ArrayType*>(type)) {
                asked += array->of().dump() + " x " + std::to_string(array->length().evaluate().getInteger());
            } else if (const auto* simple = dynamic_cast<const SimpleType*>(type)) {
                asked += std::to_string(simple->size()) + (simple->isUnsigned() ? "u" : "");
            }
            return {};
        }
    };
    struct Row {
        const char* text;
        const char* asked;
    };
    const Row rows[] = {
        {"(struct { unsigned char a : 3; long; word w; })0", "unsigned char/a/3 long//0 word/w/0 "},
        {"(register 2 IE 0 1 DIV 4 2;)0", "2 IE@0:1 DIV@4:2"},
        {"(int*[1<<2])0", "int* x 4"},
        {"(char)0", "0"},
        {"(unsigned short int)0", "1u"},
        {"(signed)0", "2"},
        {"(unsigned)0", "2u"},
        {"(long unsigned)0", "3u"},
        {"(long volatile long)0", "4"},
    };
    for (const Row& row : rows) {
        Types host;
        host.parseAndEvaluate(row.text);
        EXPECT_EQ(host.asked, row.asked) << row.text;
    }
}
