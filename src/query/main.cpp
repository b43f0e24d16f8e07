#include "query/Query.h"

int main(int argc, char** argv) { return ostquery(argc, argv); }
