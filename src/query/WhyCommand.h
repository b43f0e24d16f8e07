#pragma once

#include "query/SolutionCommands.h"

class StandardBuildSystem;

namespace SolutionCommands {

/// What a build of the node would do, in its order, and the one reason for each step. The engine decides as
/// it does in a build, and nothing runs. With `batch` each project counts in its batch configurations. Throws
/// QueryError for a configuration that the node is not offered, and if an object file can't be read.
Answer why(StandardBuildSystem& engine, ProjectElement* node, const QString& configuration, bool batch);

} // namespace SolutionCommands
