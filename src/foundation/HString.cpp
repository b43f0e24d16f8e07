#include "foundation/HString.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <new>
#include <ostream>
#include <unordered_map>

namespace {

constexpr size_t arenaSize = 4096;

/// A bucket takes this many records; the rest go into `overflow`. The hash is quick and looks only at the
/// last 32 bytes, and few names share a bucket as a rule, but a file may hold a million texts that do.
constexpr int bucketLimit = 16;

constexpr int firstBucketBits = 10;
constinit HString* firstBuckets[1 << firstBucketBits] = {};
size_t recordsInBuckets = 0;

std::unordered_map<std::string_view, HString*>& overflow() {
    static auto* rest = new std::unordered_map<std::string_view, HString*>; // lasts as long as the records
    return *rest;
}

constexpr std::array<uint32_t, 256> makeScatter() {
    std::array<uint32_t, 256> values{0x7BE9C1BD, 0x088AA102, 0x3D38509B, 0x746B9FBE};
    uint32_t state = values[3];
    for (size_t i = 4; i < values.size(); ++i) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        values[i] = state >> 1;
    }
    return values;
}

/// Each byte doubles what the bytes before it gave, so that those before the last 32 are shifted out.
uint32_t hashOf(std::string_view text) {
    constexpr size_t hashBits = 32;
    if (text.size() > hashBits)
        text.remove_prefix(text.size() - hashBits);
    uint32_t hash = 0;
    for (char c : text)
        hash = HString::scatter[static_cast<unsigned char>(c)] + 2 * hash;
    return hash;
}

/// Memory for a record with its text behind it, so that a comparison finds both in one place.
char* store(std::string_view text) {
    static char* next = nullptr;
    static char* strlimit = nullptr;
    const size_t size = (sizeof(HString) + text.size() + 1 + alignof(HString) - 1) & ~(alignof(HString) - 1);
    if (strlimit - next < static_cast<std::ptrdiff_t>(size)) {
        next = static_cast<char*>(::operator new(size + arenaSize));
        strlimit = next + size + arenaSize;
    }
    char* memory = next;
    next += size;
    return memory;
}

void modify(std::string& text, unsigned modifier) {
    const unsigned letters = modifier & 0x0F;
    const unsigned slashes = modifier & 0xF0;
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (letters == HString::UpperCase)
            c = static_cast<char>(std::toupper(byte));
        else if (letters == HString::LowerCase)
            c = static_cast<char>(std::tolower(byte));
        if (slashes == HString::ToSlash && c == '\\')
            c = '/';
        else if (slashes == HString::ToBackslash && c == '/')
            c = '\\';
    }
}

} // namespace

constinit const std::array<uint32_t, 256> HString::scatter = makeScatter();
constinit HString** HString::buckets = firstBuckets;
constinit int HString::bucketBits = firstBucketBits;

HString* HString::intern(const char* text, int length, unsigned modifier) {
    const auto size = static_cast<size_t>(std::max(length, 0));
    std::string scratch;
    std::string_view wanted(text, size);
    if (modifier != AsIs) {
        scratch.assign(text, strnlen(text, size));
        modify(scratch, modifier);
        scratch.resize(size, '\0');
        wanted = scratch;
    }
    const uint32_t hash = hashOf(wanted);
    int seen = 0;
    for (HString* record = bucketOf(hash); record; record = record->m_next, ++seen)
        if (record->m_hash == hash && record->view() == wanted)
            return record;
    // Also where the bucket is no longer full, since the table has grown.
    if (!overflow().empty())
        if (const auto found = overflow().find(wanted); found != overflow().end())
            return found->second;
    return add(hash, wanted, seen >= bucketLimit);
}

HString* HString::intern(const char* text, unsigned modifier) {
    return intern(text, static_cast<int>(std::strlen(text)), modifier);
}

HString* HString::intern(const std::string& text, unsigned modifier) {
    return intern(text.c_str(), modifier);
}

HString* HString::intern(long value) { return intern(std::to_string(value), AsIs); }

/// The upper bits of a product depend on all bits of the hash; its own lower bits only on the last few bytes.
HString*& HString::bucketOf(uint32_t hash) { return buckets[(hash * 0x9E3779B1u) >> (32 - bucketBits)]; }

HString* HString::add(uint32_t hash, std::string_view text, bool bucketIsFull) {
    char* memory = store(text);
    char* stored = memory + sizeof(HString);
    std::copy(text.begin(), text.end(), stored);
    stored[text.size()] = '\0';
    HString* next = bucketIsFull ? nullptr : bucketOf(hash);
    auto* record = new (memory) HString(hash, stored, static_cast<int>(text.size()), next);
    if (bucketIsFull) {
        overflow().emplace(record->view(), record);
        return record;
    }
    bucketOf(hash) = record;
    if (++recordsInBuckets >> bucketBits)
        growBuckets();
    return record;
}

void HString::growBuckets() {
    HString** former = buckets;
    const size_t formerCount = size_t{1} << bucketBits;
    buckets = new HString* [2 * formerCount] {};
    ++bucketBits;
    for (size_t i = 0; i < formerCount; ++i) {
        for (HString* record = former[i]; record;) {
            HString* next = record->m_next;
            record->m_next = bucketOf(record->m_hash);
            bucketOf(record->m_hash) = record;
            record = next;
        }
    }
    if (former != firstBuckets)
        delete[] former;
}

std::ostream& operator<<(std::ostream& stream, const HString* string) { return stream << string->text(); }
