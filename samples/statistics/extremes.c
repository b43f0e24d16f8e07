#include "series.h"
#include <stdio.h>

static const int values[] = {12, 15, 18, -3};

int main(void) {
    const unsigned count = sizeof values / sizeof *values;
    printf("from %d to %d\n", smallest(values, count), largest(values, count));
    return 0;
}
