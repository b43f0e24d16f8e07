#pragma once

#include <QHash>
#include <QStringList>

/// What outputs were made from, by their full paths. Keeps the lists packed: there is one for every source
/// file of a solution, and they hold the same headers over and over.
class DependencyCache {
public:
    /// Empty if nothing is known.
    QStringList find(const QString& output) const;
    void store(const QString& output, const QStringList& dependencies);
    void remove(const QString& output) { m_lists.remove(output); }

private:
    QHash<QString, QByteArray> m_lists; ///< names, a zero byte between them
};
