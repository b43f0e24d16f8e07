#pragma once

#include <QString>
#include <QStringList>

/// The words of a command text, program first. Blanks separate words, double quotes keep blanks together and
/// go, and a "\" in front of a double quote makes it a plain character. No word is empty. There is no shell:
/// nothing else means anything.
QStringList dequotify(const QString& text);

/// `path` as it is seen from `directory`: itself if it is absolute.
QString getAbsPath(const QString& directory, const QString& path);
