extern int missing(void);
int table[400] = {1};
int main(void) { return missing() + table[3]; }
