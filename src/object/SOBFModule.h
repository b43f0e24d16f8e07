#pragma once

#include "object/SOBFScope.h"

#include <cstdint>

class SOBFSection;

/// What one object file makes. Owns the pool in which all of it lies.
class SOBFModule : public SOBFScope {
public:
    /// Makes the pool, but not the current one.
    SOBFModule();
    /// A module that lies in the pool of another.
    explicit SOBFModule(Pool* p);

    static constexpr int processorWordSize() { return 2; }
    static constexpr int processorAddressSize() { return 2; }
    static constexpr bool processorBigEndian() { return false; }
    /// The part of a number that is an address.
    static constexpr uint32_t processorAddress(uint32_t address) { return address & 0xFFFFF; }
    /// Bytes that a processor can address.
    static constexpr int addressSpace = 0x100000;

    bool hasHiddenInsns() const;
    /// Writes the whole module. With `hideAll` every record is hidden first.
    void externalize(SOBFWriter& writer, bool hideAll = false);

    SOBFNameMap<SOBFSection*> sectionsByName;
    PoolVector<SOBFSection*> sections; ///< in the order in which they were made
    SOBFNameMap<SOBFSymbol*> publics;
    PoolVector<SOBFSymbol*> symbols; ///< in the order in which they were made
    SOBFNameMap<bool> libraries;     ///< a set: all values are true
    SOBFNameMap<HString*> attributes;
    bool isProtected = false;
    static constexpr int usualPriority = 10;
    int linkOrderPriority = usualPriority;
    PoolVector<SOBFSymbol*> specialSymbols; ///< those that have a codelet value or are patchable
    Pool* pool;
    size_t imageBytes = 0; ///< room that the images of sections have taken

private:
    void externalizeBody(SOBFWriter& writer);
    void externalizeInfo(SOBFWriter& writer);
};
