#include "memorymap/MarkerType.h"

#include "memorymap/ExpressionParser.h"

ExpressionType MarkerType::value() const {
    return m_host.getValue(ExpressionType::ofMarker(shared_from_this()));
}
