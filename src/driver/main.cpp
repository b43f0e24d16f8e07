#include "driver/Ostmake.h"

int main(int argc, char** argv) {
    char name[] = "ostmake";
    char* nameless[] = {name, nullptr};
    return argc > 0 ? ostmake(argc, argv) : ostmake(1, nameless);
}
