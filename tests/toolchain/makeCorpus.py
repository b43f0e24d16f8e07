#!/usr/bin/env python3
"""makeCorpus.py DIRECTORY: C sources that stress a code generator, the same at every call. Eight files of random functions
over all integer types, and one of functions written by hand for what expressions alone don't bring forth."""
import pathlib
import random
import re
import sys

FILES = 8
FUNCTIONS = 30
TYPES = ["char", "signed char", "unsigned char", "int", "unsigned", "long", "unsigned long", "long long"]
BINARY = ["+", "-", "*", "&", "|", "^", "<", ">=", "==", "&&", "/", "%", "<<", ">>"]


class Function:
    def __init__(self, rng, number):
        self.rng = rng
        self.number = number
        self.names = ["a", "b", "c", "g0", "g1", "g2", "ext"]

    def leaf(self):
        r = self.rng
        kind = r.randrange(6)
        if kind == 0:
            return str(r.choice([0, 1, 2, 3, 4, 7, 8, 16, 255, 256, 1000, 4095, 32767, -1, -2, -8, -300]))
        if kind == 1:
            return f"table[{r.choice(self.names)} & 7]"
        if kind == 2:
            return f"p->{r.choice(['first', 'second', 'bits', 'wide'])}"
        return r.choice(self.names)

    def expression(self, depth):
        r = self.rng
        if depth == 0:
            return self.leaf()
        kind = r.randrange(10)
        if kind == 0:
            return f"({r.choice(TYPES)})({self.expression(depth - 1)})"
        if kind == 1:
            return f"{r.choice(['-', '~', '!'])}({self.expression(depth - 1)})"
        if kind == 2:
            return f"({self.expression(depth - 1)} ? {self.expression(depth - 1)} : {self.expression(depth - 1)})"
        if kind == 3 and self.number > 0:
            callee = r.randrange(self.number)
            return f"f{callee}({self.leaf()}, {self.leaf()}, {self.leaf()}, p)"
        operator = r.choice(BINARY)
        right = self.expression(depth - 1)
        if operator in ("/", "%"):
            right = f"(({right}) | 1)"
        if operator in ("<<", ">>"):
            right = str(r.randrange(15))
        return f"({self.expression(depth - 1)} {operator} {right})"

    def statement(self, depth):
        r = self.rng
        kind = r.randrange(9)
        target = r.choice(["a", "b", "c", "g0", "g1", "g2", "table[a & 7]", "p->first", "p->bits", "p->wide", "port"])
        if kind < 3 or depth == 0:
            return f"{target} {r.choice(['=', '+=', '-=', '^=', '|='])} {self.expression(2)};"
        if kind == 3:
            return f"if ({self.expression(2)}) {{ {self.statement(depth - 1)} }} else {{ {self.statement(depth - 1)} }}"
        if kind == 4:
            return f"for (int i = 0; i < {r.randrange(2, 40)}; ++i) {{ {self.statement(depth - 1)} a += i; }}"
        if kind == 5:
            cases = " ".join(f"case {n}: {self.statement(0)} break;" for n in range(r.randrange(3, 9)))
            return f"switch ({self.expression(1)} & 15) {{ {cases} default: {self.statement(0)} }}"
        if kind == 6:
            return f"do {{ {self.statement(depth - 1)} }} while (--b > 0);"
        if kind == 7:
            return f'note("text {r.randrange(12)}");'
        return f"{target} = hooks[{self.expression(1)} & 1](a);"

    def text(self):
        r = self.rng
        types = [r.choice(TYPES) for _ in range(4)]
        body = "\n    ".join(self.statement(2) for _ in range(r.randrange(2, 6)))
        return (f"{r.choice(['', 'static '])}{types[0]} f{self.number}({types[1]} a, {types[2]} b, {types[3]} c, struct record *p) {{\n"
                f"    {body}\n    return {self.expression(3)};\n}}\n")


PROLOGUE = """struct record { int first; char second; unsigned bits : 5; unsigned more : 11; long wide; };
extern int ext;
extern volatile unsigned char port;
void note(const char *text);
int g0 = {n}, g1;
static long g2 = {n};
static const int table0[8] = {{1, 2, 3, 5, 8, 13, 21, {n}}};
static int table[8];
static int hook0(int x) {{ return x + table0[x & 7]; }}
int hook1(int x);
static int (*const hooks[2])(int) = {{hook0, hook1}};
"""

BY_HAND = """#include <stdarg.h>
#include <stdint.h>
extern int ext[];
extern void sink(int);
int *inside = &ext[3];
char *outside = (char *)ext - 2;
const char *const names[] = {"one", "two", "three", "two"};
static int state;
int zeroes[100];
char same[20] = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
__attribute__((weak)) int overridable(void) { return 1; }
__attribute__((weak)) extern int perhaps(void);
int common_to_all;
__attribute__((interrupt(3))) void tick(void) { ++state; }
__attribute__((interrupt(4))) void tock(void) { sink(state); }
int variadic(int n, ...) { va_list list; va_start(list, n); long sum = 0; while (n--) sum += va_arg(list, long); va_end(list); return (int)sum; }
int maybe(void) { return perhaps ? perhaps() : overridable(); }
void poke(void) { *(volatile uint16_t *)0x120 = 0x5A80; *(volatile uint8_t *)0x31 ^= 1; }
int64_t wide(int64_t a, int64_t b) { return (a << 13) + b * 7; }
float single(float a, float b) { return a * b + 1.5f; }
double twice(double a) { return a / 3.0; }
int fibonacci(int n) { return n < 2 ? n : fibonacci(n - 1) + fibonacci(n - 2); }
int big_frame(void) { volatile char room[300]; for (int i = 0; i < 300; ++i) room[i] = (char)i; return room[77]; }
const char *name_of(int n) { return names[n & 3]; }
const char *tail_of(void) { return "hello, world" + 7; }
void copy(char *to, const char *from) { while ((*to++ = *from++)) { } }
unsigned rotate(unsigned x) { return x << 1 | x >> 15; }
int far_jump(int x) {
    switch (x) {
#define ONE(n) case n: sink(x * n); ext[n] += x; sink(ext[n + 1]); break;
#define TEN(n) ONE(n) ONE(n + 1) ONE(n + 2) ONE(n + 3) ONE(n + 4) ONE(n + 5) ONE(n + 6) ONE(n + 7) ONE(n + 8) ONE(n + 9)
    TEN(0) TEN(10) TEN(20) TEN(30) TEN(40) TEN(50) TEN(60)
    }
    return x > 3 ? far_jump(x - 1) : x;
}
"""


def main():
    directory = pathlib.Path(sys.argv[1])
    rng = random.Random(430)
    for file in range(FILES):
        text = PROLOGUE.replace("{n}", str(file + 3)).replace("{{", "{").replace("}}", "}")
        functions = [Function(rng, number).text() for number in range(FUNCTIONS)]
        users = "".join(f"    g2 += f{n}(g0, g1, ext, p);\n" for n in range(FUNCTIONS))
        text += "\n".join(functions) + f"\nlong all{file}(struct record *p) {{\n{users}    return g2;\n}}\n"
        # Names are per file, so that the files link together.
        for name in ["g0", "g1"] + [f"f{n}" for n in range(FUNCTIONS)]:
            text = re.sub(rf"\b{name}\b", f"{name}_{file}", text)
        directory.joinpath(f"random{file}.c").write_text(text)
    directory.joinpath("byhand.c").write_text(BY_HAND)


main()
