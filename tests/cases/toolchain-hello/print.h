void print(const char* text);
void printNumber(unsigned number);
