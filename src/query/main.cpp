#include "foundation/Text.h"
#include "macros/QTx.h"
#include "query/Command.h"

#include <iostream>

namespace {

/// What the lower layers warn of, line by line.
void printWarning(QtMsgType, const QMessageLogContext&, const QString& text) {
    std::cerr << viewOf(toBytes(text)) << '\n';
}

} // namespace

int main(int argc, char** argv) {
    qInstallMessageHandler(printWarning);
    QTx::setApplicationPath(toText(argc > 0 ? argv[0] : "ostquery"), 1);
    QStringList words;
    for (int word = 0; word < argc; ++word)
        words.append(toText(argv[word]));
    const int status = ostquery(words, {std::cout, std::cerr});
    std::cout.flush();
    if (std::cout)
        return status;
    std::cerr << "ostquery: can't write to the standard output\n";
    return 1;
}
