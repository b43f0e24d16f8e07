#pragma once

#include "object/SOBFInsn.h"

/// A run of records that belong together.
class SOBFFragment : public SOBFObject {
public:
    void addInsn(SOBFInsn* insn);
    void externalize(SOBFWriter& writer);

    SOBFInsnList insns;
    SOBFSection* section = nullptr;

protected:
    void addReferences(References& references) override;
};

class SOBFSection : public SOBFObject {
public:
    explicit SOBFSection(HString* n) { name = n; }

    /// Starts an empty fragment, which becomes the current one.
    SOBFFragment* newFragment();
    /// Adds to the current fragment, which is made if there is none.
    void addInsn(SOBFInsn* insn);

    /// The first record of at least one byte at that address; null if there is none.
    SOBFInsn* findInsnAt(int address) const;
    /// The first record that covers that address; null if there is none.
    SOBFInsn* findInsnInRange(int address) const;

    /// Works out `lowest` and `highest`.
    void computeSectionMetrics();
    /// Bytes from the lowest address to the highest; of all records together if there are no addresses.
    int getSize();
    /// Bytes of all records together.
    int accumulatedSize();
    /// Stores every byte that has an address at `image[address - lowest]`. `image` must hold `getSize()`
    /// bytes; a section that is larger than the address space stores nothing.
    void dump(int base, uint8_t* image);
    /// The bytes as `dump` stores them, `getSize()` of them in the pool of `owner`, made when first asked
    /// for. Null if the section is empty or larger than the address space, or if the images of the module
    /// have taken more room than any processor's memory.
    const uint8_t* image(SOBFModule& owner);

    void externalize(SOBFWriter& writer);

    bool metricsValid = false;
    bool accumulatedValid = false;
    int lowest = -1; ///< -1 if no record has an address
    int highest = -1;
    int accumulated = 0;
    PoolVector<SOBFFragment*> fragments;
    SOBFFragment* currentFragment = nullptr;
    int flags = 0;

protected:
    void addReferences(References& references) override;

private:
    template<class Visit>
    void forEachInsn(Visit visit) const;

    int m_total = 0;
    bool m_measuring = false;
    bool m_imaging = false;
    const uint8_t* m_image = nullptr;
};
