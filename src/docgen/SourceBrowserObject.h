#pragma once

#include <QString>
#include <memory>
#include <vector>

class SourceBrowserContainer;

/// What a C or C++ file declares: a record of a name, where it stands, and the comment in front of it. Lines
/// count from 0; -1 is an unknown line. Knows nothing of how it was found.
class SourceBrowserObject {
public:
    enum Phylum { Class = 1, Method = 2, Variable = 3, Struct = 4, Namespace = 5 };
    enum Access { Public = 1, Protected = 2, Private = 4 };

    explicit SourceBrowserObject(int kind) : phylum(kind) {}
    virtual ~SourceBrowserObject() = default;
    SourceBrowserObject(const SourceBrowserObject&) = delete;
    SourceBrowserObject& operator=(const SourceBrowserObject&) = delete;

    /// How the object is written in a list of its kind.
    virtual QString asString() const { return name(); }
    /// Whether the other declares the same thing.
    virtual bool isEqual(const SourceBrowserObject&) const { return false; }

    const QString& name() const { return m_name; }
    virtual void setName(const QString& name);
    /// The enclosing names, joined by "."; empty at file level.
    const QString& scope() const { return m_scope; }
    void setScope(const QString& scope);
    /// Scope, "." and name; the name alone without a scope. All calls give one shared text.
    const QString& path() const;

    int phylum = 0;
    int access = 0; ///< of Access; 0 where there is none, as at file level
    int declarationLine = -1;
    int declarationEndLine = -1;
    int definitionLine = -1;
    int definitionEndLine = -1;
    QString declarationFile;
    QString definitionFile;
    QString comment; ///< the block comment that is attached, without its marks; empty for none
    SourceBrowserContainer* owner = nullptr;

private:
    QString m_name;
    QString m_scope;
    mutable QString m_path; ///< null until asked for
};

/// A base class, and the access by which it is inherited.
struct SourceBrowserBaseClass {
    QString name;
    int access = SourceBrowserObject::Private;
};

class SourceBrowserVariable : public SourceBrowserObject {
public:
    SourceBrowserVariable() : SourceBrowserVariable(Variable) {}

    bool isEqual(const SourceBrowserObject& other) const override;

    const QString& type() const { return m_type; }
    /// White space at both ends goes.
    void setType(const QString& type) { m_type = type.trimmed(); }

    bool isStatic = false;
    bool isConst = false;
    int namePos = -1; ///< where in the type the name belongs; at or past its end, or -1: behind it

protected:
    explicit SourceBrowserVariable(int kind) : SourceBrowserObject(kind) {}

private:
    QString m_type;
};

struct SourceBrowserArgument {
    QString name;
    QString type;
    int namePos = -1;

    /// The argument as it is declared: "char *s", "int ( *cb)(int)".
    QString toString() const;
};

/// A function, or a member function. The type is that of its result.
class SourceBrowserMethod : public SourceBrowserVariable {
public:
    SourceBrowserMethod() : SourceBrowserVariable(Method) {}

    /// Name and arguments: "f (int a, char *s)". All calls give one shared text.
    QString asString() const override;
    bool isEqual(const SourceBrowserObject& other) const override;

    const std::vector<SourceBrowserArgument>& arguments() const { return m_arguments; }
    void setName(const QString& name) override;
    void addArgument(SourceBrowserArgument argument);

    bool isVirtual = false;

private:
    std::vector<SourceBrowserArgument> m_arguments;
    mutable QString m_asString; ///< null until asked for
};
