#pragma once

#include <QJsonObject>
#include <iosfwd>

class SOBFModule;

/// What a module holds, as lines for people. Texts out of the file that could harm a terminal are escaped.
void listObject(SOBFModule& module, std::ostream& out);
/// The same for programs.
QJsonObject describeObject(SOBFModule& module);
