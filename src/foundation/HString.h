#pragma once

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

/// One record for each different text in the process: equal texts have equal pointers, so a comparison of
/// names is a comparison of pointers. Records are never freed. Not for use from several threads.
class HString {
public:
    /// What happens to a text before it is interned: a case in the low four bits, a slash in the next four.
    /// Any other value of a part leaves that side of the text alone.
    enum Modifier : unsigned {
        UpperCase = 0,
        LowerCase = 1,
        AsIs = 2, ///< the common one: the text is taken without a working copy
        ToSlash = 0x10,
        ToBackslash = 0x20
    };

    /// The record of the first `length` bytes of `text`, zero bytes included. With a modifier other than AsIs
    /// the text counts up to its first zero byte, and zero bytes stand for what is missing up to `length`.
    /// Never null; a negative `length` counts as 0.
    static HString* intern(const char* text, int length, unsigned modifier);
    /// The same, up to the first zero byte of `text`.
    static HString* intern(const char* text, unsigned modifier);
    static HString* intern(const std::string& text, unsigned modifier);
    /// The record of the decimal text of `value`, "-" in front if negative.
    static HString* intern(long value);

    /// The text; a zero byte follows it.
    const char* text() const { return m_text; }
    /// Bytes, without the zero byte behind them.
    int length() const { return m_length; }
    /// The full hash of the text.
    uint32_t hash() const { return m_hash; }
    std::string_view view() const { return {m_text, static_cast<size_t>(m_length)}; }

    /// For each byte value a different number below 2^31. No stored format depends on them.
    static const std::array<uint32_t, 256> scatter;

private:
    HString(uint32_t hash, const char* text, int length, HString* next)
        : m_hash(hash), m_text(text), m_length(length), m_next(next) {}

    static HString*& bucketOf(uint32_t hash);
    static HString* add(uint32_t hash, std::string_view text, bool bucketIsFull);
    static void growBuckets();

    uint32_t m_hash;
    const char* m_text;
    int m_length;
    HString* m_next; ///< the next record in the bucket

    static HString** buckets; ///< 1,024 heads at first
    static int bucketBits;
};

/// Writes the text.
std::ostream& operator<<(std::ostream& stream, const HString* string);
