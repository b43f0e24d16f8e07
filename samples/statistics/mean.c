#include "series.h"
#include <stdio.h>

static const int values[] = {12000, 15000, 18000, -3000};

int main(void) {
    printf("mean %d\n", mean(values, sizeof values / sizeof *values));
    return 0;
}
