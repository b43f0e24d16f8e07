#include "macros/Path.h"

#include "foundation/Text.h"
#include "macros/QTx.h"

#include <QStringList>

namespace {

/// Whether a "." or another "/" stands behind a "/" anywhere.
bool hasRelativeParts(const QString& text) {
    QChar last;
    for (const QChar c : text) {
        if (last == u'/' && (c == u'.' || c == u'/'))
            return true;
        last = c;
    }
    return false;
}

QStringView behindLastSlash(const QString& text) { return QStringView(text).mid(text.lastIndexOf(u'/') + 1); }

} // namespace

void Path::setPath(const QString& text) {
    m_data->text = normalised(text);
    m_data->status.reset();
}

Path& Path::operator+=(const QString& text) {
    setPath(m_data->text + text);
    return *this;
}

QByteArray Path::osPath() const { return toBytes(m_data->text); }

QString Path::fileName() const { return behindLastSlash(m_data->text).toString(); }

QString Path::baseName() const {
    const QStringView name = behindLastSlash(m_data->text);
    const qsizetype dot = name.indexOf(u'.');
    return (dot < 0 ? name : name.left(dot)).toString();
}

QString Path::extension(bool complete) const {
    const QStringView name = behindLastSlash(m_data->text);
    const qsizetype dot = complete ? name.indexOf(u'.') : name.lastIndexOf(u'.');
    return dot < 0 ? QString("") : name.mid(dot + 1).toString();
}

QString Path::dirPath(bool absolutely) const {
    const QString text = absolutely ? absolute(m_data->text) : m_data->text;
    const qsizetype slash = text.lastIndexOf(u'/');
    if (slash < 0)
        return ".";
    return slash == 0 ? QString("/") : text.left(slash);
}

const FileStatus& Path::status() const {
    if (!m_data->status)
        m_data->status = files().status(m_data->text);
    return *m_data->status;
}

QDateTime Path::timeOf(qint64 FileStatus::*time) const {
    return exists() ? QDateTime::fromMSecsSinceEpoch(status().*time / 1'000'000) : QDateTime();
}

QString Path::absolute(const QString& text) {
    return isAbsolute(text) ? text : currentDirectory() + "/" + text;
}

QString Path::normalised(QString text) {
    removeRelativePaths(text);
    return text;
}

// The text is copied to its own front, component by component, instead of being cut in its middle again and
// again. `out` is always what would stand before the scan position.
void Path::removeRelativePaths(QString& text) {
    if (!hasRelativeParts(text))
        return;
    const auto endsComponent = [&](qsizetype at) { return at >= text.size() || text[at] == u'/'; };
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool startsComponent = text[i] == u'.' && out.endsWith(u'/');
        if (startsComponent && endsComponent(i + 1)) { // "/." goes
            out.chop(1);
            continue;
        }
        if (startsComponent && text[i + 1] == u'.' && endsComponent(i + 2)) {
            const qsizetype parent = out.size() >= 3 ? out.lastIndexOf(u'/', out.size() - 3) : -1;
            if (parent >= 0) { // the parent and "/.." go
                out.truncate(parent);
                ++i;
                continue;
            }
        }
        out += text[i];
    }
    text.truncate(0);
    for (const QChar c : out) {
        if (c != u'/' || !text.endsWith(u'/'))
            text += c;
    }
}

void Path::ensureDirExists(const QString& filePath) { QTx::makeDir(Path(filePath).dirPath(false)); }

bool Path::relativeDirPath(const QString& fromDir, const QString& toDir, QString& out) {
    out = QString("");
    if (toDir == ".")
        return true;
    const QStringList from = normalised(absolute(fromDir)).split(u'/', Qt::SkipEmptyParts);
    const QStringList to = normalised(absolute(toDir)).split(u'/', Qt::SkipEmptyParts);
    qsizetype common = 0;
    while (common < from.size() && common < to.size() && from[common] == to[common])
        ++common;
    if (common == 0)
        return false;
    QStringList way(from.size() - common, "..");
    way += to.mid(common);
    out = way.isEmpty() ? QString("") : way.join(u'/');
    return true;
}

bool Path::relativeFilePath(const QString& fromDir, const QString& file, QString& out) {
    const Path path(file);
    QString directory;
    if (!relativeDirPath(fromDir, path.dirPath(false), directory))
        return false;
    out = directory.isEmpty() ? path.fileName() : directory + "/" + path.fileName();
    return true;
}

QString Path::relativeFilePath(const QString& fromDir, const QString& file) {
    QString way;
    return relativeFilePath(fromDir, file, way) ? way : absolute(file);
}
