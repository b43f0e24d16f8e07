#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

/// Text and bytes convert as Latin-1, one byte a character, at every door of the system: contents of files,
/// file names, argument words, the environment, the console. So every file name passes through unharmed,
/// whatever the locale says of its bytes.

/// The characters of `bytes`; never null.
inline QString toText(std::string_view bytes) {
    return QString::fromLatin1(bytes.data() ? bytes.data() : "", static_cast<qsizetype>(bytes.size()));
}

/// The bytes of `text`; a character above 255, which no door lets in, becomes "?". Never null.
inline QByteArray toBytes(const QString& text) { return text.isNull() ? QByteArray("") : text.toLatin1(); }

/// A view of all of `bytes`, zero bytes included.
inline std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}
