#pragma once

#include "macros/Path.h"
#include "project/PropertyInheritanceInformation.h"
#include "project/Symbol.h"

#include <QDateTime>
#include <QMap>
#include <QStringList>
#include <map>
#include <memory>
#include <vector>

class XMLElement;
class ProjectElement;

/// Elements by name or listing key, in the order of the names.
using ElementMap = QMap<QString, ProjectElement*>;

/// A node of the tree of a solution: a solution, project, folder, file or configuration, holding attributes
/// and children. Knows its attributes, its place, and, once it is asked, where it is on disk. What a setting
/// means is none of its business.
///
/// A tree may hold hundreds of thousands of nodes, so what few nodes have lies behind a pointer.
class ProjectElement {
public:
    enum Kind { Solution, Configuration, Project, Folder, File, Other };

    struct Attribute {
        Symbol name;
        QString value;
    };

    /// An empty node; a tag that is none of the five kinds gives Other, which nothing looks for.
    explicit ProjectElement(const QString& tag);
    explicit ProjectElement(Kind kind) : m_kind(kind) {}
    ~ProjectElement();
    ProjectElement(const ProjectElement&) = delete;
    ProjectElement& operator=(const ProjectElement&) = delete;

    Kind kind() const { return m_kind; }
    /// The tag of a kind; "" for Other.
    static const char* tagOf(Kind kind);
    bool is(Kind kind) const { return m_kind == kind; }

    // Place in the tree. Each is null at the end of its road.
    ProjectElement* parent() const { return m_parent; }
    ProjectElement* nextSibling() const { return m_nextSibling.get(); }
    ProjectElement* firstChild() const { return m_firstChild.get(); }
    /// The node behind this one in the subtree of `root`, every parent in front of its children; null behind
    /// the last.
    ProjectElement* nextInTree(const ProjectElement* root) const;
    /// The nearest node of this kind, beginning with this one and going up; null if there is none.
    ProjectElement* nearest(Kind kind);
    /// Puts `child` behind the last child, and returns it. A configuration is found by its name from now on;
    /// of two with one name, the later.
    ProjectElement* appendChild(std::unique_ptr<ProjectElement> child);
    /// Takes a child out of the tree; null if it is no child of this node.
    std::unique_ptr<ProjectElement> removeChild(ProjectElement* child);

    // Attributes.
    /// The value, or null if there is no such attribute.
    QString attribute(const QString& name) const;
    bool hasAttribute(const QString& name) const { return hasAttribute(Symbol::find(name)); }
    bool hasAttribute(Symbol name) const { return find(name); }
    /// `flag` is kept with the change and tells nothing to this program.
    void setAttribute(const QString& name, const QString& value, bool flag);
    void removeAttribute(const QString& name);
    /// Takes every attribute of the XML element over. Marks nothing as changed.
    void setAttributesFrom(const XMLElement& xmlElement);
    /// In the order of their names.
    std::vector<Attribute> attributes() const;
    /// Another file name, as text with its macros. Marks nothing as changed.
    void setFileName(const QString& name, bool flag);
    /// The "Name"; else, of a node with a file, the file's name without directories; else "<NULL>".
    QString getName();

    // Changes made since the load.
    bool modified() const { return m_modified; }
    void clearModified() { m_modified = false; }
    /// Forgets all changes in this subtree.
    void clearMarks();

    // Configurations: children that hold values.
    bool hasConfigurations() const { return m_configurations != nullptr; }
    /// The configuration child of this name, or null.
    ProjectElement* configuration(const QString& name) const { return configuration(Symbol::find(name)); }
    ProjectElement* configuration(Symbol name) const { return named(name).last; }
    /// The same, but of two with one name the earlier.
    ProjectElement* firstConfiguration(const QString& name) const { return named(Symbol::find(name)).first; }
    ElementMap configurations() const;
    /// What this node's own configuration states; null if nothing.
    const QString* statedValue(Symbol configuration, Symbol property) const;
    /// The same, gathered: the value goes into `inOut`, behind ";" if that is not empty, and into `info` if
    /// there is one. False, and nothing is touched, if nothing is stated.
    bool getProperty(const QString& configName, const QString& propertyName, QString& inOut,
                     PropertyInheritanceInformation* info);
    /// Whether this node's configuration states the property or stated it in this run; `newer` tells whether
    /// it changed after `since`. False if it is gone and has not changed since; and, with `newer` untouched,
    /// if it did not change at all.
    bool propertyHasChanged(const QString& configName, const QString& propertyName, const QDateTime& since,
                            bool& newer) const;
    /// Reads the "inherited_configurations" of the configurations anew.
    void updateInheritenceMap();
    /// The names that a configuration of this node inherits from; empty if there are none.
    const std::vector<Symbol>& inherited(Symbol configuration) const;

    // Where the node is on disk. Valid after checkDoFileStuff.
    /// Finds out once, when first asked. Only then are macros in file names expanded.
    void checkDoFileStuff();
    /// The file of a solution or file, absolute. Empty for others.
    const Path& path() const { return fileStuff().path; }
    /// The directory that file names of the project, or of the project around a file, count from.
    const QString& projectDir() const { return fileStuff().projectDir; }
    /// The file name as written, macros expanded; the absolute path if that is absolute.
    const QString& relativeName() const { return fileStuff().relativeName; }
    bool inProjectDir() const;
    bool underProjectDir() const;
    /// Makes `path` the file of a solution, modified at that time.
    void setSolutionFile(const QString& path, const QDateTime& lastModified);
    /// The directory of the nearest solution's file, absolute.
    QString solutionDirectory() const;
    /// When the file of a solution was last modified, as of its load.
    QDateTime lastModified() const { return m_solution ? m_solution->lastModified : QDateTime(); }

    const QString& fileTypeCache() const { return fileStuff().fileTypeCache; }
    void setFileTypeCache(const QString& type) { makeFileStuff().fileTypeCache = type; }
    /// Whether the node came from an import.
    bool imported() const { return m_imported; }
    /// Marks a solution as imported under this name, text as written. Its file stays.
    void setImported(const QString& fileName);
    /// Of a solution: every project below it by listing key.
    const ElementMap& projects() const;
    void setProjects(ElementMap projects);

private:
    struct Change {
        QDateTime time;
        bool flag = false;
    };
    /// The configurations of one name.
    struct Named {
        ProjectElement* first = nullptr;
        ProjectElement* last = nullptr;
    };
    struct FileStuff {
        Path path;
        QString projectDir;
        QString relativeName;
        QString fileTypeCache;
    };
    struct SolutionStuff {
        ElementMap projects;
        std::map<Symbol, std::vector<Symbol>> inheritance;
        QDateTime lastModified;
    };

    const Attribute* find(Symbol name) const;
    Named named(Symbol configuration) const;
    void store(Symbol name, const QString& value);
    void stamp(Symbol name, bool flag);
    const FileStuff& fileStuff() const;
    FileStuff& makeFileStuff();
    SolutionStuff& makeSolutionStuff();
    const ProjectElement* solutionWithFile() const;
    void placeProject();
    void placeFile();

    ProjectElement* m_parent = nullptr;
    std::unique_ptr<ProjectElement> m_nextSibling;
    std::unique_ptr<ProjectElement> m_firstChild;
    ProjectElement* m_lastChild = nullptr;
    std::vector<Attribute> m_attributes; ///< in the order of their symbols
    std::unique_ptr<std::map<Symbol, Named>> m_configurations;
    std::unique_ptr<std::map<Symbol, Change>> m_changes;
    std::unique_ptr<FileStuff> m_file;
    std::unique_ptr<SolutionStuff> m_solution;
    Kind m_kind;
    bool m_modified = false;
    bool m_imported = false;
    bool m_fileStuffDone = false;
};
