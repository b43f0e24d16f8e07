// Where a node is on disk. A file's name counts from its project's directory, which counts from the directory
// of the solution's file; a solution written inside another file has the place of that file. Macros are read
// at the first question, when they are final.

#include "foundation/FileAccess.h"
#include "macros/MacroSystem.h"
#include "project/ProjectElement.h"

const ProjectElement::FileStuff& ProjectElement::fileStuff() const {
    static const FileStuff none;
    return m_file ? *m_file : none;
}

ProjectElement::FileStuff& ProjectElement::makeFileStuff() {
    if (!m_file)
        m_file = std::make_unique<FileStuff>();
    return *m_file;
}

void ProjectElement::setSolutionFile(const QString& path, const QDateTime& lastModified) {
    makeFileStuff().path.setPath(path);
    makeSolutionStuff().lastModified = lastModified;
    m_fileStuffDone = true;
}

void ProjectElement::checkDoFileStuff() {
    if (m_fileStuffDone)
        return;
    m_fileStuffDone = true;
    if (is(Project)) {
        placeProject();
    } else if (is(Solution)) {
        if (const ProjectElement* owner = solutionWithFile())
            makeFileStuff().path = owner->path();
    } else {
        placeFile();
    }
}

/// The nearest solution at or above that has a file of its own.
const ProjectElement* ProjectElement::solutionWithFile() const {
    for (const ProjectElement* element = this; element; element = element->m_parent) {
        if (element->is(Solution) && element->m_fileStuffDone && !element->path().isEmpty())
            return element;
    }
    return nullptr;
}

QString ProjectElement::solutionDirectory() const {
    const ProjectElement* solution = solutionWithFile();
    return solution ? solution->path().dirPath(true) : currentDirectory();
}

void ProjectElement::placeProject() {
    QString directory;
    getProperty("Common", "project_directory", directory, nullptr);
    if (directory.isEmpty())
        directory = solutionDirectory();
    else if (!Path::isAbsolute(directory))
        directory = solutionDirectory() + "/" + directory;
    makeFileStuff().projectDir = directory;
}

void ProjectElement::placeFile() {
    FileStuff& file = makeFileStuff();
    if (ProjectElement* project = nearest(Project)) {
        project->checkDoFileStuff();
        file.projectDir = project->projectDir();
    } else {
        file.projectDir = solutionDirectory();
    }
    static const Symbol nameAttribute = Symbol::of(QString("file_name"));
    const Attribute* stated = find(nameAttribute);
    const QString name = MacroSystem::replaceMacros(LazyScope([] { return macroSystem.globalMacros(true); }),
                                                    stated ? stated->value : QString());
    file.path.setPath(Path::isAbsolute(name) ? name : file.projectDir + "/" + name);
    file.relativeName = Path::isAbsolute(name) ? file.path.filePath() : name;
}

bool ProjectElement::inProjectDir() const { return path().dirPath(false) == Path::normalised(projectDir()); }

bool ProjectElement::underProjectDir() const {
    return path().dirPath(true).startsWith(Path::normalised(projectDir()));
}
