#include "properties/BuildOptions.h"

#include "xml/XMLDocument.h"

namespace {

void addOption(BuildOptions& options, const XMLElement* element) {
    const QString tool = element->attributeText("tool");
    if (tool.isNull())
        return;
    options.classes.push_back(std::make_unique<PropertyClass>(element));
    if (tool == "compiler")
        options.tools.compiler.append(options.classes.back().get());
    else if (tool == "linker")
        options.tools.linker.append(options.classes.back().get());
}

} // namespace

BuildOptions loadBuildOptions(const QString& fileName) {
    BuildOptions options;
    XMLDocument document(false);
    if (!document.load(fileName) || !document.root())
        return options;
    for (XMLNode* child = document.root()->firstChild(); child && child->toElement();
         child = child->nextSibling())
        addOption(options, child->toElement());
    return options;
}
