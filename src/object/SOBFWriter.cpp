#include "object/SOBFWriter.h"

#include "foundation/HException.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFType.h"

SOBFWriter::SOBFWriter() { restart(); }

void SOBFWriter::restart() {
    static unsigned writers = 0;
    m_number = ++writers;
    m_nextAlias = 0;
    m_nextIndex = 0;
    m_height = 0;
    m_deferred.clear();
    m_names = std::move(m_noted);
    m_noted.clear();
    m_body.emplace();
    m_pool.emplace();
    m_file.emplace();
    stackAdjust = 0;
    pc = -1;
    afterBreak = false;
}

void SOBFWriter::writeTag(int tag) {
    m_body->write(static_cast<uint8_t>(tag));
    m_height += SOBFTagTable::rows[static_cast<size_t>(tag)].growth;
}

void SOBFWriter::writeLiteral(HByteStream& stream, int64_t value) {
    const auto bits = static_cast<uint64_t>(value);
    if (bits < TAG_LITX)
        return stream.write(static_cast<uint8_t>(bits));
    int count = 1;
    while (count < 8 && bits >> (8 * count))
        ++count;
    stream.write(TAG_LITX);
    stream.write(static_cast<uint8_t>(count));
    while (count-- > 0)
        stream.write(static_cast<uint8_t>(bits >> (8 * count)));
}

void SOBFWriter::externalizeLiteral(int64_t value) {
    writeLiteral(*m_body, value);
    ++m_height;
}

void SOBFWriter::externalizeString(const HString* text) {
    if (text)
        externalizeString(text->view());
    else
        writeTag(TAG_NULL);
}

void SOBFWriter::externalizeString(std::string_view text) {
    if (text.size() > mostPoolBytes)
        throw HException("text too long for an object file");
    if (m_pool->size() + text.size() > mostPoolBytes)
        finishPart();
    externalizeLiteral(static_cast<int64_t>(m_pool->size()));
    externalizeLiteral(static_cast<int64_t>(text.size()));
    writeTag(TAG_MKSTRING);
    m_pool->write(text);
}

/// A reader takes no string pool above a certain size, but it takes another in the middle of the file.
void SOBFWriter::finishPart() {
    if (m_body->size() == 0)
        return;
    writeLiteral(*m_file, static_cast<int64_t>(m_pool->size()));
    m_file->write(TAG_STRINGPOOL);
    m_file->write(m_pool->view());
    m_file->write(m_body->view());
    m_pool.emplace();
    m_body.emplace();
}

const HByteStream& SOBFWriter::finish() {
    finishPart();
    return *m_file;
}

void SOBFWriter::meet(SOBFObject* object) const {
    if (object->writtenBy == m_number)
        return;
    object->writtenBy = m_number;
    object->aliasAssigned = false;
    object->externalized = false;
    object->aliasDefined = false;
}

bool SOBFWriter::begin(SOBFObject* object) {
    meet(object);
    const bool first = !object->externalized;
    object->externalized = true;
    return first;
}

int SOBFWriter::getAlias(SOBFObject* object) {
    meet(object);
    if (!object->aliasAssigned) {
        object->aliasAssigned = true;
        object->alias = m_nextAlias++;
    }
    return object->alias;
}

void SOBFWriter::defineAlias(SOBFObject* object) {
    externalizeLiteral(getAlias(object));
    writeTag(TAG_MKALIAS);
    object->aliasDefined = true;
}

void SOBFWriter::pushAlias(SOBFObject* object) {
    externalizeLiteral(getAlias(object));
    writeTag(TAG_ALIAS);
}

bool SOBFWriter::isDefined(const SOBFObject* object) const {
    return object->writtenBy == m_number && object->aliasDefined;
}

int SOBFWriter::getIndex(SOBFMarker* marker) {
    meet(marker);
    if (!marker->aliasAssigned) {
        marker->aliasAssigned = true;
        marker->index = m_nextIndex++;
    }
    return marker->index;
}

bool SOBFWriter::mayMake(const SOBFType* type) const {
    if (isDefined(type))
        return true;
    if (type->writtenBy == m_number && type->externalized)
        return false;
    for (int number = 0; number < SOBFType::partCount; ++number)
        if (const SOBFType* part = type->part(number); part && !mayMake(part))
            return false;
    return true;
}

bool SOBFWriter::mayGoOn(unsigned slots) const {
    return m_level <= mostLevels && static_cast<unsigned>(m_height) + slots <= mostHeight;
}

void SOBFWriter::finishDeferred() {
    while (!m_deferred.empty()) {
        SOBFObject* object = m_deferred.front();
        m_deferred.pop_front();
        object->externalizeRest(*this);
    }
}

void SOBFWriter::noteName(SOBFMarker* marker, HString* name) {
    const auto noted = m_noted.find(marker);
    if (noted != m_noted.end())
        noted->second = name;
    else if (name != nameOf(marker))
        m_noted.emplace(marker, name);
}

HString* SOBFWriter::nameOf(SOBFMarker* marker) const {
    const auto entry = m_names.find(marker);
    return entry == m_names.end() ? marker->name : entry->second;
}

bool SOBFWriter::hasWrongNames() const {
    for (const auto& [marker, name] : m_noted)
        if (name != nameOf(marker))
            return true;
    return false;
}
