#pragma once

#include <QString>

class ProjectElement;

/// The tree below an element as text, a line for each node, indented by two blanks a level: the tag, the
/// attributes in the order of their names as `name="value"`, and "imported" for what another file holds.
QString dump(ProjectElement* element);
