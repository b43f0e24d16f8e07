#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class XMLElement;

/// What a setting is: how files name it, what kind of value it takes, its default. Values themselves are text
/// everywhere; a null text means that nothing is stated, an empty one is a value.
class PropertyClass {
public:
    enum Type {
        Boolean,      ///< "No" or "Yes"
        Integer,      ///< decimal
        IntegerHex,   ///< "0x" and hexadecimal digits
        IntegerRange, ///< decimal, within minimum and maximum
        String,
        FileName,
        ProjFileName,
        StringList, ///< list text: entries joined by ";"
        DirPath,
        DirPathList, ///< list text of directories
        Enumeration, ///< one of `enumerates`
        Color,
        Font,
        FixedPitchFont,
        Custom
    };

    /// Integers and ranges. The default becomes hexadecimal text if the type is IntegerHex.
    PropertyClass(const QString& saveName, Type type, int minimum, int maximum, const QString& page,
                  const QString& group, const QString& shortDescription, const QString& longDescription,
                  int defaultValue);
    /// The general form. A Boolean without a default gets "No".
    PropertyClass(const QString& saveName, Type type, const QString& page, const QString& group,
                  const QString& shortDescription, const QString& longDescription,
                  const QString& defaultValue);
    /// Enumerations.
    PropertyClass(const QString& saveName, Type type, const QStringList& enumerates, const QString& page,
                  const QString& group, const QString& shortDescription, const QString& longDescription,
                  const QString& defaultValue);
    /// Booleans.
    PropertyClass(const QString& saveName, const QString& page, const QString& group,
                  const QString& shortDescription, const QString& longDescription, bool defaultValue);
    /// A name and a type; every text stays null.
    PropertyClass(const QString& saveName, Type type);
    PropertyClass(const QString& saveName, Type type, int minimum, int maximum);
    /// A descriptor in XML: attributes "name", "type", "group", "short", "long", "default", "minimum",
    /// "maximum", "enumeration" (values joined by ";") and "specialvalue". What is absent stays null, and an
    /// unknown type is Boolean.
    explicit PropertyClass(const XMLElement* descriptor);
    virtual ~PropertyClass() = default;

    /// The attribute in project files, the key in the settings file, the name on the command line.
    const QString& saveName() const { return m_saveName; }
    Type type() const { return m_type; }
    const QString& defaultValue() const { return m_defaultValue; }
    void setDefault(const QString& value) { m_defaultValue = value; }
    /// The allowed values of an enumeration; "No" and "Yes" for a Boolean that has no list of its own.
    const QStringList& enumerates() const;
    void setEnumerates(const QStringList& values) { m_enumerates = values; }
    /// False if the value lives in the configuration "Common", whatever configuration is asked for.
    bool perConfiguration() const { return m_perConfiguration; }
    void setPerConfiguration(bool value) { m_perConfiguration = value; }
    bool readOnly() const { return m_readOnly; }
    void setReadOnly(bool value) { m_readOnly = value; }
    int minimum() const { return m_minimum; }
    /// The upper end of the range, which also gives the width of hexadecimal text.
    int maximum() const { return m_maximum; }

    /// What a person sees of it.
    const QString& page() const { return m_page; }
    const QString& group() const { return m_group; }
    const QString& shortDescription() const { return m_shortDescription; }
    const QString& longDescription() const { return m_longDescription; }
    const QString& suffix() const { return m_suffix; }
    void setSuffix(const QString& text) { m_suffix = text; }
    const QString& dialogDescription() const { return m_dialogDescription; }
    void setDialogDescription(const QString& text) { m_dialogDescription = text; }
    /// Shown in the place of the minimum of a range.
    const QString& specialValueText() const { return m_specialValueText; }
    void setSpecialValueText(const QString& text) { m_specialValueText = text; }

    /// The name of a type, as descriptors in XML write it.
    static const char* typeName(Type type);
    /// "0x" and the lower-case digits of `value`, at least as many as `maximum` needs, and never cut.
    static QString toHexString(int value, int maximum);

private:
    QString m_saveName;
    QString m_group;
    QString m_shortDescription;
    QString m_longDescription;
    QString m_suffix;
    QString m_dialogDescription;
    QString m_defaultValue;
    QString m_specialValueText;
    QString m_page;
    bool m_readOnly = false;
    bool m_perConfiguration = true;
    Type m_type = Boolean;
    QStringList m_enumerates;
    int m_minimum = 0;
    int m_maximum = 0;
};

/// Classes in order. They belong to whoever made them and last as long as the program.
class PropertyClassList : public QList<const PropertyClass*> {
public:
    using QList::QList;
    /// Appends unless this same object is in the list already.
    void appendUnique(const PropertyClass* propertyClass) {
        if (!contains(propertyClass))
            append(propertyClass);
    }
    void appendUnique(const PropertyClassList& others) {
        for (const PropertyClass* each : others)
            appendUnique(each);
    }
};
