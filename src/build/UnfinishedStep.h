#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

/// The step under way, whose output doesn't count before the step is through, whatever its time: it may be
/// half written, or what follows its making may not have run. If it doesn't come to its end, the output gets
/// a time older than anything that it can be made from, so that the next build makes it anew.
///
/// A process that is killed can't see to that. So the output is on record, in a file of the process, until
/// another step takes its place there or the project is through; the next run finds the record. In between
/// the last step stands for those above it, which are due because it was.
class UnfinishedStep {
public:
    /// Whether the output, of this time in seconds, is of a step that did not come to its end.
    bool isUnfinished(const QString& output, qint64 time) const {
        return time < -(qint64{1} << 30) || m_left.contains(output);
    }

    /// Keeps records in the directory, where those of processes that have ended are looked at first. None are
    /// kept before, nor where they can't be written.
    void keepRecordsIn(const QString& directory);
    /// Heeds the records of processes that have ended, and leaves them and the outputs as they are.
    void heedRecordsIn(const QString& directory);
    /// The output of the next step, by its full path; empty if it has none of its own.
    void setOutput(const QString& path) { m_next = path; }
    /// A command of the step is about to run.
    void begin();
    /// The step has not done all that it should, though the build goes on.
    void spoil();
    /// The steps of a project are through, or the build stops here.
    void end(bool isThrough);

private:
    QSet<QString> m_left; ///< outputs of records that are heeded
    QString m_next;
    QString m_output;          ///< of the step under way; null if there is none
    QByteArray m_before;       ///< its status as the step found it
    QString m_record;          ///< the path of our record; null if none is kept
    bool m_isOnRecord = false; ///< whether our record was written since the last end
};
