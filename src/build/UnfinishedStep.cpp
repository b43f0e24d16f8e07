#include "build/UnfinishedStep.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "macros/Path.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace {

constexpr const char* recordName = "unfinished-"; // the process, its start, and a number of the record follow

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

/// What the step has not touched stays as good as it was.
void discard(const QString& output, const QByteArray& before) {
    if (files().status(output).kind == FileStatus::File && statusOf(output) != before)
        files().makeOldest(output);
}

void recover(const QString& record) {
    const FileBytes bytes = files().read(record);
    const QString text = toText(bytes.view());
    if (const qsizetype end = text.indexOf(u'\n'); end > 0)
        discard(text.mid(end + 1), toBytes(text.left(end)));
}

} // namespace

void UnfinishedStep::keepRecordsIn(const QString& directory) {
    const QString self = QString::number(::getpid());
    const QString start = startOf(self);
    if (start.isEmpty())
        return; // nothing would tell which records are of processes that still run
    m_records = directory + "/" + recordName + self + "-" + start + "-";
    for (const QString& name : files().list(directory)) {
        if (!name.startsWith(QLatin1String(recordName)))
            continue;
        const QString path = directory + "/" + name;
        const QStringList parts = name.split(u'-');
        if (startOf(parts[1]) == parts.value(2))
            continue;
        if (parts.size() == 4) // else it is the beginning of a record
            recover(path);
        files().remove(path);
    }
}

// Each record is a new file, and the last one goes when it is there: what takes the place of a file some file
// systems write to the disk at once, which costs a millisecond for every step.
void UnfinishedStep::begin() {
    if (m_next.isEmpty())
        return;
    m_output = std::exchange(m_next, QString());
    m_before = statusOf(m_output);
    if (m_records.isNull())
        return;
    const QString former = std::exchange(m_record, m_records + (m_record.endsWith(u'1') ? "2" : "1"));
    const QByteArray text = m_before + '\n' + toBytes(m_output);
    if (files().replaceUnsynced(m_record, viewOf(text)) == ENOENT) {
        Path::ensureDirExists(m_record);
        files().replaceUnsynced(m_record, viewOf(text));
    }
    if (!former.isNull())
        files().remove(former);
}

void UnfinishedStep::spoil() {
    if (!m_output.isNull())
        discard(m_output, m_before);
}

void UnfinishedStep::end(bool isThrough) {
    if (!isThrough)
        spoil();
    if (!m_record.isNull())
        files().remove(m_record);
    m_record = QString();
    m_output = QString();
}
