#include "toolchain/common/ModuleFile.h"

#include "foundation/HException.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFWriter.h"

std::string objectBytes(SOBFModule& module) {
    SOBFWriter writer;
    module.externalize(writer);
    return std::string(writer.finish().view());
}

ModuleFile::ModuleFile(std::string name, std::string_view bytes)
    : m_name(std::move(name)), m_stream(std::max(bytes.size(), HByteStream::usualGrowth)) {
    m_stream.write(bytes);
    const CurrentPool current(&m_pool);
    try {
        SOBFMSP430Reader reader(&m_stream, true);
        m_module = reader.readFile();
    } catch (const HException& exception) {
        throw HException(m_name + ": " + exception.text());
    }
    if (!m_module)
        throw HException(m_name + ": no module");
}

ModuleFile::~ModuleFile() { SOBFReader::release(m_module); }
