#include "toolchain/common/Library.h"

#include "foundation/HException.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::string_view magic = "!<arch>\n";
constexpr size_t headerSize = 60;
constexpr size_t mostShortName = 15;

[[noreturn]] void fail() { throw HException("bad library"); }

std::string_view trimmed(std::string_view field) {
    return field.substr(
        0, field.find_last_not_of(' ') == std::string_view::npos ? 0 : field.find_last_not_of(' ') + 1);
}

size_t number(std::string_view text) {
    size_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        fail();
    return value;
}

uint32_t bigEndian(std::string_view bytes, size_t at) {
    if (bytes.size() < 4 || at > bytes.size() - 4)
        fail();
    uint32_t value = 0;
    for (size_t index = 0; index < 4; ++index)
        value = value << 8 | static_cast<uint8_t>(bytes[at + index]);
    return value;
}

void appendBigEndian(std::string& bytes, size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift);
}

void appendField(std::string& bytes, std::string text, size_t width) {
    text.resize(width, ' ');
    bytes += text;
}

/// A member, whose data is padded to an even size.
void appendMember(std::string& bytes, const std::string& name, std::string_view data) {
    appendField(bytes, name, 16);
    appendField(bytes, "0", 12);
    appendField(bytes, "0", 6);
    appendField(bytes, "0", 6);
    appendField(bytes, "100644", 8);
    appendField(bytes, std::to_string(data.size()), 10);
    bytes += "`\n";
    bytes += data;
    if (data.size() % 2)
        bytes += '\n';
}

size_t memberSize(size_t data) { return headerSize + data + data % 2; }

} // namespace

bool Library::isLibrary(std::string_view bytes) { return bytes.substr(0, magic.size()) == magic; }

Library::Library(std::string_view bytes) {
    if (!isLibrary(bytes))
        fail();
    std::string_view longNames;
    std::string_view index;
    for (size_t at = magic.size(); at < bytes.size();) {
        if (bytes.size() - at < headerSize || bytes.substr(at + 58, 2) != "`\n")
            fail();
        const std::string_view field = trimmed(bytes.substr(at, 16));
        const size_t size = number(trimmed(bytes.substr(at + 48, 10)));
        if (size > bytes.size() - at - headerSize)
            fail();
        const std::string_view data = bytes.substr(at + headerSize, size);
        if (field == "/") {
            index = data;
        } else if (field == "//") {
            longNames = data;
        } else {
            std::string_view name = field.substr(0, field.find('/', 1));
            if (field.size() > 1 && field[0] == '/') {
                const size_t start = number(field.substr(1));
                if (start >= longNames.size())
                    fail();
                name = longNames.substr(start);
                name = name.substr(0, name.find("/\n"));
            }
            if (name.empty())
                fail();
            m_memberAt[at] = static_cast<int>(m_members.size());
            m_members.push_back({std::string(name), data});
        }
        at += memberSize(size);
    }
    if (!index.empty())
        readIndex(index);
}

void Library::readIndex(std::string_view bytes) {
    const uint32_t count = bigEndian(bytes, 0);
    if (count > bytes.size() / 4)
        fail();
    size_t name = 4 + size_t{4} * count;
    for (uint32_t entry = 0; entry < count; ++entry) {
        const size_t end = bytes.find('\0', name);
        if (end == std::string_view::npos)
            fail();
        m_index.emplace(bytes.substr(name, end - name), bigEndian(bytes, 4 + size_t{4} * entry));
        name = end + 1;
    }
}

int Library::definer(std::string_view symbol) const {
    const auto place = m_index.find(symbol);
    if (place == m_index.end())
        return -1;
    const auto member = m_memberAt.find(place->second);
    return member == m_memberAt.end() ? -1 : member->second;
}

Library openLibrary(const std::string& name, std::string_view bytes) {
    try {
        return Library(bytes);
    } catch (const HException& exception) {
        throw HException(name + ": " + exception.text());
    }
}

std::string libraryBytes(const std::vector<LibraryEntry>& entries) {
    std::string longNames;
    std::vector<std::string> fields;
    size_t symbolCount = 0;
    size_t symbolBytes = 0;
    for (const LibraryEntry& entry : entries) {
        const bool fits = entry.name.size() <= mostShortName && entry.name.find('/') == std::string::npos;
        fields.push_back(fits ? entry.name + "/" : "/" + std::to_string(longNames.size()));
        if (!fits)
            longNames += entry.name + "/\n";
        symbolCount += entry.symbols.size();
        for (const std::string& symbol : entry.symbols)
            symbolBytes += symbol.size() + 1;
    }
    size_t place = magic.size() + memberSize(4 + 4 * symbolCount + symbolBytes);
    if (!longNames.empty())
        place += memberSize(longNames.size());
    std::string index;
    std::string names;
    appendBigEndian(index, symbolCount);
    for (const LibraryEntry& entry : entries) {
        for (const std::string& symbol : entry.symbols) {
            appendBigEndian(index, place);
            names += symbol + '\0';
        }
        place += memberSize(entry.bytes.size());
    }
    std::string bytes(magic);
    appendMember(bytes, "/", index + names);
    if (!longNames.empty())
        appendMember(bytes, "//", longNames);
    for (size_t number = 0; number < entries.size(); ++number)
        appendMember(bytes, fields[number], entries[number].bytes);
    return bytes;
}
