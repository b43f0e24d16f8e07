#pragma once

#include "properties/PropertyClass.h"

#include <functional>

/// Which settings apply where: the tables behind the lists that the layers of the project system offer. Each
/// operation appends in the order of its table and drops repeats.
namespace PropertyLists {

/// The classes that a tool properties file adds behind the built-in ones.
struct ToolProperties {
    PropertyClassList compiler;
    PropertyClassList linker;
};

/// What every tool chain has.
void appendCompilerProperties(PropertyClassList& list, const ToolProperties& tools);
void appendCCompilerProperties(PropertyClassList& list, const ToolProperties& tools);
void appendCppCompilerProperties(PropertyClassList& list);
void appendAssemblerProperties(PropertyClassList& list, const ToolProperties& tools);
void appendLinkerProperties(PropertyClassList& list, const ToolProperties& tools);
void appendTargetProperties(PropertyClassList& list);

/// What the present tool chain adds behind that.
void appendSOBFCCompilerProperties(PropertyClassList& list);
void appendSOBFAssemblerProperties(PropertyClassList& list);
void appendSOBFArchiverProperties(PropertyClassList& list);
void appendSOBFLinkerProperties(PropertyClassList& list);

/// What the processor family adds behind that.
void appendMSP430LinkerProperties(PropertyClassList& list);

/// A list within a list, which the layers extend.
enum class Part { CCompiler, CppCompiler, Assembler, Linker, Archiver, Target };
/// Appends a part as all layers together make it.
using AppendPart = std::function<void(Part, PropertyClassList&)>;

/// The settings of a solution, and of a project of this type; of an unknown type, what all types share. The
/// C++ part is asked for only where the target has C++.
void appendSolutionProperties(PropertyClassList& list, const AppendPart& appendPart);
void appendProjectProperties(PropertyClassList& list, const QString& projectType,
                             const AppendPart& appendPart);

} // namespace PropertyLists
