// From files to the tree. A file becomes a tree of nodes, element by element; an import is replaced by the
// tree of another file. Then templates fill the projects that ask for one, listing keys are made, and
// dynamic folders are filled from the disk.
//
// The files decide how deep and how big all this gets, so each way of growing has its bound.

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/MacroSystem.h"
#include "macros/ReleaseConstants.h"
#include "project/ProjectSystem.h"
#include "project/ProjectTemplates.h"
#include "project/SolutionLoadError.h"
#include "xml/XMLDocument.h"

#include <cstring>

namespace {

constexpr const char* formatVersion = "2";

constexpr int mostLevels = 1000;       ///< of elements within elements, imports included
constexpr int mostSolutionLevels = 32; ///< every level of solutions lengthens the listing keys below it
constexpr int mostImports = 10'000;    ///< files that import a file twice double what they import
constexpr int mostElements = 10'000'000;

[[noreturn]] void fail(const QString& file, const char* message) {
    throw SolutionLoadError{file, false, QLatin1String(message), 0};
}

/// Counts up for the length of a scope.
class Raised {
public:
    Raised(int& value, int by) : m_value(value), m_by(by) { m_value += m_by; }
    ~Raised() { m_value -= m_by; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    int& m_value;
    const int m_by;
};

class Pushed {
public:
    Pushed(QStringList& stack, const QString& text) : m_stack(stack) { m_stack.append(text); }
    ~Pushed() { m_stack.removeLast(); }
    Pushed(const Pushed&) = delete;
    Pushed& operator=(const Pushed&) = delete;

private:
    QStringList& m_stack;
};

bool isImport(const XMLElement& element) { return std::strcmp(element.tagName(), "import") == 0; }

} // namespace

void ProjectSystem::loadSolution(const QString& absolutePath, ProjectFileNotFoundErrorHandler* fileHandler,
                                 TemplateNotFoundErrorHandler* templateHandler) {
    clear();
    try {
        m_solution = loadProjectFile(QString(), absolutePath, fileHandler);
        finishLoad(templateHandler);
    } catch (...) {
        clear();
        throw;
    }
    m_load = {};
}

void ProjectSystem::clear() {
    m_solutions.clear();
    m_solution.reset();
    m_load = {};
}

void ProjectSystem::discard(ProjectElement* parent, ProjectElement* child) {
    const std::unique_ptr<ProjectElement> removed = parent->removeChild(child);
    for (ProjectElement* element = child; element; element = element->nextInTree(child)) {
        m_load.pendingTemplates.removeAll(element);
        m_load.dynamicFolders.removeAll(element);
    }
}

void ProjectSystem::finishLoad(TemplateNotFoundErrorHandler* templateHandler) {
    if (!m_load.pendingTemplates.isEmpty()) {
        applyTemplates(templateHandler);
        m_solution->clearMarks();
    }
    updateProjectList();
    for (ProjectElement* folder : m_load.dynamicFolders)
        populateDynamicFolder(folder);
    if (!m_load.dynamicFolders.isEmpty())
        m_solution->clearMarks();
}

void ProjectSystem::applyTemplates(TemplateNotFoundErrorHandler* templateHandler) {
    ProjectTemplates templates(*this);
    for (ProjectElement* project : m_load.pendingTemplates)
        applyTemplate(templates, project, templateHandler);
}

void ProjectSystem::applyTemplate(ProjectTemplates& templates, ProjectElement* project,
                                  TemplateNotFoundErrorHandler* handler) {
    const QString projectName = project->attribute("Name");
    QString templateName = project->attribute("template_name");
    project->removeAttribute("template_name");
    if (templateName.isEmpty() && !(handler && handler->retry(templates, projectName, templateName)))
        throw SolutionLoadError{"no template for project ", false, projectName, 0};
    const XMLElement* recipe = templates.findTemplate(templateName);
    if (!recipe)
        fail(templateName, " project template not found");
    ProjectElement* solution = project->parent() ? solutionContaining(project->parent()) : project;
    templates.createProjectFromTemplate(solution, project, *recipe);
}

std::unique_ptr<ProjectElement> ProjectSystem::loadProjectFile(const QString& directory,
                                                               const QString& fileName,
                                                               ProjectFileNotFoundErrorHandler* fileHandler) {
    QString tried = fileName;
    bool exists = files().status(tried).exists();
    if (!exists && !directory.isEmpty()) {
        tried = directory + "/" + fileName;
        exists = files().status(tried).exists();
    }
    if (!exists && !(fileHandler && fileHandler->retry(tried)))
        fail(tried, " does not exist");
    if (files().read(tried, 0).result == FileBytes::CannotOpen)
        fail(tried, " cannot access");

    // What is read lies beside the importing file, wherever the test above found a file.
    const bool counts = Path::isAbsolute(fileName) || directory.isEmpty();
    const QString path =
        Path::normalised(Path::absolute(counts ? fileName : QString(directory + "/" + fileName)));
    if (m_load.stack.contains(path))
        fail(path, " solution already loaded");
    std::unique_ptr<ProjectElement> root = readProjectFile(tried, path, fileHandler);
    root->setSolutionFile(path, Path(path).lastModified());
    if (root->attribute("version") != QLatin1String(formatVersion)) {
        munge(root.get());
        root->setAttribute("version", formatVersion, false);
        root->clearMarks();
    }
    return root;
}

std::unique_ptr<ProjectElement> ProjectSystem::readProjectFile(const QString& tried, const QString& path,
                                                               ProjectFileNotFoundErrorHandler* fileHandler) {
    XMLDocument document(false);
    if (!document.load(path)) {
        const int line = static_cast<int>(document.errorLine());
        throw SolutionLoadError{tried, true, toText(document.errorText()), line};
    }
    static const std::string documentType = std::string(Get_TARN_NAME()) + "_Project_File";
    if (!document.docType() || document.docType() != documentType)
        fail(tried, " not a solution file");
    if (!document.root())
        fail(tried, " has no solution element");
    const Pushed loading(m_load.stack, path);
    std::unique_ptr<ProjectElement> root =
        domToElement(Path(path).dirPath(true), *document.root(), fileHandler);
    if (!root->is(ProjectElement::Solution))
        fail(tried, " has no solution element");
    return root;
}

std::unique_ptr<ProjectElement> ProjectSystem::domToElement(const QString& directory,
                                                            const XMLElement& xmlElement,
                                                            ProjectFileNotFoundErrorHandler* fileHandler) {
    if (isImport(xmlElement))
        return importElement(directory, xmlElement, fileHandler);
    std::unique_ptr<ProjectElement> root = makeElement(xmlElement);
    ProjectElement* parent = root.get();
    std::vector<const XMLElement*> open = {&xmlElement};
    int solutions = parent->is(ProjectElement::Solution);
    checkNesting(1, solutions);
    const XMLElement* next = xmlElement.firstChildElement();
    for (;;) {
        if (!next) { // the end of the children of `parent`
            next = open.back()->nextSiblingElement();
            open.pop_back();
            parent->clearModified();
            if (open.empty())
                return root;
            solutions -= parent->is(ProjectElement::Solution);
            parent = parent->parent();
        } else if (isImport(*next)) {
            const Raised depth(m_load.depth, static_cast<int>(open.size()));
            const Raised solutionDepth(m_load.solutions, solutions);
            parent->appendChild(importElement(directory, *next, fileHandler));
            next = next->nextSiblingElement();
        } else {
            parent = parent->appendChild(makeElement(*next));
            open.push_back(next);
            solutions += parent->is(ProjectElement::Solution);
            checkNesting(static_cast<int>(open.size()), solutions);
            next = next->firstChildElement();
        }
    }
}

std::unique_ptr<ProjectElement> ProjectSystem::importElement(const QString& directory,
                                                             const XMLElement& xmlElement,
                                                             ProjectFileNotFoundErrorHandler* fileHandler) {
    const QString fileName = xmlElement.attributeText("file_name");
    const QString expanded =
        MacroSystem::replaceMacros(LazyScope([] { return macroSystem.globalMacros(true); }), fileName);
    if (m_load.stack.size() >= mostSolutionLevels)
        fail(expanded, " imports are nested too deep");
    if (++m_load.imports > mostImports)
        fail(expanded, " too many imports");
    std::unique_ptr<ProjectElement> root = loadProjectFile(directory, expanded, fileHandler);
    root->setImported(fileName);
    root->clearModified();
    return root;
}

void ProjectSystem::checkNesting(int levels, int solutions) const {
    if (m_load.depth + levels > mostLevels)
        fail(m_load.stack.value(m_load.stack.size() - 1), " elements are nested too deep");
    if (m_load.solutions + solutions > mostSolutionLevels)
        fail(m_load.stack.value(m_load.stack.size() - 1), " solutions are nested too deep");
}

std::unique_ptr<ProjectElement> ProjectSystem::makeElement(const XMLElement& xmlElement) {
    if (++m_load.elements > mostElements)
        fail(m_load.stack.value(m_load.stack.size() - 1), " too many elements");
    static const Symbol templateName = Symbol::of(QString("template_name"));
    static const Symbol path = Symbol::of(QString("path"));
    auto element = std::make_unique<ProjectElement>(toText(xmlElement.tagName()));
    element->setAttributesFrom(xmlElement);
    if (element->hasAttribute(templateName))
        m_load.pendingTemplates.append(element.get());
    else if (element->hasAttribute(path))
        m_load.dynamicFolders.append(element.get());
    return element;
}
