#include "query/CatalogueCommand.h"

#include "build/SOBFBuildSystem.h"
#include "foundation/Text.h"
#include "project/MSP430ProjectSystem.h"
#include "properties/SettingTable.h"

#include <QCommandLineParser>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <memory>
#include <ostream>

namespace {

/// On which nodes the settings exist, asked of the project system by one node of each kind.
class NodeKinds {
public:
    NodeKinds() {
        ProjectElement* root = m_system.createSolution("catalogue", "/");
        note(root, "solution", "");
        for (const QString& type : propertyClass(Setting::project_type).enumerates()) {
            ProjectElement* project = m_system.createProject(root, type, "/", type);
            note(project, "project", type);
            if (type == "Executable")
                noteCompiled(project);
            else if (type == "Staging")
                noteStaged(project);
        }
    }
    /// Such as "solution" and "project: Executable, Library"; a kind alone if it does not matter which.
    QStringList of(const PropertyClass* propertyClass) const {
        QStringList texts;
        for (const char* kind : {"solution", "project", "folder", "file"}) {
            const QStringList types = m_types.value(propertyClass).value(kind);
            if (!types.isEmpty())
                texts.append(types == m_allTypes[kind] ? QString(kind) : kind + (": " + types.join(", ")));
        }
        return texts;
    }

private:
    void noteCompiled(ProjectElement* project) {
        note(m_system.createFolder(project, "sources", "", false), "folder", "sources");
        for (const char* type : {"C", "C++", "Assembly", "other"}) {
            ProjectElement* file = m_system.addFile(project, "file", false);
            m_system.setProperty(file, propertyClass(Setting::file_type), "Common", type, false);
            note(file, "file", type);
        }
    }
    void noteStaged(ProjectElement* project) {
        note(m_system.createFolder(project, "staged", "", false), "folder", "staged");
        note(m_system.addFile(project, "file", false), "file", "staged");
    }
    void note(ProjectElement* element, const QString& kind, const QString& type) {
        m_allTypes[kind].append(type);
        const PropertyValueList values = m_system.applicableSettingsFor(element, "Common");
        for (const PropertyValue* value : values)
            m_types[value->propertyClass()][kind].append(type);
    }

    using TypesByKind = QHash<QString, QStringList>;
    MSP430ProjectSystem m_system;
    mutable TypesByKind m_allTypes;
    QHash<const PropertyClass*, TypesByKind> m_types;
};

PropertyClassList chosenClasses(const QStringList& names) {
    if (names.isEmpty())
        return catalogue();
    PropertyClassList chosen;
    for (const QString& name : names) {
        if (!catalogueClass(name))
            throw QueryError{"can't find property '" + name + "'"};
        for (const PropertyClass* each : catalogue()) {
            if (each->saveName() == name)
                chosen.appendUnique(each);
        }
    }
    return chosen;
}

QString typeOf(const PropertyClass& each) {
    QString type = PropertyClass::typeName(each.type());
    if (each.type() == PropertyClass::Enumeration)
        type = each.enumerates().join(", ");
    else if (each.type() == PropertyClass::IntegerRange)
        type = QString::number(each.minimum()) + " to " + QString::number(each.maximum());
    return type;
}

QString textOf(const PropertyClass& each, const QStringList& nodes) {
    QString text = each.saveName() + " (" + typeOf(each) + ")";
    if (!each.defaultValue().isNull())
        text += " = \"" + each.defaultValue() + "\"";
    text += "\n    " + each.longDescription() + "\n";
    if (!nodes.isEmpty())
        text += "    " + nodes.join("; ") + "\n";
    return text;
}

/// How the words of a setting come about; null for words that take code.
const char* nameOf(SettingTable::Form::Kind form) {
    switch (form) {
    case SettingTable::Form::Word:
        return "word";
    case SettingTable::Form::Value:
        return "value";
    case SettingTable::Form::OtherThanDefault:
        return "other than default";
    case SettingTable::Form::Entries:
    case SettingTable::Form::ExpandedEntries:
    case SettingTable::Form::EntriesOfExpanded:
        return "entries";
    case SettingTable::Form::Coded:
        break;
    }
    return nullptr;
}

QJsonArray toolsOf(unsigned steps) {
    QJsonArray tools;
    for (const unsigned step : {SettingTable::CompileC, SettingTable::CompileCpp, SettingTable::Assemble,
                                SettingTable::CompileBasic, SettingTable::CompileForth, SettingTable::Link}) {
        if (const char* tool = SOBFBuildSystem::toolOf(steps & step))
            tools.append(tool);
    }
    return tools;
}

/// What a setting adds to the command lines of tools, as far as its row says it without code.
QJsonArray wordsOf(const PropertyClass& each) {
    const auto row =
        std::find_if(SettingTable::rows.begin(), SettingTable::rows.end(),
                     [&](const SettingTable::Row& of) { return &propertyClass(of.setting) == &each; });
    QJsonArray array;
    for (const SettingTable::Words& words : row->columns.words) {
        const char* form = nameOf(words.form.kind);
        const QJsonArray tools = toolsOf(words.steps);
        if (!form || tools.isEmpty())
            continue;
        QJsonObject object{{"tools", tools}, {"form", form}, {"text", words.form.text}};
        if (words.condition.value)
            object[words.condition.isWanted ? "when" : "unless"] = words.condition.value;
        if (words.condition.setting)
            object["setting"] = propertyClass(*words.condition.setting).saveName();
        array.append(object);
    }
    return array;
}

QJsonObject jsonOf(const PropertyClass& each, const QStringList& nodes) {
    QJsonObject object{{"name", each.saveName()},
                       {"type", PropertyClass::typeName(each.type())},
                       {"default", each.defaultValue().isNull() ? QJsonValue() : each.defaultValue()},
                       {"page", each.page()},
                       {"group", each.group()},
                       {"label", each.shortDescription()},
                       {"meaning", each.longDescription()},
                       {"perConfiguration", each.perConfiguration()},
                       {"readOnly", each.readOnly()},
                       {"nodes", QJsonArray::fromStringList(nodes)},
                       {"words", wordsOf(each)}};
    if (each.type() == PropertyClass::Enumeration)
        object["values"] = QJsonArray::fromStringList(each.enumerates());
    if (each.type() == PropertyClass::IntegerRange) {
        object["minimum"] = each.minimum();
        object["maximum"] = each.maximum();
    }
    return object;
}

} // namespace

QList<QCommandLineOption> catalogueOptions() { return {{"json", "print JSON"}}; }

int runCatalogue(const QCommandLineParser& words, const QueryStreams& streams) {
    const PropertyClassList classes = chosenClasses(words.positionalArguments());
    const NodeKinds kinds;
    QString text, heading;
    QJsonArray array;
    for (const PropertyClass* each : classes) {
        const QString group = each->page() + ": " + each->group() + "\n";
        if (group != heading)
            text += (text.isEmpty() ? "" : "\n") + (heading = group);
        text += textOf(*each, kinds.of(each));
        array.append(jsonOf(*each, kinds.of(each)));
    }
    streams.out << viewOf(words.isSet("json") ? QJsonDocument(array).toJson() : toBytes(text));
    return 0;
}
