#include "docgen/DocumentationSource.h"

#include "docgen/SourceBrowserObject.h"

#include <QHash>

namespace {

constexpr QStringView unassignedGroup = u"*** UNASSIGNED GROUP ***";

/// By mode.
constexpr QStringView openings[] = {u"", u"<p>", u"<ul><li>", u"<ol><li>", u"<p><blockquote><tt>"};
constexpr QStringView closings[] = {u"", u"</p>", u"</li></ul>", u"</li></ol>", u"</tt></blockquote></p>"};

bool isBlank(QChar c) { return c == u' ' || c == u'\t'; }

bool isPunctuation(QChar c) { return c > u' ' && c < u'\x7F' && !c.isLetterOrNumber(); }

QString fileNameOf(const QString& path) { return path.mid(path.lastIndexOf(u'/') + 1); }

/// Runs of white space become one blank, the ends are trimmed, and line breaks stay.
QString cleaned(const QString& comment) {
    QString text(comment.size(), Qt::Uninitialized);
    QChar* const begin = text.data();
    QChar* end = begin;
    bool isPending = false;
    for (const QChar c : comment) {
        if (c.isSpace() && c != u'\n') {
            isPending = end != begin;
            continue;
        }
        if (isPending)
            *end++ = u' ';
        isPending = false;
        *end++ = c;
    }
    text.truncate(end - begin);
    return text;
}

} // namespace

/// What a keyword does: `start(mode)`, then its text, with its argument in each "%1", and then what no text
/// tells.
struct DocumentationSource::Keyword {
    const char* words; ///< its spellings, with blanks between them
    Argument argument;
    int mode; ///< -1: the open block stays
    const char* text;
    void (DocumentationSource::*action)(const QString& argument);
};

const DocumentationSource::Keyword DocumentationSource::keywords[] = {
    {"brief", Argument::Line, -1, "", &DocumentationSource::brief},
    {"ingroup", Argument::Line, -1, "", &DocumentationSource::ingroup},
    {"$", Argument::None, Paragraph, "$", nullptr},
    {"&", Argument::None, Paragraph, "&amp;", nullptr},
    {"<", Argument::None, Paragraph, "&lt;", nullptr},
    {">", Argument::None, Paragraph, "&gt;", nullptr},
    {"\\", Argument::None, Paragraph, "\\", nullptr},
    {",", Argument::None, Paragraph, "&#x202f;", nullptr},
    {"-", Argument::None, Paragraph, "&ndash;", nullptr},
    {"--", Argument::None, Paragraph, "&mdash;", nullptr},
    {"a b", Argument::Word, Paragraph, "<b>%1</b>", nullptr},
    {"q", Argument::Word, Paragraph, "&ldquo;%1&rdquo;", nullptr},
    {"sq", Argument::Word, Paragraph, "&lsquo;%1&rsquo;", nullptr},
    {"bi", Argument::Word, Paragraph, "<b><i>%1</i></b>", nullptr},
    {"i em e", Argument::Word, Paragraph, "<i>%1</i>", nullptr},
    {"c tt", Argument::Word, Paragraph, "<tt>%1</tt>", nullptr},
    {"n br", Argument::None, Paragraph, "<br/>", nullptr},
    {"code", Argument::None, CodeBlock, "", nullptr},
    {"endcode", Argument::None, None, "", nullptr},
    {"item", Argument::None, -1, "", &DocumentationSource::item},
    {"step", Argument::None, -1, "", &DocumentationSource::step},
    {"xref ref", Argument::Word, Paragraph, "<a href=\"%1.htm\">%1</a>", nullptr},
    {"synopsis", Argument::None, None, "<h5>Synopsys</h5>", &DocumentationSource::synopsis},
    {"description desc", Argument::None, None, "<h5>Description</h5>", nullptr},
    {"ts", Argument::None, None, "<h5>Thread Safety</h5>", nullptr},
    {"note", Argument::None, None, "<h5>Note</h5>", nullptr},
    {"errors", Argument::None, None, "<h5>Errors</h5>", nullptr},
    {"sa seealso", Argument::None, None, "<h5>See Also</h5>", nullptr},
    {"stds standards", Argument::None, None, "<h5>Standards</h5>", nullptr},
    {"section", Argument::Line, None, "<h2>%1</h2>", nullptr},
    {"subsection", Argument::Line, None, "<h3>%1</h3>", nullptr},
    {"title", Argument::Line, None, "<h1>%1</h1>", nullptr},
    {"task", Argument::Line, None, "<h5>%1</h5>", nullptr},
    {"split", Argument::Word, None, "", &DocumentationSource::split},
};

/// Null for a word that is no keyword.
const DocumentationSource::Keyword* DocumentationSource::findKeyword(const QString& word) {
    static const QHash<QString, const Keyword*> byWord = [] {
        QHash<QString, const Keyword*> table;
        for (const Keyword& keyword : keywords)
            for (const QString& spelling : QString(keyword.words).split(u' '))
                table.insert(spelling, &keyword);
        return table;
    }();
    return byWord.value(word);
}

void DocObjects::addGroup(const QString& group) {
    if (m_known.contains(group))
        return;
    m_known.insert(group);
    docGroups.append(group);
}

QString DocumentationSource::documentationSource(const SourceBrowserObject& object) {
    QString text = cleaned(object.comment);
    return documentationSource(text.replace("\\this", object.name()), &object);
}

QString DocumentationSource::documentationSource(const QString& text, const SourceBrowserObject* object) {
    m_object = object;
    m_text = text;
    m_at = object ? 1 : 0;
    m_docString = "";
    m_mode = None;
    m_isFull = false;
    m_group = m_brief = "";
    if (object && !text.startsWith(u'!'))
        return QString();
    while (!atEnd() && !m_isFull)
        readCharacter();
    start(None);
    if (object) {
        if (m_group.isEmpty())
            m_group = unassignedGroup.toString();
        m_objects.addGroup(m_group);
        m_objects.docObjects[object->name()] = {object->name(), m_group, m_brief};
    }
    return m_docString;
}

void DocumentationSource::add(QStringView html) {
    m_isFull = m_docString.size() + html.size() > longestBody;
    if (!m_isFull)
        m_docString += html;
}

/// Text inside a list or a code block stays there.
void DocumentationSource::start(Mode mode) {
    if (mode == m_mode || (mode == Paragraph && m_mode != None))
        return;
    m_docString += closings[m_mode];
    m_docString += openings[mode];
    m_mode = mode;
}

/// One character of text, a run of plain ones, or a keyword.
void DocumentationSource::readCharacter() {
    const QChar c = m_text[m_at];
    if (c == u'\\') {
        ++m_at;
        if (const Keyword* keyword = findKeyword(readKeyword()))
            carryOut(*keyword);
        return;
    }
    if (m_mode == None && (isBlank(c) || c == u'\n')) {
        ++m_at;
        return;
    }
    start(Paragraph);
    if (c == u'\n')
        return lineBreak();
    if (c == u'\xB7') {
        ++m_at;
        return add(u"&nbsp;");
    }
    const qsizetype first = m_at;
    while (!atEnd() && m_text[m_at] != u'\\' && m_text[m_at] != u'\n' && m_text[m_at] != u'\xB7')
        ++m_at;
    add(QStringView(m_text).mid(first, m_at - first));
}

void DocumentationSource::lineBreak() {
    ++m_at;
    if (m_mode == CodeBlock)
        return add(u"<br/>");
    if (!isAt(u'\n'))
        return add(u"\n");
    while (isAt(u'\n'))
        ++m_at;
    start(None);
}

/// The keyword behind a backslash; empty if there is none.
QString DocumentationSource::readKeyword() {
    const qsizetype first = m_at;
    if (!atEnd() && isPunctuation(m_text[m_at])) {
        ++m_at;
        if (isAt(u'-'))
            ++m_at;
    } else {
        while (!atEnd() && m_text[m_at].isLetterOrNumber())
            ++m_at;
    }
    return m_text.mid(first, m_at - first);
}

void DocumentationSource::carryOut(const Keyword& keyword) {
    if (keyword.mode >= 0)
        start(static_cast<Mode>(keyword.mode));
    QString argument;
    if (keyword.argument != Argument::None)
        argument = keyword.argument == Argument::Line ? getLineArg() : getWordArg();
    add(QString(keyword.text).replace("%1", argument));
    if (keyword.action)
        (this->*keyword.action)(argument);
}

void DocumentationSource::passBlanks() {
    while (!atEnd() && isBlank(m_text[m_at]))
        ++m_at;
}

/// "{...}", up to the brace or to the end of the line; false if there is no brace.
bool DocumentationSource::getBracedArg(QString& argument) {
    if (!isAt(u'{'))
        return false;
    const qsizetype first = ++m_at;
    while (!atEnd() && !isAt(u'}') && !isAt(u'\n'))
        ++m_at;
    argument = m_text.mid(first, m_at - first);
    ++m_at;
    return true;
}

QString DocumentationSource::getLineArg() {
    QString argument;
    if (getBracedArg(argument))
        return argument;
    passBlanks();
    const qsizetype first = m_at;
    while (!atEnd() && !isAt(u'\n') && !isAt(u'\\'))
        ++m_at;
    argument = m_text.mid(first, m_at - first);
    if (isAt(u'\n'))
        ++m_at;
    return argument;
}

QString DocumentationSource::getWordArg() {
    QString argument;
    if (getBracedArg(argument))
        return argument;
    passBlanks();
    const qsizetype first = m_at;
    while (!atEnd() && (m_text[m_at].isLetterOrNumber() || isAt(u'_')))
        ++m_at;
    return m_text.mid(first, m_at - first);
}

void DocumentationSource::brief(const QString& argument) {
    m_brief = argument;
    m_mode = None;
}

void DocumentationSource::ingroup(const QString& argument) {
    m_group = argument;
    m_objects.addGroup(argument);
    m_mode = None;
}

void DocumentationSource::item(const QString&) { listEntry(BulletList); }

void DocumentationSource::step(const QString&) { listEntry(NumberedList); }

void DocumentationSource::listEntry(Mode list) {
    if (m_mode == list)
        add(u"</li>\n<li>");
    else
        start(list);
}

void DocumentationSource::synopsis(const QString&) {
    if (m_object)
        add(QString("<pre>#include &lt;" + fileNameOf(m_object->declarationFile) + "&gt;<br/>" +
                    m_object->asString() + "</pre>"));
}

void DocumentationSource::split(const QString& argument) {
    add(QString("<p align=\"right\">" + QString(m_docString.isEmpty() ? "" : "<hr color=\"#000080\" />") +
                "<font color=\"#000080\"><b>" + argument + "</b></font></p>"));
}
