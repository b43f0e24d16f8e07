#pragma once

#include <QString>

/// Why a solution can't be loaded. A person reads `message` alone if `badXml` is set, else `file` and right
/// behind it `message`, which brings its own blank.
struct SolutionLoadError {
    QString file;
    bool badXml = false;
    QString message;
    int line = 0; ///< of the XML error, the first line being 0
};
