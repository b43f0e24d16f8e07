#pragma once

/// The program, from its arguments to its exit status.
int ostmake(int argc, char** argv);
