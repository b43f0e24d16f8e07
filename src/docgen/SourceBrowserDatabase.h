#pragma once

#include "docgen/SourceBrowserContainer.h"

#include <QMap>

/// What the lines of one file are, and how many comments there are.
struct Metrics {
    int lines = 0;
    int blankLines = 0; ///< nothing but white space
    int commentLines = 0;
    int preprocessorLines = 0; ///< with their continuations
    int blockComments = 0;
    int lineComments = 0;
};

/// The root of the tree. It also holds all classes by their full path, and all structs but those that a
/// `typedef` makes in another container, wherever they are declared.
class SourceBrowserDatabase : public SourceBrowserContainer {
public:
    SourceBrowserDatabase() : SourceBrowserContainer(0) {}

    /// In the place of what was known of the file.
    void setMetrics(const QString& file, const Metrics& metrics) { m_metrics[file] = metrics; }
    /// All zero for a file that was not scanned.
    Metrics metrics(const QString& file) const { return m_metrics.value(file); }

protected:
    QString keyOfClass(const SourceBrowserContainer& container) const override { return container.path(); }

private:
    QMap<QString, Metrics> m_metrics;
};
