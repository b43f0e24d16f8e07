/* Says hello on the console, and shows what printf can do in the variant that the project asks for. */
#include "greeting.h"
#include <stdio.h>

int main(void) {
    int i;
    long product = 1;

    printf("%s\n", GREETING);
    for (i = 1; i <= 10; ++i)
        product *= i;
    printf("10! = %ld = 0x%lX\n", product, (unsigned long)product);
    printf("1/3 = %.5f\n", 1.0 / 3.0);
    return 0;
}
