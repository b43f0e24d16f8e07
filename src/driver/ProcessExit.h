#pragma once

/// Thrown to end the process with a status from below `main`, after all that has to be said was said.
struct ProcessExit {
    int status;
};
