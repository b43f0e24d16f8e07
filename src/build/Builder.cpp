#include "build/Builder.h"

Builder::~Builder() = default;

void Builder::setTotalSteps(ProjectElement*, int steps) { totalSteps = steps; }
