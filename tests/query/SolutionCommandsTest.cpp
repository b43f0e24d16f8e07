#include "query/SolutionCommands.h"
#include "support/SolutionFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace SolutionCommands;

class Commands : public SolutionFixture {
protected:
    Commands() {
        load("<configuration Name=\"D\" inherited_configurations=\"Base\"/>"
             "<configuration Name=\"Base\" hidden=\"1\" macros=\"X=1\"/>"
             "<project Name=\"p\"><configuration Name=\"Common\" project_type=\"Library\" "
             "project_dependencies=\"q(in);q(in)\"/>"
             "<folder Name=\"d\"><file file_name=\"src/a.c\"><configuration Name=\"Common\" "
             "macros=\"Y=2\"/></file></folder></project>"
             "<solution Name=\"in\"><project Name=\"q\"/></solution>");
    }
    static QString json(const QJsonValue& value) {
        return QString::fromLatin1(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    }
};

TEST_F(Commands, TreeShowsTypesAndKeys) {
    const Answer answer = tree(system);
    EXPECT_EQ(answer.text, "solution app\n"
                           "  project p [Library]\n"
                           "    folder d\n"
                           "      file a.c [C]\n"
                           "  solution in\n"
                           "    project q as q(in)\n");
    EXPECT_EQ(json(answer.json["children"]),
              R"-([[{"children":[{"children":[{"kind":"file","name":"a.c","type":"C"}],"kind":"folder",)-"
              R"-("name":"d"}],"key":"p","kind":"project","name":"p","type":"Library"},{"children":[{"key":)-"
              R"-("q(in)","kind":"project","name":"q"}],"key":"in","kind":"solution","name":"in"}]])-");
}

TEST_F(Commands, SettingsTellWhereTheyComeFrom) {
    const Answer answer =
        settings(system, {{"p", "src/a.c"}, "D", Shown::Applicable, {"macros", "build_quietly"}});
    EXPECT_EQ(answer.text, "macros = \"Y=2;X=1\"\n"
                           "    from file \"a.c\", \"Common\"; solution \"app\", \"Base\"\n"
                           "build_quietly = \"Yes\"\n"
                           "    from default\n");
    EXPECT_EQ(
        json(answer.json[0]),
        R"([{"name":"macros","origins":[{"configuration":"Common","kind":"file","name":"a.c","text":"Y=2"},)"
        R"({"configuration":"Base","kind":"solution","name":"app","text":"X=1"}],"value":"Y=2;X=1"}])");
    EXPECT_EQ(settings(system, {{"p", ""}, "D", Shown::Set, {}}).text,
              "project_dependencies = \"q(in);q(in)\"\n    from project \"p\", \"Common\"\n"
              "macros = \"X=1\"\n    from solution \"app\", \"Base\"\n");
    EXPECT_GE(settings(system, {{"", ""}, "D", Shown::All, {}}).json.toArray().size(), 140);
}

TEST_F(Commands, OthersAnswerFromTheSameTree) {
    EXPECT_EQ(configurations(system, {}).text, "Base (hidden)\nD\n");
    EXPECT_EQ(order(system, {}, "D").text, "q\np after q, q\n");
    EXPECT_TRUE(macros(system, {"p", "a.c"}, "D").text.contains("InputName = \"a\"\n"));
    EXPECT_EQ(macros(system, {"p", "a.c"}, "D").json["X"].toString(), "1");
}

TEST_F(Commands, WhatIsNotThereIsNamed) {
    const auto error = [&](const SettingsRequest& request) {
        try {
            settings(system, request);
        } catch (const QueryError& e) {
            return e.message;
        }
        return QString();
    };
    EXPECT_EQ(error({{"z", ""}, "D", Shown::All, {}}), "can't find project 'z'");
    EXPECT_EQ(error({{"p", "z.c"}, "D", Shown::All, {}}), "can't find file 'z.c'");
    EXPECT_EQ(error({{"", ""}, "D", Shown::All, {"zz"}}), "can't find property 'zz'");
}
