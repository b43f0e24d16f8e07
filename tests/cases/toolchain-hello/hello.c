#include "print.h"

int answer = 40;
int zeroed;
static const char greeting[] = "hello ";

int unused(int x) { return x + 1; }

int main(void) {
    print(greeting);
    zeroed += 2;
    answer += zeroed;
    printNumber(answer);
    print("\n");
    return 0;
}
