#include "project/TreeDump.h"

#include "project/ProjectElement.h"

QString dump(ProjectElement* top) {
    QString text;
    qsizetype level = 0;
    for (ProjectElement* element = top; element; element = element->nextInTree(top)) {
        text += QString(2 * level, u' ') + ProjectElement::tagOf(element->kind());
        for (const ProjectElement::Attribute& attribute : element->attributes())
            text += " " + attribute.name.text() + "=\"" + attribute.value + "\"";
        text += element->imported() ? " imported\n" : "\n";
        // The level of the node that nextInTree goes to.
        if (element->firstChild()) {
            ++level;
            continue;
        }
        for (const ProjectElement* up = element; up != top && !up->nextSibling(); up = up->parent())
            --level;
    }
    return text;
}
