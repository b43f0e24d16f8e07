#pragma once

#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "object/SOBFMSP430Reader.h"
#include "object/SOBFModule.h"
#include "object/SOBFWriter.h"

#include <memory>
#include <sstream>
#include <string>
#include <string_view>

/// Object files as text: hexadecimal bytes, and texts in quotes that go to the string pool. `text` pushes the
/// string, so that `bytes("09 09 09 4A 'key' 'value' 51")` is a module, two strings and a tag.
class ObjectBytes {
public:
    static std::string bytes(std::string_view source) {
        std::string pool;
        std::string body;
        while (!source.empty()) {
            if (source.front() == '\'') {
                const std::string_view text = source.substr(1, source.find('\'', 1) - 1);
                body += literal(pool.size()) + literal(text.size()) + '\x23';
                pool += text;
                source.remove_prefix(text.size() + 2);
            } else if (source.front() == ' ' || source.front() == '\n') {
                source.remove_prefix(1);
            } else {
                body += static_cast<char>(std::stoi(std::string(source.substr(0, 2)), nullptr, 16));
                source.remove_prefix(2);
            }
        }
        return literal(pool.size()) + '\x26' + pool + body;
    }
    static std::string literal(size_t value) {
        if (value < 8)
            return std::string(1, static_cast<char>(value));
        std::string digits;
        for (; value; value >>= 8)
            digits.insert(digits.begin(), static_cast<char>(value));
        return std::string("\x08") + static_cast<char>(digits.size()) + digits;
    }
};

/// A module and the pools it lies in, for as long as the object lives.
class ReadObject {
public:
    explicit ReadObject(std::string_view file, bool quick = false, std::ostream* trace = nullptr) {
        m_stream.write(file);
        const CurrentPool current(&m_pool);
        SOBFMSP430Reader reader(&m_stream, false);
        m_module = quick ? reader.readFileQuickly(trace) : reader.readFile(trace);
    }
    ~ReadObject() { SOBFReader::release(m_module); }
    ReadObject(const ReadObject&) = delete;
    ReadObject& operator=(const ReadObject&) = delete;

    SOBFModule* operator->() const { return m_module; }
    SOBFModule* module() const { return m_module; }

    std::string written() const {
        SOBFWriter writer;
        m_module->externalize(writer);
        return std::string(writer.finish().view());
    }

private:
    Pool m_pool;
    HByteStream m_stream;
    SOBFModule* m_module = nullptr;
};

/// The text with which a file is refused; empty if it is not.
inline std::string refusalOf(std::string_view file, bool quick = false) {
    try {
        const ReadObject object(file, quick);
        return {};
    } catch (const HException& exception) {
        return exception.text();
    }
}

inline HString* name(std::string_view text) {
    return HString::intern(text.data(), static_cast<int>(text.size()), HString::AsIs);
}
