#include "docgen/SourceBrowserDatabase.h"

namespace {

std::unique_ptr<SourceBrowserMethod> method(const char* name, const QString& argumentType = QString()) {
    auto made = std::make_unique<SourceBrowserMethod>();
    made->setName(name);
    made->declarationFile = "/a.h";
    if (!argumentType.isNull())
        made->addArgument({"x", argumentType, -1});
    return made;
}

} // namespace

TEST(SourceBrowserArgument, IsWrittenAsItIsDeclared) {
    const struct {
        SourceBrowserArgument argument;
        const char* text;
    } rows[] = {
        {{"a", "int", -1}, "int a"},
        {{"a", "int", 3}, "int a"},
        {{"a", "int", 4}, "int a"},
        {{"", "int", -1}, "int"},
        {{"p", "char *", -1}, "char *p"},
        {{"p", "char *", 7}, "char *p"},
        {{"", "char *", -1}, "char *"},
        {{"r", "T &", -1}, "T &r"},
        {{"cb", "int ( * )(int , char * )", 8}, "int ( *cb)(int , char * )"},
        {{"a", "char []", 5}, "char a[]"},
        {{"a", "  unsigned \t long ", -1}, "unsigned long a"},
        {{"", "", -1}, ""},
        {{"", "...", 4}, "..."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.argument.toString().toStdString(), row.text);
}

TEST(SourceBrowserObject, PathFollowsNameAndScope) {
    SourceBrowserVariable variable;
    variable.setName("v");
    EXPECT_EQ(variable.path(), "v");
    variable.setScope("a.b");
    EXPECT_EQ(variable.path(), "a.b.v");
    variable.setName("w");
    EXPECT_EQ(variable.path(), "a.b.w");
}

TEST(SourceBrowserMethod, TextFollowsNameAndArguments) {
    const auto f = method("f");
    EXPECT_EQ(f->asString(), "f ()");
    f->addArgument({"a", "int", -1});
    EXPECT_EQ(f->asString(), "f (int a)");
    f->setName("g");
    EXPECT_EQ(f->asString(), "g (int a)");
}

TEST(SourceBrowserObject, EqualityGoesByKindNameAndArguments) {
    SourceBrowserVariable variable;
    SourceBrowserVariable other;
    variable.setName("f");
    other.setName("f");
    other.setType("int");
    const auto plain = method("f");
    const auto withInt = method("f", "int");
    const auto withChar = method("f", "char");
    const auto again = method("f", "int");
    EXPECT_TRUE(variable.isEqual(other));
    EXPECT_TRUE(withInt->isEqual(*again));
    EXPECT_FALSE(withInt->isEqual(*withChar));
    EXPECT_FALSE(withInt->isEqual(*plain));
    EXPECT_FALSE(plain->isEqual(variable));
    EXPECT_FALSE(SourceBrowserContainer(1).isEqual(SourceBrowserContainer(1)));
}

TEST(SourceBrowserContainer, FilesMethodsByTheirArguments) {
    SourceBrowserContainer container(SourceBrowserObject::Namespace);
    container.setName("n");
    container.addObject(method("f", "int"));
    container.addObject(method("f", "char"));
    container.addObject(method("f", "int"));
    EXPECT_EQ(container.methods().size(), 3U) << "the older one gives way by its text alone";
    EXPECT_EQ(container.getMethod(*method("f", "int")), container.methods().back().get());
    EXPECT_EQ(container.getMethod(*method("f", "long")), nullptr);
    EXPECT_EQ(container.methods().front()->scope(), "n");
    container.removeMethod(*container.methods().front());
    ASSERT_EQ(container.methods().size(), 2U);
    EXPECT_NE(container.getMethod(*method("f", "int")), nullptr);
    container.removeMethod(*container.getMethod(*method("f", "int")));
    EXPECT_EQ(container.getMethod(*method("f", "int")), nullptr);
    EXPECT_EQ(container.methods().front()->arguments().front().type, "char");
}

TEST(SourceBrowserDatabase, HoldsClassesByTheirPath) {
    SourceBrowserDatabase database;
    auto inner = std::make_shared<SourceBrowserContainer>(SourceBrowserObject::Class);
    inner->setName("B");
    inner->setScope("A");
    database.addObject(inner);
    EXPECT_EQ(inner->scope(), "A") << "the root has no path";
    EXPECT_TRUE(database.hasClass("A.B"));
    EXPECT_FALSE(database.hasClass("B"));
    database.removeClass("A.B");
    EXPECT_EQ(database.findClass("A.B"), nullptr);
}

TEST(SourceBrowserDatabase, RemovesOnlyWhatTheFileDeclared) {
    SourceBrowserDatabase database;
    auto byHand = std::make_shared<SourceBrowserContainer>(SourceBrowserObject::Namespace);
    byHand->setName("n");
    database.addObject(byHand);
    database.addObject(method("f"));
    auto both = method("g");
    both->definitionFile = "/b.c";
    both->definitionLine = 3;
    database.addObject(std::move(both));
    database.removeReferences("/none.h");
    EXPECT_EQ(database.methods().size(), 2U);
    EXPECT_NE(database.findScope("n"), nullptr);
    database.removeReferences("/a.h");
    ASSERT_EQ(database.methods().size(), 1U);
    EXPECT_TRUE(database.methods().front()->declarationFile.isEmpty());
    EXPECT_EQ(database.methods().front()->definitionLine, 3);
    database.removeReferences("/b.c");
    EXPECT_TRUE(database.methods().empty());
}
