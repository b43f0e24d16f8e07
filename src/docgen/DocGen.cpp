#include "docgen/DocGen.h"

#include "docgen/CodeEditLineIterator.h"
#include "docgen/SourceBrowserCParser.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"
#include "macros/QTx.h"

#include <cerrno>

namespace {

constexpr const char* pageStart = "<html>\n"
                                  "<!--\n"
                                  "  Made by ostmake out of commented sources. Change those, not this page.\n"
                                  "-->\n"
                                  "<head>\n"
                                  "<link rel=\"stylesheet\" href=\"default.css\" />\n"
                                  "<title style=\"H2U\">";
constexpr const char* pageMiddle =
    "</title>\n"
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\" />\n"
    "</head>\n"
    "<body>\n";
constexpr const char* pageEnd = "\n</body>\n</html>\n";

constexpr const char* tableStart =
    "<table bgcolor=\"#f0f0f0\" width=\"100%\" cellpadding=\"2\" cellspacing=\"0\" border=\"0\" "
    "fm_widths=\"1.1in,*\" style=\"MultiHeadingTable\">\n";

QString page(const QString& title, const QString& body) {
    return pageStart + title + pageMiddle + body + pageEnd;
}

/// The name of a file as text to read, since names are kept a character a byte.
QString displayedName(const QString& name) { return decodedSource(viewOf(toBytes(name))).toHtmlEscaped(); }

/// The bytes of a page: Latin-1, as it says of itself, and the number of any character beyond that.
QByteArray pageBytes(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype first = at;
        while (at < text.size() && text[at].unicode() <= 0xFF)
            ++at;
        bytes += QStringView(text).mid(first, at - first).toLatin1();
        if (at == text.size())
            break;
        char32_t character = text[at++].unicode();
        if (QChar::isHighSurrogate(character) && at < text.size() && text[at].isLowSurrogate())
            character = QChar::surrogateToUcs4(static_cast<char16_t>(character), text[at++].unicode());
        bytes += "&#" + QByteArray::number(static_cast<uint>(character)) + ';';
    }
    return bytes;
}

QString indexRow(const Obj& object) {
    const QString name = object.name.toHtmlEscaped();
    return "<tr><td valign=\"center\"><a href=\"" + name + ".htm\" style=\"Heading\">" + name +
           "</a></td><td width=\"100%\">" + object.brief + "</td></tr>\n";
}

} // namespace

void DocGen::generateDocumentation(const Path& input, const QString& outputDirectory) {
    const FileBytes file = files().read(input.osPathQString());
    if (input.extension(true) == "dg")
        DocGen().generateDocument(input, file.view(), outputDirectory);
    else
        DocGen().generateHeader(input, file.view(), outputDirectory);
}

void DocGen::generateDocument(const Path& input, std::string_view bytes, const QString& outputDirectory) {
    QTx::makeDir(outputDirectory);
    std::string text;
    std::string_view line;
    for (CodeEditLineIterator lines(bytes); lines.getLine(line);)
        text.append(line).append("\n");
    write(outputDirectory, input.baseName(), ".htm",
          page("DocGen document", m_source.documentationSource(decodedSource(text), nullptr)));
}

void DocGen::generateHeader(const Path& input, std::string_view bytes, const QString& outputDirectory) {
    QTx::makeDir(outputDirectory);
    SourceBrowserDatabase database;
    SourceBrowserCParser(database).parseText(input.osPathQString(), bytes);
    for (const auto& method : database.methods())
        document(*method, outputDirectory);
    for (const auto& [name, container] : database.structs())
        document(*container, outputDirectory);

    const QString name = input.baseName();
    write(outputDirectory, name, ".xml",
          "<contents>\n<content url=\"" + name.toHtmlEscaped() + ".htm\">\n" + m_contents +
              "</content>\n</contents>\n");
    // Last: where it is new, all others are.
    write(outputDirectory, name, ".htm",
          page("&lt;" + displayedName(input.fileName()) + "&gt;", generateBody()));
}

/// The page of one object, and its entry in the contents, if it is documented.
void DocGen::document(const SourceBrowserObject& object, const QString& outputDirectory) {
    constexpr qsizetype longestFileName = 255;
    if (m_isFull || !object.comment.startsWith(u'!') || object.name().size() > longestFileName)
        return;
    m_contents += "<content url=\"" + object.name().toHtmlEscaped() + ".htm\" />\n";
    const QString body = m_source.documentationSource(object);
    write(outputDirectory, object.name(), ".htm", page(object.name().toHtmlEscaped(), body));
}

/// A name that would lead out of the directory can't be written. Behind a page for which the disk had no room
/// none follows, so that the index page stays as old as it was, and the next build makes them all.
void DocGen::write(const QString& outputDirectory, const QString& name, const char* extension,
                   const QString& contents) {
    m_isFull = m_written + contents.size() > mostBytes;
    if (m_isFull || m_hasNoRoom || name.contains(u'/'))
        return;
    m_written += contents.size();
    const QByteArray bytes = pageBytes(contents);
    const int error = files().replaceUnsynced(outputDirectory + u'/' + name + extension, viewOf(bytes));
    m_hasNoRoom = error == ENOSPC || error == EDQUOT || error == EIO;
}

QString DocGen::generateBody() const {
    QHash<QString, QString> rows;
    for (const Obj& object : m_objects.docObjects)
        rows[object.group] += indexRow(object);
    QString body(tableStart);
    for (const QString& group : m_objects.docGroups) {
        body += "<tr bgcolor=\"#cccccc\"><td valign=\"center\" colspan=\"2\" style=\"CellTitle\"><b>" +
                group + "</b></td></tr>\n" + rows.value(group);
        if (body.size() > DocumentationSource::longestBody)
            break;
    }
    return body + "</table>";
}
