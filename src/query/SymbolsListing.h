#pragma once

#include "docgen/SourceBrowserDatabase.h"
#include "docgen/SourceBrowserEventInterface.h"

#include <QJsonObject>

/// What a scan found in one file: the declarations in the order of their lines, and what was met on the way.
class SymbolsListing : private SourceBrowserEventInterface, private BuildLog {
public:
    SymbolsListing(const QString& path, std::string_view bytes);

    /// Lines for people, each with its end: a head, then a declaration a line, members indented below. In
    /// UTF-8.
    QByteArray text() const;
    QJsonObject json() const;

private:
    struct Note {
        QString text;
        int line = 0; ///< from 1
    };

    void fixmeComment(const QString& text, int line) override { m_notes.append({text, line}); }
    void openGroup(const QString&) override {}
    void closeGroup() override {}
    void diagnostic(const QString& text, int line) override { m_diagnostics.append({text, line}); }

    SourceBrowserDatabase m_database;
    QString m_path;
    Metrics m_metrics;
    QList<Note> m_notes;
    QList<Note> m_diagnostics;
};
