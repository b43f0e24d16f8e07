#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A library of object files: an `ar` archive with the index of symbols that System V gave it, so that `ar t`
/// lists it.
class Library {
public:
    struct Member {
        std::string name;
        std::string_view bytes;
    };

    /// Views into `bytes`, which must outlive the library. Throws HException if they are no library.
    explicit Library(std::string_view bytes);

    /// Whether the bytes begin like a library.
    static bool isLibrary(std::string_view bytes);
    /// The number of the member that defines a symbol; -1 if none does.
    int definer(std::string_view symbol) const;

    const std::vector<Member>& members() const { return m_members; }

private:
    void readIndex(std::string_view bytes);

    std::vector<Member> m_members;
    std::map<size_t, int> m_memberAt; ///< by the place of the header
    std::map<std::string_view, size_t> m_index;
};

/// A library whose name stands in front of what is wrong with it.
Library openLibrary(const std::string& name, std::string_view bytes);

/// What goes into a new library.
struct LibraryEntry {
    std::string name;
    std::string bytes;
    std::vector<std::string> symbols; ///< those that it defines
};

/// The bytes of a library. The same entries give the same bytes.
std::string libraryBytes(const std::vector<LibraryEntry>& entries);
