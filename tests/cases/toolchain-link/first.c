int both, larger[2];
__attribute__((weak)) int given(void) { return 1; }
__attribute__((weak)) extern int absent(void);
__attribute__((retain)) int retained(void) { return 2; }
int main(void) { return both + larger[0] + given() + (absent ? absent() : 0); }
