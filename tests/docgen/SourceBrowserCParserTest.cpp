#include "Scan.h"
#include "support/MemoryFiles.h"

#include <chrono>

namespace {

std::string scan(std::string_view header) { return Scan(header).dump(); }

struct Row {
    const char* header;
    const char* declared;
};

template<size_t size>
void expectRows(const Row (&rows)[size]) {
    for (const Row& row : rows)
        EXPECT_EQ(scan(row.header), row.declared) << row.header;
}

std::string comment(const SourceBrowserObject* object) {
    return object ? Scan::bytes(object->comment) : "not found";
}

class Log : public BuildLog {
public:
    void openGroup(const QString& title) override { text += title + ":"; }
    void closeGroup() override { text += "."; }
    void diagnostic(const QString& what, int line) override {
        text += " " + QString::number(line) + " " + what + ";";
    }
    QString text;
};

} // namespace

TEST(SourceBrowserCParser, Variables) {
    const Row rows[] = {
        {"int a;", "int|a"},
        {"unsigned long a;", "unsigned long|a"},
        {"const char *p;", "char *|p"},
        {"char *const p;", ""},
        {"extern volatile int a;", "int|a"},
        {"static int a;", "static int|a"},
        {"static int a; int b;", "static int|a; int|b"},
        {"static enum e a; int b;", "int|b"},
        {"const enum e a; volatile static int b;", "e|a; int|b"},
        {"int a = 1;", "int|a"},
        {"int a[] = {1, 2}; int b;", "int []|a; int|b"},
        {"int a = f({;}, 2); int b;", "int|a; int|b"},
        {"char a[10];", "char []|a"},
        {"char a[2][N];", "char [][]|a"},
        {"int a, *b;", "int|a; int *|b"},
        {"unsigned int a[2], **b, c;", "unsigned int []|a; unsigned int **|b; unsigned int|c"},
        {"int *a, b = 1, c;", "int *|a; int|b"},
        {"unsigned x : 3;", "unsigned|x"},
        {"unsigned : 3;", ""},
        {"int;", ""},
        {"x;", ""},
        {"vector<int> v;", "vector<int>|v"},
        {"map<unsigned char, list<int>> m;", "map<unsigned char, list<int>>|m"},
        {"std::string s;", "std :: string|s"},
        {"int A::s;", ""},
        {"int A::s = 1;", ""},
        {"a < b; int c;", "int|c"},
        {"int a", ""},
        {"int x{3}; int y;", "int|y"},
        {"__attribute__((aligned(2))) int a __attribute__((used));", "int|a"},
        {"int a; int b; char a;", "int|b; char|a"},
    };
    expectRows(rows);
}

TEST(SourceBrowserCParser, Functions) {
    const Row rows[] = {
        {"int f();", "int|f ()"},
        {"int f(void);", "int|f ()"},
        {"int f(void *p);", "int|f (void *p)"},
        {"f();", "|f ()"},
        {"static inline const char *f(int a, unsigned char b);", "static char *|f (int a, unsigned char b)"},
        {"int f(int, char *);", "int|f (int, char *)"},
        {"int f(const char *fmt, ...);", "int|f (char *fmt, ...)"},
        {"int f(char a[10], const int b[2][3]);", "int|f (char a[], int [b][])"},
        {"char const *volatile *f(char const volatile *p);", "char  *  *|f (char *p)"},
        {"int f(struct s *p, unsigned const n);", "int|f (s *p, unsigned n)"},
        {"int f(int (*cb)(int n, char *s));", "int|f (int ( *cb)(int , char * ))"},
        {"int f(int (*cb)(void), int (*v)(int a[3]));", "int|f (int ( *cb)(), int ( *v)(int [ ] ))"},
        {"int f(void (*cb)(unsigned char c, unsigned long *n));",
         "int|f (void ( *cb)(unsigned , unsigned * ))"},
        {"int f(int (*)(void));", "int|f (int ( *)())"},
        {"int f(int (a));", "int|f (int a)"},
        {"int f(T &r, T *&q);", "int|f (T &r, T * &q)"},
        {"int f(int a = 1, int b = g(1, {2, 3}), int c = {4});", "int|f (int a, int b, int c)"},
        {"int f(vector<int> v);", "int|f (vector < int > v)"},
        {"int f(int a) { return g(); } int h();", "int|f (int a); int|h ()"},
        {"int f(int a) { \"}\"; '}'; /* } */ // }\n } int h();", "int|f (int a); int|h ()"},
        {"void __interrupt(4) isr(void);", "void|isr ()"},
        {"void asm f(void); asm(\"f(x)\"); __monitor int g(void);", "void|f (); int|g ()"},
        {"int f(void) throw(int) { } int g();", "int|f (); int|g ()"},
        {"int f(void) noexcept; int g() pure { } int h();", "int|f (); int|g (); int|h ()"},
        {"int f(int a); int f(char a); int f(int a) { }", "int|f (char a); int|f (int a)"},
        {"template <class T, int n = 3> T *f(T a);", "T *|f (T a)"},
        {"template <class T> template <class U> int f();", "int|f ()"},
        {"template class A<int>; int f();", "int|f ()"},
        {"void f<int>(int);", "void|f<int> (int)"},
        {"bool operator==(A a, B b);", "bool|operator== (A a, B b)"},
        {"bool operator<(A a, A b); bool operator<=(A a, A b);",
         "bool|operator< (A a, A b); bool|operator<= (A a, A b)"},
        {"A operator,(A a, A b);", "A|operator, (A a, A b)"},
        {"void *operator new[](unsigned n);", "void *|operator new[] (unsigned n)"},
        {"struct point f(int); struct point *g(int);", "point|f (int); |g (int)"},
        {"std::string f(std::string s);", "std :: string|f (std :: string s)"},
        {"extern \"C\" int f(); extern \"C\" { int g(); } int h();", "int|f (); int|g (); int|h ()"},
        {"MACRO(x)\nclass A {};", "|MACRO (x); class A{}"},
        {"(*f)(int);", ""},
        {"int f(", "int|f ()"},
        {"int f(int a", "int|f (int)"},
        {"int f(int a;", "int|f (int a)"},
    };
    expectRows(rows);
}

TEST(SourceBrowserCParser, TypesHoldTheNamesPlace) {
    Scan header("int f(int (*cb)(int n, char *s), int a, char *b[]);");
    ASSERT_TRUE(header.method("f"));
    const auto& arguments = header.method("f")->arguments();
    ASSERT_EQ(arguments.size(), 3U);
    EXPECT_EQ(arguments[0].name, "cb");
    EXPECT_EQ(arguments[0].type, "int ( * )(int , char * )");
    EXPECT_EQ(arguments[0].namePos, 8);
    EXPECT_EQ(arguments[1].namePos, 4) << "past the end of \"int\"";
    EXPECT_EQ(arguments[2].type, "char * []");
    EXPECT_EQ(arguments[2].namePos, 7);
}

TEST(SourceBrowserCParser, StructsAndUnions) {
    const Row rows[] = {
        {"struct s;", ""},
        {"struct s *p;", ""},
        {"struct s v;", ""},
        {"struct s { int a; } v;", "struct s{int|a}"},
        {"struct s { int a; }; struct s v; int b;", "int|b; struct s{int|a}"},
        {"struct { int a; } v;", "struct (Anonymous){int|a}"},
        {"struct s { struct t { int a; } t; int b; };", "struct s{int|b; struct t{int|a}}; struct t{int|a}"},
        {"struct s { union { int a; int b; } u; int c; };", "struct s{int|c}"},
        {"union u { int a; }; int b;", "int|b"},
        {"union u { struct s { int a; } t; };", "struct s{int|a}"},
        {"struct __attribute__((packed)) s { int a; };", "struct s{int|a}"},
        {"struct EXPORT s final : b { int a; };", "struct s : 4 b{int|a}"},
        {"struct s { int a; }; struct s { int b; };", "struct s{int|b}"},
        {"typedef unsigned word;", ""},
        {"typedef int (*callback)(struct s *);", ""},
        {"typedef struct tag *p;", ""},
        {"typedef struct tag t;", ""},
        {"typedef struct tag { int a; } name;", "struct name{int|a}"},
        {"typedef struct { int a; } name, *pointer; int b;", "int|b; struct name{int|a}"},
        {"typedef struct tag { int a; } *p;", "struct tag{int|a}"},
        {"typedef struct { int a; } *p;", ""},
        {"typedef const volatile struct { int a; } name;", "struct name{int|a}"},
        {"typedef union { int a; char b; } name;", "struct name{int|a; char|b}"},
        {"typedef struct { const int a; enum { A, B } e; int f(int), *b; struct { int c; } in; struct x y; } "
         "n;",
         "struct n{int|a; int|f (int); struct in{int|c}}"},
        {"typedef enum { A, B } e; enum f { C } g; enum h; int a;", "int|a"},
        {"enum e f(int a) { int b; } int g();", "int|g ()"},
        {"struct s { int a; ", "struct s{int|a}"},
        {"typedef struct { int a; ", ""},
    };
    expectRows(rows);
}

TEST(SourceBrowserCParser, Classes) {
    const Row rows[] = {
        {"class A;", ""},
        {"class A { int a; };", "class A{int|a}"},
        {"class A : public B, protected C<int, D>, virtual private E, F::G { };",
         "class A : 1 B, 2 C<int, D>, 4 E, 4 F::G{}"},
        {"class A { A(); ~A(); explicit A(int a) : m(a) { } int m; };",
         "class A{int|m; |A (); explicit|A (int a)}"},
        {"class A { virtual int f() const = 0; static int g(); int h() const { } };",
         "class A{virtual int|f () const; static int|g (); int|h () const}"},
        {"class A { int f(); virtual int f(); };", "class A{virtual int|f ()}"},
        {"class A { Q_OBJECT Q_PROPERTY(int x READ x) public slots: int a; signals: void b(); };",
         "class A{int|a; void|b ()}"},
        {"class A { enum E { X } e; typedef int t; friend class B; friend int f(); int a; };",
         "class A{int|a; int|f ()}"},
        {"class A { union { int a; }; struct { int b; } s; int c; };",
         "struct (Anonymous){int|b}; class A{int|c; struct (Anonymous){int|b}}"},
        {"class A { class B { int a; }; int b; }; class C { class B { }; };",
         "class A{int|b; class B{int|a}}; class A.B{int|a}; class C{class B{}}; class C.B{}"},
        {"class A::B { };", "class A.B{}"},
        {"class A { int a; }; class A { int b; };", "class A{int|a; int|b}"},
        {"class A { class B; }; class A::B { int a; };", "class A{}; class A.B{int|a}"},
        {"class A { template <class T> T f(T t); operator bool() const; A &operator=(const A &a); };",
         "class A{T|f (T t); |bool () const; A &|operator= (A &a)}"},
        {"class A { MACRO(x) };int b;", "int|b; class A{|MACRO (x)}"},
        {"class A { int a{1}; int f() noexcept override { } int b; };", "class A{int|b; int|f ()}"},
        {"template <> struct h<A> { int a; }; int b;", "int|b"},
        {"enum class E : int { A }; int b;", "int|b"},
    };
    expectRows(rows);
}

TEST(SourceBrowserCParser, Namespaces) {
    const Row rows[] = {
        {"namespace n { int a; class C { }; struct s { }; } int b;",
         "int|b; struct s{}; class n.C{}; namespace n{int|a; struct s{}; class C{}}"},
        {"namespace n { int a; } namespace n { int b; }", "namespace n{int|a; int|b}"},
        {"namespace { int a; }", "namespace (a.h){int|a}"},
        {"namespace n { namespace m { int a; } }", "namespace n{namespace m{int|a}}"},
        {"namespace n { extern \"C\" { int f(); } int g(); }", "namespace n{int|f (); int|g ()}"},
        {"namespace n { const }", "namespace n{}"},
        {"namespace n = m; using namespace x; int a;", "int|a"},
        {"inline namespace n { int a; }", "namespace n{int|a}"},
        {"namespace a::b { int c; }", "namespace a{int|c}"},
    };
    expectRows(rows);
}

TEST(SourceBrowserCParser, MembersKnowWhereTheyAre) {
    const Scan header("int g();\n"
                      "namespace n {\n"
                      "class A {\n"
                      "public:\n"
                      "    int f(int a);\n"
                      "protected:\n"
                      "    int v;\n"
                      "};\n"
                      "int A::f(int a) {\n"
                      "}\n"
                      "}\n");
    const auto found = header.database.findClass("n.A");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path(), "n.A");
    EXPECT_EQ(found->declarationLine, 2);
    EXPECT_EQ(found->declarationEndLine, 7);
    EXPECT_EQ(found->declarationFile, "/p/a.h");
    const SourceBrowserMethod& f = *found->methods().front();
    EXPECT_EQ(f.path(), "n.A.f");
    EXPECT_EQ(f.access, SourceBrowserObject::Public);
    EXPECT_EQ(f.declarationLine, 4);
    EXPECT_EQ(f.definitionLine, 8);
    EXPECT_EQ(f.definitionEndLine, 9);
    EXPECT_EQ(f.definitionFile, "/p/a.h");
    const SourceBrowserVariable& v = **found->variables().find("v");
    EXPECT_EQ(v.access, SourceBrowserObject::Protected);
    EXPECT_EQ(v.declarationLine, 6);
    EXPECT_EQ(header.method("g")->access, 0);
    EXPECT_EQ(header.database.findScope("n")->declarationEndLine, 10);
}

TEST(SourceBrowserCParser, CommentsBelongToWhatIsClose) {
    const struct {
        const char* header;
        const char* comment;
    } rows[] = {
        {"/*a*/ int f();", "a"},
        {"/*a*/\nint f();", "a"},
        {"/*a\nb*/\nint f();", "a\nb"},
        {"/*a*/\n\nint f();", ""},
        {"/*a*/ // b\nint f();", "a"},
        {"// a\nint f();", ""},
        {"/*a*/\n/*b*/\nint f();", "b"},
        {"/*a*/\nint\nf(int a, /*b*/ int b\n/*c*/);", "a"},
        {"/*a*/\nint f() { /*b*/ return 1; }", "a"},
        {"/*a*/ int g();\nint f();", "a"},
        {"/*a*/ int x;\nint f(); /*b*/", "a"},
        {"/*a*/\ntemplate <class T>\nint f(T t);", "a"},
        {"/*a*/\nint f();\n\nint f() { }", "a"},
        {"/*a*/\nint f();\n\n/*b*/\nint f();", "b"},
        {"/*a*/\nextern \"C\" {\n int f();\n}", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(comment(Scan(row.header).method("f")), row.comment) << row.header;
}

TEST(SourceBrowserCParser, CommentsOfOtherThings) {
    const Scan header("/*v*/\nint v; /*w*/\nint w;\n\n"
                      "/*s*/\nstruct s { /*m*/ int m; };\n\n"
                      "/*t*/\ntypedef struct {\n int a; /*a*/\n} t;\n\n"
                      "/*c*/\nclass c {\n /*f*/ void f();\n};\n\n"
                      "/*n*/\nnamespace n {\n}\n");
    const SourceBrowserDatabase& database = header.database;
    EXPECT_EQ(comment(database.variables().find("v")->get()), "v");
    EXPECT_EQ(comment(database.variables().find("w")->get()), "w");
    EXPECT_EQ(comment(database.structs().find("s")->get()), "s");
    EXPECT_EQ(comment((*database.structs().find("s"))->variables().find("m")->get()), "m");
    EXPECT_EQ(comment(database.structs().find("t")->get()), "t");
    EXPECT_EQ(comment(database.findClass("c").get()), "c");
    EXPECT_EQ(comment(database.findClass("c")->methods().front().get()), "f");
    EXPECT_EQ(comment(database.findScope("n").get()), "n");
}

TEST(SourceBrowserCParser, SecondScanReplacesTheFirst) {
    Scan header("int a; int f(); class c { int b; }; namespace n { int d; }");
    header.parse("int e; namespace n { int g; }", "/p/b.h");
    header.parse("int h;", "/p/a.h");
    EXPECT_EQ(header.dump(), "int|e; int|h; namespace n{int|g}");
    header.parse("", "/p/none.h");
    EXPECT_EQ(header.dump(), "int|e; int|h; namespace n{int|g}");
}

TEST(SourceBrowserCParser, FilesAreReadAndOneThatIsNotThereIsEmpty) {
    MemoryFiles memory;
    const FilesInPlace inPlace(&memory);
    memory.write("/p/a.h", "int a;");
    SourceBrowserDatabase database;
    for (const auto& [path, lines] : {std::pair{"/p/a.h", 1}, std::pair{"/p/none.h", 0}}) {
        SourceBrowserCParser(database).parseFile(path);
        EXPECT_EQ(database.metrics(path).lines, lines);
    }
    EXPECT_EQ(Scan::dump(database), "int|a");
}

TEST(SourceBrowserCParser, DefinitionInAnotherFileOutlivesTheDeclaration) {
    Scan header("class A { int f(); };");
    header.parse("int A::f() { }\nint g() { }", "/p/a.cpp");
    EXPECT_EQ(header.database.findClass("A")->methods().front()->definitionFile, "/p/a.cpp");
    header.parse("", "/p/a.cpp");
    EXPECT_EQ(header.dump(), "class A{int|f ()}");
    EXPECT_EQ(header.database.findClass("A")->methods().front()->definitionLine, -1);
    header.parse("int A::f() { }", "/p/a.cpp");
    header.parse("", "/p/a.h");
    EXPECT_EQ(header.dump(), "class A{int|f ()}");
    EXPECT_TRUE(header.database.findClass("A")->methods().front()->declarationFile.isEmpty());
}

TEST(SourceBrowserCParser, DiagnosticsGoToTheLog) {
    Log log;
    Scan header("typedef struct {\n+ } s;\nnamespace 3 {\n}\nint A::f() { }\nclass B { };\nint B::f() { }",
                &log);
    EXPECT_EQ(log.text,
              "Parsing a.h: 2 Bad struct declaration; 3 Bad namespace identifier; 5 Class A not found; "
              "7 Method f not found in class B;.");
    EXPECT_EQ(header.dump(), "struct s{}; class B{}; namespace (a.h){}");
}

TEST(SourceBrowserCParser, ReceiverHearsInOrder) {
    class Receiver : public SourceBrowserEventInterface {
    public:
        void preprocessorLine(std::string_view, int line) override { add("#", line); }
        void declareContainer(int phylum, const QString& name, const char* kind, int line) override {
            add(kind + QString::number(phylum) + name, line);
        }
        void endContainer() override { add("end", 0); }
        void declareObject(int phylum, const QString& name, int line) override {
            add(QString::number(phylum) + name, line);
        }
        void visibilityChange(int access, int line) override { add("access", 100 * access + line); }
        void add(const QString& what, int line) { log += what + " " + QString::number(line) + ", "; }
        QString log;
    } receiver;
    Scan("#x\nclass A {\npublic:\n int f(int a);\n};\ntypedef struct { int b; } s;\n", nullptr, &receiver);
    EXPECT_EQ(receiver.log, "# 1, class1A 2, access 103, 2f 4, end 0, struct4 6, 3b 6, end 0, 4s 6, ");
}

TEST(SourceBrowserCParser, WhatIsTooDeepIsPassedOver) {
    for (const char* opening : {"class a { ", "namespace a { ", "struct a { ", "union a { "}) {
        std::string header;
        for (int depth = 0; depth < 10'000; ++depth)
            header += opening;
        header += "int inside;";
        for (int depth = 0; depth < 10'000; ++depth)
            header += "};";
        const std::string declared = scan(header + "int outside;");
        EXPECT_NE(declared.find("int|outside"), std::string::npos) << opening;
        EXPECT_EQ(declared.find("inside"), std::string::npos) << opening;
    }
    std::string header = "typedef struct { ";
    for (int depth = 0; depth < 100'000; ++depth)
        header += "struct { ";
    EXPECT_EQ(scan(header), "");
}

// Each input is of one kind, at two sizes: ten times the size may take some twenty times as long at most.
TEST(SourceBrowserCParser, TimeIsLinear) {
    const char* kinds[] = {
        "int a, *b; ",
        "a ",
        "a::",
        "f(",
        "a<",
        "a<>",
        "operator ",
        "/*!*/int f();",
        "class a{",
        "struct s{ ",
        "int f(a,",
        "int(*f)(",
        "typedef struct{",
        "namespace n{",
        "#\\\n",
        "asm ",
        "\"",
        "(",
        ",*b",
        "a[",
        "a[]",
        "M(x) ",
        "=",
        "{",
        "}",
        "virtual ",
        "~A::",
    };
    const auto seconds = [](const char* kind, size_t bytes) {
        std::string header = "int a";
        while (header.size() < bytes)
            header += kind;
        const auto start = std::chrono::steady_clock::now();
        Scan scan(header);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    for (const char* kind : kinds) {
        const double small = seconds(kind, 50'000);
        EXPECT_LT(seconds(kind, 500'000), 20 * small + 0.2) << kind;
    }
}
