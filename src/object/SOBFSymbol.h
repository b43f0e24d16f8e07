#pragma once

#include "object/SOBFObject.h"

class SOBFExpr;
class SOBFLocus;

class SOBFSymbol : public SOBFObject {
public:
    explicit SOBFSymbol(HString* n) { name = n; }

    /// Whether it has a codelet value or is patchable.
    bool isSpecial() const { return codelet != -1 || patchable; }
    /// Leaves the symbol known by its alias. Its value and its type may follow later, see SOBFWriter::defer.
    void externalize(SOBFWriter& writer);
    void externalizeRest(SOBFWriter& writer) override;

    /// May define a symbol without a value when `markReachable` comes to it, unless null.
    static void (*resolve)(SOBFSymbol* symbol);

    SOBFExpr* value = nullptr;
    SOBFLocus* locus = nullptr; ///< where it is declared, or null
    int codelet = -1;           ///< -1 if there is none
    bool patchable = false;
    bool patched = false;
    int patchValue = -1;

protected:
    void addReferences(References& references) override;

private:
    bool mayCompleteIn(const SOBFWriter& writer) const;
    void complete(SOBFWriter& writer);
    void externalizeMarks(SOBFWriter& writer) const;
};
