#include "foundation/HString.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <ostream>
#include <unordered_map>

namespace {

constexpr size_t arenaSize = 4096;

/// A bucket takes this many records; the rest go into `overflow`. The hash is quick and looks only at the
/// last 32 bytes, and few names share a bucket as a rule, but a file may hold a million texts that do.
constexpr int bucketLimit = 16;

std::unordered_map<std::string_view, HString*>& overflow() {
    static std::unordered_map<std::string_view, HString*> records;
    return records;
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

uint32_t hashOf(std::string_view text) {
    uint32_t hash = 0;
    for (char c : text)
        hash = HString::scatter[static_cast<unsigned char>(c)] + 2 * hash;
    return hash;
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
HString* HString::buckets[bucketCount];

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
    HString* known = find(hash, wanted);
    return known ? known : add(hash, wanted);
}

HString* HString::intern(const char* text, unsigned modifier) {
    return intern(text, static_cast<int>(std::strlen(text)), modifier);
}

HString* HString::intern(const std::string& text, unsigned modifier) {
    return intern(text.c_str(), modifier);
}

HString* HString::intern(long value) { return intern(std::to_string(value), AsIs); }

HString* HString::find(uint32_t hash, std::string_view text) {
    int seen = 0;
    for (HString* record = buckets[hash % bucketCount]; record; record = record->m_next, ++seen)
        if (record->m_hash == hash && record->view() == text)
            return record;
    if (seen < bucketLimit)
        return nullptr;
    const auto found = overflow().find(text);
    return found == overflow().end() ? nullptr : found->second;
}

HString* HString::add(uint32_t hash, std::string_view text) {
    HString*& head = buckets[hash % bucketCount];
    int seen = 0;
    for (const HString* record = head; record; record = record->m_next)
        ++seen;
    const char* stored = store(text);
    if (seen < bucketLimit) {
        head = new HString(hash, stored, static_cast<int>(text.size()), head);
        return head;
    }
    auto* record = new HString(hash, stored, static_cast<int>(text.size()), nullptr);
    overflow().emplace(record->view(), record);
    return record;
}

const char* HString::store(std::string_view text) {
    static char* next = nullptr;
    static char* strlimit = nullptr;
    if (strlimit - next <= static_cast<std::ptrdiff_t>(text.size() + 1)) {
        next = new char[text.size() + arenaSize];
        strlimit = next + text.size() + arenaSize;
    }
    char* stored = next;
    std::copy(text.begin(), text.end(), stored);
    stored[text.size()] = '\0';
    next += text.size() + 1;
    return stored;
}

std::ostream& operator<<(std::ostream& stream, const HString* string) { return stream << string->text(); }
