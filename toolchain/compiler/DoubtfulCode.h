#pragma once

#include <string>
#include <vector>

class SOBFModule;

/// Where clang may have used what a pointer points to in the place of the pointer itself: a fault that its
/// versions up to 19 have for this processor. An operation then reads through a pointer and advances it,
/// though the same place is read by another instruction as well. Each entry names a function and, if the
/// module knows it, the source line.
std::vector<std::string> doubtfulPlaces(const SOBFModule& module);
