#pragma once

#include "docgen/SourceBrowserDictionary.h"
#include "docgen/SourceBrowserObject.h"

/// A class, struct or namespace, and what is declared in it. A class is filed both where it is declared and
/// at the root of the tree, and so is a struct: containers are shared by those that hold them.
class SourceBrowserContainer : public SourceBrowserObject {
public:
    using Shared = std::shared_ptr<SourceBrowserContainer>;
    using Methods = std::list<std::unique_ptr<SourceBrowserMethod>>;

    explicit SourceBrowserContainer(int kind) : SourceBrowserObject(kind) {}
    ~SourceBrowserContainer() override;

    /// Files the object by its phylum, with this container's path as its scope unless that is empty. What was
    /// filed under the same name gives way; of methods the older one stays in the list.
    void addObject(const Shared& container);
    void addObject(std::unique_ptr<SourceBrowserVariable> variable);
    void addObject(std::unique_ptr<SourceBrowserMethod> method);
    void addBaseClass(SourceBrowserBaseClass base) { m_baseClasses.push_back(std::move(base)); }

    /// The method here that is written as this one is; null if there is none.
    SourceBrowserMethod* getMethod(const SourceBrowserMethod& method) const;
    /// Takes a method of this container out, and deletes it.
    void removeMethod(const SourceBrowserMethod& method);

    /// The class or namespace of that name in this container; null if there is none.
    Shared findClass(const QString& name) const;
    bool hasClass(const QString& name) const { return m_classes.find(name) != nullptr; }
    Shared findScope(const QString& name) const;
    void removeClass(const QString& name) { m_classes.remove(name); }

    /// Takes out all that was declared in a file. Of what another file defines, only this file's part goes,
    /// and a container that holds something of another file stays.
    void removeReferences(const QString& file) {
        Seen seen;
        removeReferences(file, seen);
    }

    const SourceBrowserDictionary<std::unique_ptr<SourceBrowserVariable>>& variables() const {
        return m_variables;
    }
    /// In order of declaration.
    const Methods& methods() const { return m_methods; }
    const SourceBrowserDictionary<Shared>& structs() const { return m_structs; }
    const SourceBrowserDictionary<Shared>& classes() const { return m_classes; }
    const SourceBrowserDictionary<Shared>& namespaces() const { return m_namespaces; }
    const std::vector<SourceBrowserBaseClass>& baseClasses() const { return m_baseClasses; }

protected:
    /// The name under which a class is filed here.
    virtual QString keyOfClass(const SourceBrowserContainer& container) const { return container.name(); }

private:
    /// Containers that a removal has been to, since they may be filed twice, and whether they are to go.
    using Seen = QHash<const SourceBrowserContainer*, bool>;

    void removeReferences(const QString& file, Seen& seen);
    void adopt(SourceBrowserObject& object);
    bool isEmpty() const;

    SourceBrowserDictionary<std::unique_ptr<SourceBrowserVariable>> m_variables;
    Methods m_methods;
    QHash<QString, Methods::iterator> m_methodsByString;
    SourceBrowserDictionary<Shared> m_structs;
    SourceBrowserDictionary<Shared> m_classes;
    SourceBrowserDictionary<Shared> m_namespaces;
    std::vector<SourceBrowserBaseClass> m_baseClasses;
};
