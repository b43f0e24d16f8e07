#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// What a byte may be in the system's XML, by a table. A name character is a letter, a digit or "_", and
/// nothing else: "-", "." and ":" are none.
namespace xmlCharacters {

enum Class : uint8_t {
    WhiteSpace = 1,
    Name = 2,
    NameStart = 4, ///< a letter or "_"
    ValueStop = 8, ///< where the scan of an attribute value stops: a double quote, "&", the end
    TextStop = 16  ///< where the scan of character data stops: "<", the end
};

constexpr std::array<uint8_t, 256> makeClasses() {
    std::array<uint8_t, 256> classes{};
    for (char c : std::string_view(" \t\r\n"))
        classes[static_cast<unsigned char>(c)] = WhiteSpace;
    for (unsigned c = '0'; c <= '9'; ++c)
        classes[c] = Name;
    for (unsigned c = 'A'; c <= 'Z'; ++c)
        classes[c] = classes[c + 'a' - 'A'] = Name | NameStart;
    classes['_'] = Name | NameStart;
    classes['"'] = classes['&'] = ValueStop;
    classes['<'] = TextStop;
    classes['\0'] = ValueStop | TextStop;
    return classes;
}

inline constexpr std::array<uint8_t, 256> classes = makeClasses();

inline bool is(char c, Class wanted) { return classes[static_cast<unsigned char>(c)] & wanted; }

} // namespace xmlCharacters

inline bool isXMLWhiteSpace(char c) { return xmlCharacters::is(c, xmlCharacters::WhiteSpace); }
inline bool isXMLNameCharacter(char c) { return xmlCharacters::is(c, xmlCharacters::Name); }
