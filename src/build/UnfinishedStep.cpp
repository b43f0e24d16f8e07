#include "build/UnfinishedStep.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace {

constexpr const char* recordName = "unfinished-"; // the process and its start follow

/// A record holds a check of its text, the text, and '\0', behind which the end of a longer one may stand.
/// The text is the status of the output before the step, and behind '\n' its path.
QByteArray recordOf(const QByteArray& text) {
    return QByteArray::number(qChecksum(text), 16) + ' ' + text + '\0';
}

/// When a process was started, in the system's own count; empty if there is no such process.
QString startOf(const QString& process) {
    constexpr qsizetype startAt = 19; // among the fields behind the name, which may hold anything
    const FileBytes stat = files().read("/proc/" + process + "/stat");
    const QString text = toText(stat.view());
    return text.mid(text.lastIndexOf(u')') + 2).split(u' ').value(startAt);
}

QByteArray statusOf(const QString& path) {
    const FileStatus status = files().status(path);
    QByteArray text;
    for (const qint64 field : {qint64{status.kind}, status.size, status.modified, status.changed})
        text += QByteArray::number(field) + ' ';
    return text;
}

/// Whether the step has touched its output. If it has not, that is as good as it was.
bool isTouched(const QString& output, const QByteArray& before) {
    return files().status(output).kind == FileStatus::File && statusOf(output) != before;
}

/// The paths of the records of processes that have ended.
QStringList recordsLeftIn(const QString& directory) {
    QStringList paths;
    for (const QString& name : files().list(directory)) {
        const QStringList parts = name.split(u'-');
        if (name.startsWith(QLatin1String(recordName)) && startOf(parts[1]) != parts.value(2))
            paths.append(directory + "/" + name);
    }
    return paths;
}

/// The output that a record tells of; null if it is none, or as good as before.
QString unfinishedBy(const QString& path) {
    const FileBytes bytes = files().read(path);
    const QByteArray record(bytes.data.get(), static_cast<qsizetype>(bytes.size));
    const qsizetype begin = record.indexOf(' ') + 1;
    const QByteArray text = record.mid(begin, record.indexOf('\0') - begin);
    const qsizetype end = text.indexOf('\n');
    if (end < 0 || !record.startsWith(recordOf(text)))
        return QString();
    const QString output = toText(viewOf(text.mid(end + 1)));
    return isTouched(output, text.left(end)) ? output : QString();
}

} // namespace

void UnfinishedStep::keepRecordsIn(const QString& directory) {
    const QString self = QString::number(::getpid());
    const QString start = startOf(self);
    if (start.isEmpty())
        return; // nothing would tell which records are of processes that still run
    m_record = directory + "/" + recordName + self + "-" + start;
    for (const QString& record : recordsLeftIn(directory)) {
        if (const QString output = unfinishedBy(record); !output.isNull())
            files().makeOldest(output);
        files().remove(record);
    }
}

void UnfinishedStep::heedRecordsIn(const QString& directory) {
    for (const QString& record : recordsLeftIn(directory)) {
        if (const QString output = unfinishedBy(record); !output.isNull())
            m_left.insert(output);
    }
}

void UnfinishedStep::begin() {
    if (m_next.isEmpty())
        return;
    m_output = std::exchange(m_next, QString());
    m_before = statusOf(m_output);
    if (m_record.isNull())
        return;
    const QByteArray record = recordOf(m_before + '\n' + toBytes(m_output));
    if (files().writeOver(m_record, viewOf(record)) == ENOENT) {
        Path::ensureDirExists(m_record);
        files().writeOver(m_record, viewOf(record));
    }
    m_isOnRecord = true;
}

void UnfinishedStep::spoil() {
    if (!m_output.isNull() && isTouched(m_output, m_before))
        files().makeOldest(m_output);
}

void UnfinishedStep::end(bool isThrough) {
    if (!isThrough)
        spoil();
    if (std::exchange(m_isOnRecord, false))
        files().remove(m_record);
    m_output = QString();
}
