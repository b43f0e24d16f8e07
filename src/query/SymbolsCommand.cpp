#include "query/SymbolsCommand.h"

#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "query/SymbolsListing.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <ostream>

QList<QCommandLineOption> symbolsOptions() { return {{"json", "print JSON"}}; }

int runSymbols(const QCommandLineParser& words, const QueryStreams& streams) {
    const QStringList paths = words.positionalArguments();
    if (paths.isEmpty())
        throw QueryError{"symbols: a header expected"};
    int status = 0;
    QJsonArray answers;
    for (const QString& path : paths) {
        const FileBytes file = files().read(path);
        if (!file) {
            streams.err << "ostquery: can't read " << viewOf(toBytes(path)) << ": "
                        << viewOf(toBytes(systemError(file.error))) << '\n';
            status = 1;
            continue;
        }
        const SymbolsListing listing(path, file.view());
        if (words.isSet("json"))
            answers.append(listing.json());
        else
            streams.out << viewOf(listing.text());
    }
    if (words.isSet("json"))
        streams.out << viewOf(QJsonDocument(answers).toJson());
    return status;
}
