// The least that a program on Qt does; what start-up is measured against.

#include <QString>

int main(int argc, char**) { return QString(argc, u'x').isEmpty() ? 1 : 0; }
