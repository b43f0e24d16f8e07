#pragma once

#include "project/MSP430ProjectSystem.h"
#include "project/SolutionLoadError.h"
#include "project/TreeDump.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Solutions as literal text, in files in memory.
class SolutionFixture : public ::testing::Test {
protected:
    /// The text of a file of the format around these elements.
    static std::string file(const std::string& elements) {
        return "<!DOCTYPE OstrelTarn_Project_File>\n" + elements;
    }
    /// Loads /s/app.vkp, a solution "app" that holds these elements.
    ProjectElement* load(const std::string& elements) {
        memory.write("/s/app.vkp", file("<solution Name=\"app\" version=\"2\">" + elements + "</solution>"));
        system.loadSolution("/s/app.vkp");
        return system.solutionElement();
    }
    /// The load error as a person reads it; "" if the load succeeds.
    QString loadError(const QString& path = "/s/app.vkp") {
        try {
            system.loadSolution(path);
        } catch (const SolutionLoadError& error) {
            const QString line = ":" + QString::number(error.line);
            return error.badXml ? QString(error.file + line + " - " + error.message)
                                : QString(error.file + error.message);
        }
        return "";
    }
    /// The first node of this name in the tree.
    ProjectElement* node(const QString& name) {
        ProjectElement* root = system.solutionElement();
        for (ProjectElement* element = root; element; element = element->nextInTree(root)) {
            if (!element->is(ProjectElement::Configuration) && element->getName() == name)
                return element;
        }
        ADD_FAILURE() << "no node " << name.toStdString();
        return root;
    }
    static QStringList names(const QList<ProjectElement*>& elements) {
        QStringList list;
        for (ProjectElement* element : elements)
            list.append(element->getName());
        return list;
    }

    MemoryFiles memory;
    FilesInPlace inPlace{&memory};
    MSP430ProjectSystem system;
};

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
