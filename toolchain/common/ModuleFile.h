#pragma once

#include "foundation/HByteStream.h"
#include "object/SOBFModule.h"

#include <memory>
#include <string>

/// The bytes of an object file with that module.
std::string objectBytes(SOBFModule& module);

/// A module read from the bytes of an object file, with all that it lies in.
class ModuleFile {
public:
    /// `name` is what messages call it. Throws HException, with the name in front, if the bytes are no object
    /// file.
    ModuleFile(std::string name, std::string_view bytes);
    ~ModuleFile();
    ModuleFile(const ModuleFile&) = delete;
    ModuleFile& operator=(const ModuleFile&) = delete;

    const std::string& name() const { return m_name; }
    SOBFModule& module() const { return *m_module; }

private:
    std::string m_name;
    HByteStream m_stream;
    Pool m_pool; ///< holds the module record; the rest lies in the module's own
    SOBFModule* m_module = nullptr;
};
