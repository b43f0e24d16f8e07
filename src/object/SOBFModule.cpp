#include "object/SOBFModule.h"

#include "object/SOBFSection.h"
#include "object/SOBFStanding.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFWriter.h"

SOBFModule::SOBFModule() : SOBFModule(new Pool) {}

SOBFModule::SOBFModule(Pool* p)
    : SOBFScope(TAG_SCOPE_MODULE, p),
      sectionsByName(p),
      sections(PoolAllocator<SOBFSection*>(p)),
      publics(p),
      symbols(PoolAllocator<SOBFSymbol*>(p)),
      libraries(p),
      attributes(p),
      specialSymbols(PoolAllocator<SOBFSymbol*>(p)),
      pool(p) {}

bool SOBFModule::hasHiddenInsns() const {
    for (const SOBFSection* section : sections)
        for (const SOBFFragment* fragment : section->fragments)
            for (const SOBFInsn* insn : fragment->insns)
                if (insn->hidden)
                    return true;
    return false;
}

void SOBFModule::externalize(SOBFWriter& writer, bool hideAll) {
    if (hideAll)
        for (const SOBFSection* section : sections)
            for (const SOBFFragment* fragment : section->fragments)
                for (SOBFInsn* insn : fragment->insns)
                    insn->hidden = true;
    externalizeBody(writer);
    // If several symbols stand for one marker, its name shows only when all of them are written.
    if (writer.hasWrongNames()) {
        writer.restart();
        externalizeBody(writer);
    }
}

void SOBFModule::externalizeBody(SOBFWriter& writer) {
    SOBFScope::externalize(writer);
    externalizeInfo(writer);
    for (SOBFSymbol* symbol : standing(publics)) {
        symbol->externalize(writer);
        writer.pushAlias(symbol);
        writer.writeTag(TAG_PUBLIC);
    }
    for (SOBFSymbol* symbol : specialSymbols)
        if (symbol->isSpecial())
            symbol->externalize(writer);
    writer.finishDeferred();
    for (SOBFSection* section : standing(sectionsByName)) {
        section->externalize(writer);
        writer.finishDeferred();
    }
    if (isProtected)
        writer.writeTag(TAG_PROTECTED);
    if (linkOrderPriority != usualPriority) {
        writer.externalizeLiteral(linkOrderPriority);
        writer.writeTag(TAG_LINK_ORDER_PRIORITY);
    }
}

void SOBFModule::externalizeInfo(SOBFWriter& writer) {
    for (const auto& [library, present] : libraries) {
        writer.externalizeString(library);
        writer.writeTag(TAG_LIBRARY);
    }
    for (const auto& [key, value] : attributes) {
        if (!value)
            continue;
        writer.externalizeString(key);
        writer.externalizeString(value);
        writer.writeTag(TAG_ATTRIBUTE);
    }
    writer.writeTag(TAG_END_OF_INFO);
}
