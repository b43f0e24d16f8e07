// A whole object file: a module or a refusal; what is written of the module is read again and gives the same
// bytes; and every record can be measured, encoded and printed.

#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFModule.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"
#include "object/SOBFWriter.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

SOBFModule* read(std::string_view file, bool sticky, std::ostream* trace) {
    HByteStream stream;
    stream.write(file);
    SOBFMSP430Reader reader(&stream, sticky);
    return reader.readFile(trace);
}

std::string written(SOBFModule* module) {
    SOBFWriter writer;
    module->externalize(writer);
    return std::string(writer.finish().view());
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

void look(SOBFInsn* insn) {
    insn->encode();
    insn->printString();
    insn->printPC();
    insn->printOpCode();
    if (insn->length() < 0 || insn->estimatedLength() < 0)
        fail("negative length");
    insn->getByte(0);
    insn->getByte(insn->length());
}

void lookAtAll(SOBFModule* module) {
    for (SOBFSection* section : module->sections) {
        const int size = section->getSize();
        section->accumulatedSize();
        if (size >= 0 && size <= SOBFModule::addressSpace) {
            std::string image(static_cast<size_t>(size), '\0');
            section->dump(0, reinterpret_cast<uint8_t*>(image.data()));
        }
        for (SOBFFragment* fragment : section->fragments)
            for (SOBFInsn* insn : fragment->insns)
                look(insn);
        section->findInsnInRange(size);
        section->markReachable(true);
    }
    for (SOBFSymbol* symbol : module->symbols) {
        if (symbol->value)
            symbol->value->evaluate();
        if (symbol->type)
            symbol->type->getName();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Pool pool;
    const CurrentPool current(&pool);
    SOBFModule* module = nullptr;
    try {
        std::ostringstream trace;
        module = read({reinterpret_cast<const char*>(data), size}, size % 2, size % 3 ? nullptr : &trace);
    } catch (const HException&) {
    }
    if (!module)
        return 0;
    const std::string once = written(module);
    try {
        SOBFModule* again = read(once, false, nullptr);
        if (written(again) != once)
            fail("written again, the module gives other bytes");
        SOBFReader::release(again);
    } catch (const HException& exception) {
        fail(exception.text().c_str());
    }
    {
        const CurrentPool ofModule(module->pool);
        lookAtAll(module);
    }
    SOBFReader::release(module);
    return 0;
}
