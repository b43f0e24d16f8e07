#pragma once

#include "query/SolutionCommands.h"

class StandardBuildSystem;

namespace SolutionCommands {

/// The memory of each program at or under the node: its segments with what is fixed in them and what is free,
/// read from the files and by the code that a link would use. With it comes what a link would say about them,
/// and what these files hold that makes no sense. Throws QueryError for a configuration that the node is not
/// offered, and if nothing is linked there.
Answer memory(StandardBuildSystem& engine, ProjectElement* node, const QString& configuration);

} // namespace SolutionCommands
