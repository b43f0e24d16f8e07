#pragma once

class OstmakeArgParse;
class ProjectElement;

/// Loads the solution that the options name, or creates the project that they ask for, in the process's
/// project system, and gives the element to build. A name that is not there is answered by a list of those
/// that are, on the standard output, and ProcessExit; a file that can't be loaded by SolutionLoadError.
ProjectElement* chosenElement(const OstmakeArgParse& options);

/// Answers a configuration that the element is not offered in likewise.
void requireConfiguration(ProjectElement* element, const OstmakeArgParse& options);
