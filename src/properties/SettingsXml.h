#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <string_view>

/// The settings file as bytes. What is written here is always read here as it was, but for characters that no
/// XML file can hold: these become "?".
namespace SettingsXml {

using Entries = QMap<QString, QString>;

/// No settings file is longer.
constexpr size_t mostBytes = 64 << 20;

/// The file for these entries, in the order of their keys. Keys are written as they stand.
QByteArray write(const Entries& entries);
/// The entries of a file. False, with `entries` as they were, for what is not well-formed, and for what no
/// settings file is: over `mostBytes`, 200,000 elements or 256 levels, or with a tag of over 1,024 bytes. A
/// key that can't be written as it stands is passed over, lest it harm the file when that is written again.
bool read(std::string_view bytes, Entries& entries);

} // namespace SettingsXml

/// The text with references in the place of & > < " ' and the middle dot.
QString xmlEscapeEntities(const QString& text);
/// The inverse; also turns "&nbsp;" into a blank.
QString xmlUnescapeEntities(QString text);
