// The switch of the mutants in an instrumented copy of the sources: one mutant is on, or none.
//
// The switch is a file, SWITCH: the number of the mutant, then a byte for each mutant, set when its place is
// reached. A variable of the environment would not do, since tests clear the environment of the programs that
// they start. The file is mapped once, before anything else runs, and costs no system call later; so tests
// that count or refuse system calls see the usual ones. OSTMAKE_MUTANT=NUMBER switches a mutant on by hand.
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace mutants {

struct Switch {
    std::int32_t chosen;
    unsigned char reached[65'532];
};

static Switch own;
static Switch* current = &own;

__attribute__((constructor(101))) static void open() {
    if (const char* number = std::getenv("OSTMAKE_MUTANT")) {
        own.chosen = std::atoi(number);
        return;
    }
    const int file = ::open(SWITCH, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return;
    void* memory = ::mmap(nullptr, sizeof(Switch), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (memory != MAP_FAILED)
        current = static_cast<Switch*>(memory);
}

bool on(int number) noexcept {
    current->reached[number] = 1;
    return current->chosen == number;
}

} // namespace mutants
