#pragma once

#include "docgen/DocumentationSource.h"

class Path;
class SourceBrowserObject;

/// Turns the documentation comments of a header, or a document in their language, into HTML pages. A page
/// that can't be written is passed over without a word.
class DocGen {
public:
    /// In bytes: of all pages of a run together. The first that would go beyond is the last object's.
    static constexpr qint64 mostBytes = qint64{1} << 28;

    /// Makes the pages of one input file, in a directory that is made if it is missing. A file with the
    /// extension "dg" becomes one page. Any other is a C or C++ header: each function at file level and each
    /// struct with a comment that begins with "!" gets a page of its own, and the header an index page and a
    /// file of contents. A file that can't be read is an empty one.
    static void generateDocumentation(const Path& input, const QString& outputDirectory);

    /// What `generateDocumentation` makes of the bytes of a header or of a document.
    void generateHeader(const Path& input, std::string_view bytes, const QString& outputDirectory);
    void generateDocument(const Path& input, std::string_view bytes, const QString& outputDirectory);

    /// The table of the index page: the groups in the order in which they were first named, and below each
    /// its objects by name.
    QString generateBody() const;

private:
    void document(const SourceBrowserObject& object, const QString& outputDirectory);
    void write(const QString& outputDirectory, const QString& name, const char* extension,
               const QString& contents);

    DocObjects m_objects;
    DocumentationSource m_source{m_objects};
    QString m_contents; ///< the entries of the file of contents
    qint64 m_written = 0;
    bool m_isFull = false;
    bool m_hasNoRoom = false;
};
