#include "foundation/Text.h"
#include "query/Command.h"

#include <iostream>

int main(int argc, char** argv) {
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
