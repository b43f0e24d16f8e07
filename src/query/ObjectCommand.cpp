#include "query/ObjectCommand.h"

#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "foundation/Text.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFModule.h"
#include "object/SOBFWriter.h"
#include "query/ObjectListing.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <ostream>

namespace {

/// A module that is read, with all that it lies in.
class ObjectFile {
public:
    /// A source line holds up to the next, as a listing shows it.
    ObjectFile(const QString& path, std::ostream* trace) : m_stream(path) {
        SOBFMSP430Reader reader(&m_stream, true);
        m_module = reader.readFile(trace);
    }
    ~ObjectFile() { SOBFReader::release(m_module); }
    ObjectFile(const ObjectFile&) = delete;
    ObjectFile& operator=(const ObjectFile&) = delete;

    SOBFModule* module() { return m_module; }

private:
    Pool m_pool;
    CurrentPool m_current{&m_pool};
    HFileInputByteStream m_stream;
    SOBFModule* m_module = nullptr;
};

void rewrite(SOBFModule* module, const QString& path) {
    SOBFWriter writer;
    if (module)
        module->externalize(writer);
    if (const int error = files().replace(path, writer.finish().view()))
        throw HException("can't write " + toBytes(path).toStdString() + ": " +
                         toBytes(systemError(error)).toStdString());
}

enum class Form { Listing, Trace, Json };

void show(const QString& path, Form form, const QString& output, const QueryStreams& streams,
          QJsonArray& answers) {
    ObjectFile file(path, form == Form::Trace ? &streams.out : nullptr);
    SOBFModule* module = file.module();
    if (!output.isNull())
        return rewrite(module, output);
    if (form == Form::Json) {
        QJsonObject answer = module ? describeObject(*module) : QJsonObject();
        answer["file"] = path;
        answers.append(answer);
    } else if (form == Form::Listing && module) {
        listObject(*module, streams.out);
    } else if (form == Form::Listing) {
        streams.out << "No module\n";
    }
}

} // namespace

QList<QCommandLineOption> objectOptions() {
    return {
        {"json", "print JSON"},
        {"trace", "print every tag of the file with the stack behind it, up to the first that is wrong"},
        {"rewrite", "write the one FILE back, in canonical form, as OUT", "OUT"},
    };
}

int runObject(const QCommandLineParser& words, const QueryStreams& streams) {
    const QStringList paths = words.positionalArguments();
    if (paths.isEmpty())
        throw QueryError{"object: a file expected"};
    if (words.isSet("rewrite") && paths.size() > 1)
        throw QueryError{"object: --rewrite takes one file"};
    const Form form = words.isSet("json") ? Form::Json : words.isSet("trace") ? Form::Trace : Form::Listing;
    const QString output = words.isSet("rewrite") ? words.value("rewrite") : QString();
    int status = 0;
    QJsonArray answers;
    for (const QString& path : paths) {
        if (paths.size() > 1 && form != Form::Json)
            streams.out << (path == paths.first() ? "" : "\n") << viewOf(toBytes(path)) << '\n';
        try {
            show(path, form, output, streams, answers);
        } catch (const HException& exception) {
            streams.err << "ostquery: " << viewOf(toBytes(path)) << ": " << exception.text() << '\n';
            status = 1;
        }
    }
    if (form == Form::Json && output.isNull())
        streams.out << viewOf(QJsonDocument(answers).toJson());
    return status;
}
