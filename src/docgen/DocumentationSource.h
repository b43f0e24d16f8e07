#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

class SourceBrowserObject;

/// What the index of a run tells of one documented object.
struct Obj {
    QString name;
    QString group;
    QString brief;
};

/// The documented objects of a run, by name, and its groups in the order in which they were first named.
struct DocObjects {
    QMap<QString, Obj> docObjects;
    QStringList docGroups;

    void addGroup(const QString& group);

private:
    QSet<QString> m_known;
};

/// The comment language: plain text with keywords behind a backslash becomes HTML. Nothing in it is an error:
/// an unknown keyword vanishes, and what is open at the end is closed.
class DocumentationSource {
public:
    /// In characters, but for what closes the open block. A text is read until it would go beyond.
    static constexpr qsizetype longestBody = 1 << 24;

    /// The groups and objects of the comments go there; it stays the caller's.
    explicit DocumentationSource(DocObjects& objects) : m_objects(objects) {}

    /// The cleaned comment of an object as HTML: runs of blanks become one, line breaks stay, and "\this" is
    /// the object's name. Null unless the comment begins with "!".
    QString documentationSource(const SourceBrowserObject& object);
    /// A text as HTML. With an object, the text is its comment and must begin with "!", or null comes back;
    /// the object is entered with its group and brief. Without one the text is a document of its own.
    QString documentationSource(const QString& text, const SourceBrowserObject* object);

private:
    /// The block that is open.
    enum Mode { None, Paragraph, BulletList, NumberedList, CodeBlock };
    enum class Argument { None, Word, Line };
    struct Keyword;
    static const Keyword keywords[];
    static const Keyword* findKeyword(const QString& word);

    void start(Mode mode);
    void add(QStringView html);
    void readCharacter();
    void lineBreak();
    QString readKeyword();
    void carryOut(const Keyword& keyword);
    QString getLineArg();
    QString getWordArg();
    bool getBracedArg(QString& argument);
    bool atEnd() const { return m_at >= m_text.size(); }
    bool isAt(char16_t character) const { return !atEnd() && m_text[m_at] == character; }
    void passBlanks();

    // What keywords do beyond adding text.
    void brief(const QString& argument);
    void ingroup(const QString& argument);
    void item(const QString& argument);
    void step(const QString& argument);
    void synopsis(const QString& argument);
    void split(const QString& argument);
    void listEntry(Mode list);

    DocObjects& m_objects;
    const SourceBrowserObject* m_object = nullptr;
    QString m_text;
    qsizetype m_at = 0;
    QString m_docString;
    bool m_isFull = false;
    Mode m_mode = None;
    QString m_group;
    QString m_brief;
};
