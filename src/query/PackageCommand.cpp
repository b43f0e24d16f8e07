#include "query/PackageCommand.h"

#include "build/Archive2.h"
#include "build/PackageFile.h"
#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "query/PackageExtraction.h"
#include "query/Printable.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <optional>
#include <ostream>

namespace {

/// The container in a package file.
QByteArray containerOf(const QString& path) {
    const FileBytes file = files().read(path, Archive2::mostBytes + 64);
    if (!file)
        throw QueryError{path + ": " + systemError(file.error)};
    QByteArray image;
    switch (QTx::decompress(file.view(), image)) {
    case QTx::Decompressed::Ok:
        return image;
    case QTx::Decompressed::NotCompressed:
        break;
    case QTx::Decompressed::Refused:
        throw QueryError{path + ": larger than 2,147,483,647 bytes"};
    }
    throw QueryError{path + ": no package, or damaged"};
}

/// When the file was changed that the member was made from; null if that is not known.
QString timeOf(const ArchiveChunk2& member) {
    return member.time == 0 ? QString()
                            : QDateTime::fromSecsSinceEpoch(member.time, Qt::UTC).toString(Qt::ISODate);
}

void list(const ArchiveChunk2& member, std::ostream& out) {
    const QString time = timeOf(member);
    out << viewOf(toBytes(QString::number(member.size).rightJustified(10))) << "  "
        << viewOf(toBytes((time.isNull() ? QString("-") : time).leftJustified(20))) << "  "
        << printable(viewOf(member.name))
        << (member.data().data() ? "" : "  (its data are not in the package)") << '\n';
}

QJsonObject describe(const ArchiveChunk2& member) {
    const QString time = timeOf(member);
    return {{"name", toText(viewOf(member.name))},
            {"size", static_cast<qint64>(member.size)},
            {"time", time.isNull() ? QJsonValue() : QJsonValue(time)},
            {"flag", member.flag},
            {"whole", member.data().data() != nullptr}};
}

} // namespace

QList<QCommandLineOption> packageOptions() {
    return {
        {"json", "print JSON"},
        {"extract", "write the members into DIR, which is made, and list those that were written", "DIR"},
    };
}

int runPackage(const QCommandLineParser& words, const QueryStreams& streams) {
    const QStringList paths = words.positionalArguments();
    if (paths.size() != 1)
        throw QueryError{"package: one file expected"};
    const QString& path = paths.first();
    const QByteArray image = containerOf(path);
    Archive2 archive;
    const Archive2::Result result = archive.open(viewOf(image), path);
    if (result == Archive2::BadHeader)
        throw QueryError{path + ": there is no container in the package"};
    int status = 0;
    const auto complain = [&](const std::string& text) {
        streams.err << "ostquery: " << viewOf(toBytes(path)) << ": " << text << '\n';
        status = 1;
    };
    std::optional<PackageExtraction> extraction;
    if (words.isSet("extract"))
        extraction.emplace(words.value("extract"), static_cast<quint64>(image.size()));
    QJsonArray answers;
    for (const ArchiveChunk2& member : archive.members()) {
        const QString refusal = extraction ? extraction->extract(member) : QString();
        if (!refusal.isNull())
            complain("\"" + printable(viewOf(member.name)) +
                     "\" not extracted: " + printable(viewOf(toBytes(refusal))));
        QJsonObject answer = describe(member);
        if (extraction)
            answer["extracted"] = refusal.isNull();
        if (words.isSet("json"))
            answers.append(answer);
        else if (refusal.isNull())
            list(member, streams.out);
    }
    if (words.isSet("json"))
        streams.out << viewOf(QJsonDocument(answers).toJson());
    if (result == Archive2::ShortDirectory)
        complain("the directory ends behind " + std::to_string(archive.members().size()) + " members");
    return status;
}
