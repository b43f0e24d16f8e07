#pragma once

#include "foundation/HByteStream.h"
#include "object/SOBFObject.h"

#include <string_view>
#include <unordered_map>
#include <vector>

class SOBFMarker;
class SOBFSymbol;

/// Writes a model as an object file. Holds the two parts of the file while it is written, gives out the numbers
/// of aliases and markers, and knows how the machine of the reader will stand at the end of what was written.
class SOBFWriter {
public:
    SOBFWriter();

    void writeTag(int tag);
    /// A number: one byte below 8, else a count and as many bytes as are needed. A negative one takes eight.
    void externalizeLiteral(int64_t value);
    /// A text, whose bytes go to the string pool; a null one is the null entry.
    void externalizeString(const HString* text);
    void externalizeString(const char* text, size_t length);
    void externalizeString(std::string_view text) { externalizeString(text.data(), text.size()); }

    /// The number under which the object is referred to.
    int getAlias(SOBFObject* object);
    /// Pops the object on top of the stack and makes it known under its alias.
    void defineAlias(SOBFObject* object);
    /// Pushes an object that was made known.
    void pushAlias(SOBFObject* object);
    int getIndex(SOBFMarker* marker);
    /// True the first time that this writer meets the object.
    bool begin(SOBFObject* object);

    /// The file: length of the string pool, the pool and the body.
    HByteStream& finish();

    int stackAdjust = 0; ///< the one last written
    int pc = -1;         ///< what the reader's pc will be
    bool afterBreak = false;

private:
    void meet(SOBFObject* object);

    unsigned m_number;
    int m_nextAlias = 0;
    int m_nextIndex = 0;
    int m_height = 0;
    HByteStream m_body;
    HByteStream m_pool;
    HByteStream m_file;
};
