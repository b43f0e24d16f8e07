int f(void) { int unusedValue; }
