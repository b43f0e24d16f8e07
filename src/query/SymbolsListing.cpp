#include "query/SymbolsListing.h"

#include "docgen/SourceBrowserCParser.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <QJsonArray>
#include <algorithm>

namespace {

constexpr qsizetype longestComment = 60;

const char* kindOf(const SourceBrowserObject& object) {
    constexpr const char* kinds[] = {"", "class", "function", "variable", "struct", "namespace"};
    return kinds[object.phylum];
}

const char* accessOf(int access) {
    return access == SourceBrowserObject::Public      ? "public"
           : access == SourceBrowserObject::Protected ? "protected"
                                                      : "private";
}

/// From 1.
int lineOf(const SourceBrowserObject& object) {
    return 1 + (object.declarationLine >= 0 ? object.declarationLine : object.definitionLine);
}

using Objects = std::vector<const SourceBrowserObject*>;

/// What is declared directly in a container, by lines. The root files what lies deeper as well, which is not
/// listed twice.
Objects membersOf(const SourceBrowserContainer& container) {
    Objects members;
    for (const auto& method : container.methods())
        members.push_back(method.get());
    for (const auto& [name, variable] : container.variables())
        members.push_back(variable.get());
    for (const auto* containers : {&container.classes(), &container.structs(), &container.namespaces()})
        for (const auto& [name, member] : *containers)
            if (member->owner == &container || !member->owner)
                members.push_back(member.get());
    std::stable_sort(members.begin(), members.end(),
                     [](const auto* a, const auto* b) { return lineOf(*a) < lineOf(*b); });
    return members;
}

QString withType(const QString& type, const QString& declared) {
    return type.isEmpty() ? declared : type + (type.endsWith(u'*') ? "" : " ") + declared;
}

/// A declaration in a line, without its members.
QString declarationOf(const SourceBrowserObject& object) {
    QString text;
    if (const auto* method = dynamic_cast<const SourceBrowserMethod*>(&object)) {
        text = withType(method->type(), method->asString());
        text = QString(method->isVirtual ? "virtual " : "") + (method->isStatic ? "static " : "") + text +
               (method->isConst ? " const" : "");
    } else if (const auto* variable = dynamic_cast<const SourceBrowserVariable*>(&object)) {
        // In a list of variables the place of the name was not kept.
        const int place =
            variable->namePos >= 0 ? variable->namePos : static_cast<int>(variable->type().indexOf(u'['));
        text = QString(variable->isStatic ? "static " : "") +
               SourceBrowserArgument{variable->name(), variable->type(), place}.toString();
    } else {
        text = object.name();
        const auto& container = static_cast<const SourceBrowserContainer&>(object);
        for (const SourceBrowserBaseClass& base : container.baseClasses())
            text += QString(&base == &container.baseClasses().front() ? " : " : ", ") +
                    accessOf(base.access) + " " + base.name;
    }
    return text;
}

/// The comment in a few words; what could harm a terminal is left out.
QString shortened(QString comment) {
    comment = comment.simplified();
    comment.removeIf(
        [](QChar c) { return c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() < 0xA0); });
    return comment.size() <= longestComment ? comment : comment.left(longestComment) + "...";
}

void list(const SourceBrowserContainer& container, int depth, QByteArray& text) {
    int access = 0;
    for (const SourceBrowserObject* member : membersOf(container)) {
        const QByteArray indent(2 * depth, ' ');
        if (container.phylum == SourceBrowserObject::Class && member->access != access &&
            member->access != 0) {
            access = member->access;
            text += QByteArray(6, ' ') + indent + accessOf(access) + ":\n";
        }
        text += QByteArray::number(lineOf(*member)).rightJustified(6) + "  " + indent + kindOf(*member) +
                ' ' + declarationOf(*member).toUtf8();
        if (!member->comment.isEmpty())
            text += "  /*" + shortened(member->comment).toUtf8() + "*/";
        text += '\n';
        if (const auto* inner = dynamic_cast<const SourceBrowserContainer*>(member))
            list(*inner, depth + 1, text);
    }
}

QJsonArray describe(const SourceBrowserContainer& container);

void describeMethod(const SourceBrowserMethod& method, QJsonObject& answer) {
    QJsonArray arguments;
    for (const SourceBrowserArgument& argument : method.arguments())
        arguments.append(QJsonObject{{"name", argument.name}, {"type", argument.type}});
    answer["arguments"] = arguments;
    if (method.isVirtual)
        answer["virtual"] = true;
    if (method.isConst)
        answer["const"] = true;
}

void describeContainer(const SourceBrowserContainer& container, QJsonObject& answer) {
    answer["members"] = describe(container);
    QJsonArray bases;
    for (const SourceBrowserBaseClass& base : container.baseClasses())
        bases.append(QJsonObject{{"name", base.name}, {"access", accessOf(base.access)}});
    if (!bases.isEmpty())
        answer["bases"] = bases;
}

QJsonObject describe(const SourceBrowserObject& object) {
    const bool isDeclared = object.declarationLine >= 0;
    QJsonObject answer{{"kind", kindOf(object)},
                       {"name", object.name()},
                       {"line", lineOf(object)},
                       {"endLine", 1 + (isDeclared ? object.declarationEndLine : object.definitionEndLine)}};
    if (!object.scope().isEmpty())
        answer["scope"] = object.scope();
    if (object.access != 0)
        answer["access"] = accessOf(object.access);
    if (!object.comment.isEmpty())
        answer["comment"] = object.comment;
    if (const auto* variable = dynamic_cast<const SourceBrowserVariable*>(&object)) {
        answer["type"] = variable->type();
        if (variable->isStatic)
            answer["static"] = true;
    }
    if (const auto* method = dynamic_cast<const SourceBrowserMethod*>(&object))
        describeMethod(*method, answer);
    if (const auto* container = dynamic_cast<const SourceBrowserContainer*>(&object))
        describeContainer(*container, answer);
    return answer;
}

QJsonArray describe(const SourceBrowserContainer& container) {
    QJsonArray answer;
    for (const SourceBrowserObject* member : membersOf(container))
        answer.append(describe(*member));
    return answer;
}

} // namespace

SymbolsListing::SymbolsListing(const QString& path, std::string_view bytes) : m_path(path) {
    SourceBrowserCParser(m_database, this, this).parseText(path, bytes);
    m_metrics = m_database.metrics(Path(path).canonicalPathQString());
}

QByteArray SymbolsListing::text() const {
    QByteArray text = toBytes(m_path) + ": " + QByteArray::number(m_metrics.lines) + " lines (" +
                      QByteArray::number(m_metrics.blankLines) + " blank, " +
                      QByteArray::number(m_metrics.commentLines) + " of comments, " +
                      QByteArray::number(m_metrics.preprocessorLines) + " of the preprocessor), " +
                      QByteArray::number(m_metrics.blockComments + m_metrics.lineComments) + " comments\n";
    list(m_database, 0, text);
    for (const auto* notes : {&m_notes, &m_diagnostics})
        for (const Note& note : *notes)
            text += QByteArray::number(note.line).rightJustified(6) + "  " +
                    (notes == &m_notes ? "note: " : "not understood: ") + shortened(note.text).toUtf8() +
                    '\n';
    return text;
}

QJsonObject SymbolsListing::json() const {
    const auto describeNotes = [](const QList<Note>& notes) {
        QJsonArray answer;
        for (const Note& note : notes)
            answer.append(QJsonObject{{"line", note.line}, {"text", note.text}});
        return answer;
    };
    return {{"file", m_path},
            {"lines", QJsonObject{{"all", m_metrics.lines},
                                  {"blank", m_metrics.blankLines},
                                  {"comment", m_metrics.commentLines},
                                  {"preprocessor", m_metrics.preprocessorLines}}},
            {"comments", QJsonObject{{"block", m_metrics.blockComments}, {"line", m_metrics.lineComments}}},
            {"declarations", describe(static_cast<const SourceBrowserContainer&>(m_database))},
            {"notes", describeNotes(m_notes)},
            {"diagnostics", describeNotes(m_diagnostics)}};
}
