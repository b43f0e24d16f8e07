#pragma once

#include <QString>
#include <string_view>

/// Who wants to know what a scan meets, as it meets it. Lines count from 1. The texts live for the length of
/// the call.
class SourceBrowserEventInterface {
public:
    virtual ~SourceBrowserEventInterface() = default;

    /// A line that begins with "#", without its continuation lines.
    virtual void preprocessorLine(std::string_view text, int line);
    /// A line comment that begins with FIXME, TODO, BUG or HACK, white space simplified.
    virtual void fixmeComment(const QString& text, int line);
    /// The phylum is a number of SourceBrowserObject::Phylum; `kind` is the word that was written.
    virtual void declareContainer(int phylum, const QString& name, const char* kind, int line);
    virtual void endContainer();
    virtual void declareObject(int phylum, const QString& name, int line);
    virtual void visibilityChange(int access, int line);
};

/// Who wants to read the diagnostics of a scan. None of them stops it.
class BuildLog {
public:
    virtual ~BuildLog() = default;
    virtual void openGroup(const QString& title) = 0;
    virtual void closeGroup() = 0;
    /// The line counts from 1.
    virtual void diagnostic(const QString& text, int line) = 0;
};
