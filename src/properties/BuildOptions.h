#pragma once

#include "properties/PropertyLists.h"

#include <memory>
#include <vector>

/// The settings that the tool properties file `build_options.xml` adds to the catalogue. They appear among
/// the settings of a project; no command line is built from them.
struct BuildOptions {
    /// Every class that names a tool, in file order; the lists refer to these.
    std::vector<std::unique_ptr<const PropertyClass>> classes;
    PropertyLists::ToolProperties tools;
};

/// Reads the file. Empty if it can't be read or has no root, which is no error.
BuildOptions loadBuildOptions(const QString& fileName);
