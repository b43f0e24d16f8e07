/* What clang calls for operations that the processor does not have. */
unsigned __mspabi_mpyi(unsigned a, unsigned b) {
    unsigned product = 0;
    for (; b; b >>= 1, a <<= 1)
        if (b & 1)
            product += a;
    return product;
}

unsigned long __mspabi_mpyl(unsigned long a, unsigned long b) {
    unsigned long product = 0;
    for (; b; b >>= 1, a <<= 1)
        if (b & 1)
            product += a;
    return product;
}

static unsigned long divide(unsigned long a, unsigned long b, unsigned long *rest) {
    unsigned long quotient = 0;
    *rest = 0;
    for (char bit = 0; bit < 32; ++bit) {
        *rest = *rest << 1 | a >> 31;
        a <<= 1;
        quotient <<= 1;
        if (*rest >= b) {
            *rest -= b;
            quotient |= 1;
        }
    }
    return quotient;
}

unsigned long __mspabi_divul(unsigned long a, unsigned long b) {
    unsigned long rest;
    return divide(a, b, &rest);
}

unsigned long __mspabi_remul(unsigned long a, unsigned long b) {
    unsigned long rest;
    divide(a, b, &rest);
    return rest;
}

unsigned __mspabi_divu(unsigned a, unsigned b) { return (unsigned)__mspabi_divul(a, b); }
unsigned __mspabi_remu(unsigned a, unsigned b) { return (unsigned)__mspabi_remul(a, b); }

static unsigned long absolute(long x) { return x < 0 ? -(unsigned long)x : (unsigned long)x; }

long __mspabi_divli(long a, long b) {
    unsigned long quotient = __mspabi_divul(absolute(a), absolute(b));
    return (a < 0) == (b < 0) ? (long)quotient : -(long)quotient;
}

long __mspabi_remli(long a, long b) {
    unsigned long rest = __mspabi_remul(absolute(a), absolute(b));
    return a < 0 ? -(long)rest : (long)rest;
}

int __mspabi_divi(int a, int b) { return (int)__mspabi_divli(a, b); }
int __mspabi_remi(int a, int b) { return (int)__mspabi_remli(a, b); }
