#include "build/Words.h"

#include "macros/Path.h"

QStringList dequotify(const QString& text) {
    QStringList words;
    QString word;
    bool inQuotes = false;
    const auto endWord = [&] {
        if (!word.isEmpty())
            words.append(word);
        word.truncate(0);
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'\\' && i + 1 < text.size() && text[i + 1] == u'"')
            word += text[++i];
        else if (c == u'"')
            inQuotes = !inQuotes;
        else if (c == u' ' && !inQuotes)
            endWord();
        else
            word += c;
    }
    endWord();
    return words;
}

QString getAbsPath(const QString& directory, const QString& path) {
    return Path::isAbsolute(path) ? path : directory + "/" + path;
}
