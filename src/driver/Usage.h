#pragma once

/// Writes "Ostrel for MSP430 ", the program's name and the release to the standard error stream, and who owns
/// it.
void RELEASE_printVersionToStderr(const char* name);

/// Writes the version banner and the usage text to the standard error stream.
void printBannerAndUsage();
