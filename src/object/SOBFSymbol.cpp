#include "object/SOBFSymbol.h"

#include "object/SOBFPseudoInsn.h"
#include "object/SOBFScope.h"
#include "object/SOBFType.h"
#include "object/SOBFWriter.h"

void (*SOBFSymbol::resolve)(SOBFSymbol* symbol) = nullptr;

void SOBFSymbol::addReferences(References& references) {
    if (!value && resolve)
        resolve(this);
    references.push_back(value);
    references.push_back(scope);
}

bool SOBFSymbol::mayCompleteIn(const SOBFWriter& writer) const {
    const unsigned forValue = value ? value->slots : 0;
    return writer.mayGoOn(SOBFWriter::symbolSlots + SOBFWriter::typeSlots + forValue) &&
           (!type || writer.mayMake(type));
}

/// The symbol stays on the stack once for its value and once for its type, which are written behind all that
/// can be said of the symbol itself.
void SOBFSymbol::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    if (const auto* markerExpr = dynamic_cast<SOBFMarkerExpr*>(value))
        writer.noteName(markerExpr->marker, getName());
    writer.externalizeString(getName());
    writer.writeTag(TAG_MKSYMBOL);
    const SOBFWriter::Level level(writer);
    const bool completes = mayCompleteIn(writer);
    const int copies = completes ? (value ? 1 : 0) + (type ? 1 : 0) : 0;
    // The marks work on the symbol on top of the stack, so that there has to be one.
    const bool onlyForMarks = copies == 0 && (isSpecial() || patched);
    for (int copy = 0; copy < copies + (onlyForMarks ? 1 : 0); ++copy)
        writer.writeTag(TAG_DUP);
    if (locus && locus->file && locus->file->path)
        locus->externalize(writer);
    writer.defineAlias(this);
    externalizeMarks(writer);
    if (onlyForMarks)
        writer.writeTag(TAG_DROP);
    if (completes)
        complete(writer);
    else if (value || type)
        writer.defer(this);
}

void SOBFSymbol::externalizeMarks(SOBFWriter& writer) const {
    const struct {
        bool stated;
        int number;
        int tag;
    } marks[] = {{codelet != -1, codelet, TAG_CODELET},
                 {patchable, patchValue, TAG_PATCHABLE},
                 {patched, patchValue, TAG_PATCHED}};
    for (const auto& mark : marks) {
        if (!mark.stated)
            continue;
        writer.externalizeLiteral(mark.number);
        writer.writeTag(mark.tag);
    }
}

void SOBFSymbol::complete(SOBFWriter& writer) {
    if (value) {
        value->externalize(writer);
        writer.writeTag(TAG_SYMBOLDEF);
    }
    if (type) {
        type->externalize(writer);
        writer.pushAlias(type);
        writer.writeTag(TAG_SETTYPE);
    }
}

void SOBFSymbol::externalizeRest(SOBFWriter& writer) {
    if (value)
        writer.pushAlias(this);
    if (type)
        writer.pushAlias(this);
    complete(writer);
}
