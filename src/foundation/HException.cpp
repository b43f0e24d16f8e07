#include "foundation/HException.h"

int HException::m_count = 0;
