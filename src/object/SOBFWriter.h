#pragma once

#include "foundation/HByteStream.h"
#include "object/SOBFObject.h"

#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

class SOBFMarker;
class SOBFType;

/// Writes a model as an object file. Holds the two parts of the file while it is written, gives out the
/// numbers of aliases and markers, and follows how the machine of the reader stands at the end of what was
/// written.
///
/// The objects are written where they are first needed, so that symbols and types nest. The machine's stack
/// is small, and a type that is being written cannot be used yet: where the one or the other gets in the way,
/// an object is made known by its alias only, and the rest of it follows when nothing is open any more.
class SOBFWriter {
public:
    SOBFWriter();

    void writeTag(int tag);
    /// A number: one byte below 8, else a count and as many bytes as are needed. A negative one takes eight.
    void externalizeLiteral(int64_t value);
    /// A text, whose bytes go to the string pool; a null one is the null entry. Throws HException if it is
    /// longer than any string pool.
    void externalizeString(const HString* text);
    void externalizeString(std::string_view text);

    /// True the first time that this writer meets the object.
    bool begin(SOBFObject* object);
    /// The number under which the object is referred to.
    int getAlias(SOBFObject* object);
    /// Pops the object on top of the stack and makes it known under its alias.
    void defineAlias(SOBFObject* object);
    /// Pushes an object that was made known.
    void pushAlias(SOBFObject* object);
    bool isDefined(const SOBFObject* object) const;
    int getIndex(SOBFMarker* marker);

    /// Whether all that a type is made of from the start is finished or not yet begun.
    bool mayMake(const SOBFType* type) const;
    /// Whether the stack has room for `slots` entries more, and this one for another level.
    bool mayGoOn(unsigned slots) const;
    /// Entries that the first part of a symbol takes, and that of a type.
    static constexpr unsigned symbolSlots = 8;
    static constexpr unsigned typeSlots = 16;
    /// Puts off the rest of an object that is known by its alias.
    void defer(SOBFObject* object) { m_deferred.push_back(object); }
    /// Writes all that was put off.
    void finishDeferred();

    /// A level of nesting, for as long as it exists.
    class Level {
    public:
        explicit Level(SOBFWriter& writer) : m_writer(writer) { ++m_writer.m_level; }
        ~Level() { --m_writer.m_level; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        SOBFWriter& m_writer;
    };

    /// The reader names a marker after the last symbol that stands for it. `noteName` is told of each of
    /// these symbols; `nameOf` is the name to write.
    void noteName(SOBFMarker* marker, HString* name);
    HString* nameOf(SOBFMarker* marker) const;
    /// Whether markers were written under names that the reader will not give them.
    bool hasWrongNames() const;
    /// Forgets all that was written, but not the names.
    void restart();

    /// The file: one or more string pools, each with the part of the body that uses it. Valid until the
    /// writer goes.
    const HByteStream& finish();

    int stackAdjust = 0;     ///< the one last written
    int pc = -1;             ///< the address of the next record, unless it states one
    bool afterBreak = false; ///< the next address starts a fragment

private:
    static constexpr size_t mostPoolBytes = 0xFFFFFF;
    static constexpr unsigned mostHeight = 96;
    static constexpr unsigned mostLevels = 40;

    void meet(SOBFObject* object) const;
    void finishPart();
    static void writeLiteral(HByteStream& stream, int64_t value);

    unsigned m_number = 0;
    int m_nextAlias = 0;
    int m_nextIndex = 0;
    int m_height = 0;
    unsigned m_level = 0;
    std::deque<SOBFObject*> m_deferred;
    std::unordered_map<SOBFMarker*, HString*> m_noted;
    std::unordered_map<SOBFMarker*, HString*> m_names;
    std::optional<HByteStream> m_body;
    std::optional<HByteStream> m_pool;
    std::optional<HByteStream> m_file;
};
