int f(int *p, int *q) { int x = *p++; *q = (int)p ^ 5; return x; }
