#include "object/SOBFSection.h"

#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFWriter.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace {

/// A section may hold a copy of another, which holds a copy of a third, and so on.
constexpr int mostCopies = 100;
int copyDepth = 0;

/// Marks work that must not be entered again, and counts how deep it has gone.
class Working {
public:
    explicit Working(bool& flag) : m_flag(flag) {
        m_flag = true;
        ++copyDepth;
    }
    ~Working() {
        m_flag = false;
        --copyDepth;
    }
    Working(const Working&) = delete;
    Working& operator=(const Working&) = delete;

private:
    bool& m_flag;
};

int clamp(int64_t value) { return static_cast<int>(std::clamp<int64_t>(value, INT_MIN, INT_MAX)); }

/// Writes records so that the reader finds each of them at its own address. The machine keeps an address
/// until it gets another, and makes a break out of the first one that a fragment gets.
void externalizeRecord(SOBFInsn* insn, SOBFWriter& writer) {
    if (dynamic_cast<SOBFResetLocusInsn*>(insn))
        return insn->externalize(writer);
    const bool isBreak = dynamic_cast<SOBFBreakInsn*>(insn);
    if (isBreak && !writer.afterBreak)
        return;
    if (!isBreak && writer.afterBreak && (insn->pc != -1 || writer.pc != -1)) {
        SOBFBreakInsn start;
        start.setPC(insn->pc);
        externalizeRecord(&start, writer);
    }
    if (insn->pc == -1 && (isBreak || writer.pc != -1)) {
        writer.externalizeLiteral(-1);
        writer.writeTag(TAG_SETPC);
        writer.pc = -1;
        writer.afterBreak = false;
    }
    insn->externalize(writer);
}

} // namespace

void SOBFFragment::addInsn(SOBFInsn* insn) {
    insns.push_back(insn);
    insn->fragment = this;
}

void SOBFFragment::addReferences(References& references) {
    references.insert(references.end(), insns.begin(), insns.end());
}

void SOBFFragment::externalize(SOBFWriter& writer) {
    writer.writeTag(TAG_BREAK);
    writer.afterBreak = true;
    for (SOBFInsn* insn : insns)
        externalizeRecord(insn, writer);
}

template<class Visit>
void SOBFSection::forEachInsn(Visit visit) const {
    for (const SOBFFragment* fragment : fragments)
        for (SOBFInsn* insn : fragment->insns)
            visit(insn);
}

void SOBFSection::addReferences(References& references) {
    references.insert(references.end(), fragments.begin(), fragments.end());
}

SOBFFragment* SOBFSection::newFragment() {
    currentFragment = new SOBFFragment;
    currentFragment->section = this;
    fragments.push_back(currentFragment);
    return currentFragment;
}

void SOBFSection::addInsn(SOBFInsn* insn) {
    if (!currentFragment)
        newFragment();
    currentFragment->addInsn(insn);
    metricsValid = false;
    accumulatedValid = false;
}

SOBFInsn* SOBFSection::findInsnAt(int address) const {
    for (const SOBFFragment* fragment : fragments)
        for (SOBFInsn* insn : fragment->insns)
            if (insn->pc == address && insn->length() > 0)
                return insn;
    return nullptr;
}

SOBFInsn* SOBFSection::findInsnInRange(int address) const {
    for (const SOBFFragment* fragment : fragments)
        for (SOBFInsn* insn : fragment->insns)
            if (insn->pc <= address && address < int64_t{insn->pc} + insn->length())
                return insn;
    return nullptr;
}

void SOBFSection::computeSectionMetrics() {
    const Working working(m_measuring);
    int64_t least = -1;
    int64_t most = -1;
    int64_t total = 0;
    forEachInsn([&](SOBFInsn* insn) {
        const int length = insn->length();
        total += length;
        if (insn->pc < 0 || length <= 0)
            return;
        least = least == -1 ? insn->pc : std::min<int64_t>(least, insn->pc);
        most = std::max<int64_t>(most, int64_t{insn->pc} + length - 1);
    });
    lowest = clamp(least);
    highest = clamp(most);
    m_total = clamp(total);
    metricsValid = true;
}

int SOBFSection::getSize() {
    // A section that holds a copy of itself has no size; that copy counts as nothing.
    if (!metricsValid) {
        if (m_measuring || copyDepth >= mostCopies)
            return 0;
        computeSectionMetrics();
    }
    return lowest != -1 && highest != -1 ? clamp(int64_t{highest} - lowest + 1) : m_total;
}

int SOBFSection::accumulatedSize() {
    if (!accumulatedValid) {
        getSize();
        accumulated = m_total;
        accumulatedValid = true;
    }
    return accumulated;
}

void SOBFSection::dump(int /*base*/, uint8_t* image) {
    const int size = getSize();
    if (lowest == -1 || size > SOBFModule::addressSpace)
        return;
    // Records may lie on top of each other, so that their bytes together come to far more than the section.
    int64_t patience = int64_t{64} * SOBFModule::addressSpace;
    forEachInsn([&](SOBFInsn* insn) {
        const int64_t offset = int64_t{insn->pc} - lowest;
        const int64_t count = insn->pc < 0 ? 0 : std::min<int64_t>(insn->length(), size - offset);
        patience -= std::max<int64_t>(count, 0);
        if (count > 0 && offset >= 0 && patience >= 0)
            insn->copyBytes(image + offset, static_cast<int>(count));
    });
}

const uint8_t* SOBFSection::image(SOBFModule& owner) {
    if (m_image)
        return m_image;
    if (m_imaging || copyDepth >= mostCopies)
        return nullptr;
    const int size = getSize();
    constexpr size_t mostBytes = size_t{16} * SOBFModule::addressSpace;
    if (size <= 0 || size > SOBFModule::addressSpace ||
        owner.imageBytes + static_cast<size_t>(size) > mostBytes)
        return nullptr;
    owner.imageBytes += static_cast<size_t>(size);
    const Working working(m_imaging);
    auto* bytes = static_cast<uint8_t*>(owner.pool->allocate(static_cast<size_t>(size)));
    std::memset(bytes, 0, static_cast<size_t>(size));
    dump(lowest, bytes);
    m_image = bytes;
    return m_image;
}

void SOBFSection::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    writer.externalizeString(name);
    writer.writeTag(TAG_MKSECTION);
    writer.defineAlias(this);
    writer.pushAlias(this);
    writer.writeTag(TAG_SECTION);
    if (flags != 0) {
        writer.externalizeLiteral(flags);
        writer.writeTag(TAG_SETFLAGS);
    }
    for (SOBFFragment* fragment : fragments)
        fragment->externalize(writer);
}
