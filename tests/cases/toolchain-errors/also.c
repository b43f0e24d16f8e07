int main(void) { return 1; }
