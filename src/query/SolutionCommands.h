#pragma once

#include "project/ProjectSystem.h"
#include "query/Answer.h"

/// What the commands of ostquery that look into a loaded solution answer. None of them prints.
namespace SolutionCommands {

/// Which node of the solution is meant: the root, a project by its listing key, or a file of that project (or
/// of any, without a project) by its name or its "file_name".
struct Node {
    QString project;
    QString file;
};
/// The node; throws QueryError if there is none.
ProjectElement* find(ProjectSystem& system, const Node& node);

/// Solutions, projects, folders and files in their order, with types and listing keys.
Answer tree(ProjectSystem& system);

enum class Shown { Applicable, All, Set };
struct SettingsRequest {
    Node node;
    QString configuration;
    Shown shown = Shown::Applicable; ///< the node's own kinds, the whole catalogue, or only what is stated
    QStringList names;               ///< if not empty, only these, whatever `shown` says
};
/// Each setting with its resolved value and where that came from. Throws QueryError for a name that no
/// setting has.
Answer settings(ProjectSystem& system, const SettingsRequest& request);

/// The configurations that the solutions around the node declare, hidden ones marked.
Answer configurations(ProjectSystem& system, const Node& node);

/// The projects in build order, each with what it depends on directly.
Answer order(ProjectSystem& system, const Node& node, const QString& configuration);

/// What a `$(...)` in a setting of the node can name.
Answer macros(ProjectSystem& system, const Node& node, const QString& configuration);

} // namespace SolutionCommands
