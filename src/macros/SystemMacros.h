#pragma once

#include <QString>

/// Sets the macros that tell the release and where it is installed: TarnMajorVersion, TarnMinorVersion,
/// TarnRevision, TarnName, TarnDir (from `tarnDir`) and TarnUserDir.
void setupDefaultSystemMacros(const QString& tarnDir);

/// The directory of the user's data for this product. Not created here.
QString tarnLocalDataDir();

namespace PackageSystem {

/// Sets PackagesDir (from `packagesDir`, expanded with the system macros), TargetsDir and SamplesDir.
void setPackageMacros(const QString& packagesDir);

/// Sets them, and makes the targets directory with its two stub files, which pull in the installed files,
/// where they are missing. Throws HException, "cannot create " and the path, if a stub can't be made.
void setupPackageMacros(const QString& packagesDir);

} // namespace PackageSystem
