#include "toolchain/qcvt/LoadFormats.h"

#include "foundation/HException.h"
#include "toolchain/common/ElfFile.h"

#include <algorithm>
#include <elf.h>
#include <functional>

namespace {

constexpr size_t bytesInRecord = 16;

/// What a byte that nobody writes reads as.
constexpr char erased = '\xFF';

void appendHex(std::string& text, uint32_t value, int digits) {
    constexpr char symbols[] = "0123456789ABCDEF";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += symbols[value >> shift & 15];
}

using Record = std::function<void(uint32_t address, std::string_view bytes)>;

/// Cuts blocks into records, none of which crosses a multiple of 64 K.
void forEachRecord(const std::vector<LoadBlock>& blocks, const Record& record) {
    for (const LoadBlock& block : blocks) {
        for (size_t at = 0; at < block.bytes.size();) {
            const auto address = block.address + static_cast<uint32_t>(at);
            const size_t count =
                std::min({bytesInRecord, block.bytes.size() - at, size_t{0x10000 - (address & 0xFFFF)}});
            record(address, std::string_view(block.bytes).substr(at, count));
            at += count;
        }
    }
}

/// Intel: count, address, kind, data, and what makes the sum of all bytes 0.
std::string intelHex(const std::vector<LoadBlock>& blocks, uint32_t) {
    std::string text;
    uint32_t upper = 0;
    const auto add = [&](uint32_t kind, uint32_t address, std::string_view bytes) {
        uint32_t sum = static_cast<uint32_t>(bytes.size()) + (address >> 8 & 0xFF) + (address & 0xFF) + kind;
        text += ':';
        appendHex(text, static_cast<uint32_t>(bytes.size()), 2);
        appendHex(text, address & 0xFFFF, 4);
        appendHex(text, kind, 2);
        for (const char byte : bytes) {
            appendHex(text, static_cast<uint8_t>(byte), 2);
            sum += static_cast<uint8_t>(byte);
        }
        appendHex(text, (0 - sum) & 0xFF, 2);
        text += '\n';
    };
    forEachRecord(blocks, [&](uint32_t address, std::string_view bytes) {
        if (address >> 16 != upper) {
            upper = address >> 16;
            add(4, 0, std::string{static_cast<char>(upper >> 8), static_cast<char>(upper)});
        }
        add(0, address, bytes);
    });
    add(1, 0, {});
    return text;
}

/// Motorola: addresses of two bytes, or of three throughout if one does not fit.
std::string sRecords(const std::vector<LoadBlock>& blocks, uint32_t entry) {
    const bool isLong = !blocks.empty() && blocks.back().address + blocks.back().bytes.size() > 0x10000;
    std::string text;
    const auto add = [&](char kind, uint32_t address, std::string_view bytes) {
        const int width = isLong && kind != '0' ? 3 : 2;
        const auto count = static_cast<uint32_t>(bytes.size()) + static_cast<uint32_t>(width) + 1;
        uint32_t sum = count + (address >> 16) + (address >> 8 & 0xFF) + (address & 0xFF);
        text.append("S").append(1, kind);
        appendHex(text, count, 2);
        appendHex(text, address, 2 * width);
        for (const char byte : bytes) {
            appendHex(text, static_cast<uint8_t>(byte), 2);
            sum += static_cast<uint8_t>(byte);
        }
        appendHex(text, ~sum & 0xFF, 2);
        text += '\n';
    };
    add('0', 0, {});
    forEachRecord(blocks,
                  [&](uint32_t address, std::string_view bytes) { add(isLong ? '2' : '1', address, bytes); });
    add(isLong ? '8' : '9', entry, {});
    return text;
}

/// From the first address to the last, with nothing in front.
std::string binary(const std::vector<LoadBlock>& blocks, uint32_t) {
    std::string bytes;
    for (const LoadBlock& block : blocks) {
        bytes.resize(block.address - blocks.front().address, erased);
        bytes += block.bytes;
    }
    return bytes;
}

/// TI: addresses behind "@", sixteen bytes in a line, "q" at the end.
std::string tiText(const std::vector<LoadBlock>& blocks, uint32_t) {
    std::string text;
    for (const LoadBlock& block : blocks) {
        text += '@';
        appendHex(text, block.address, block.address > 0xFFFF ? 5 : 4);
        for (size_t at = 0; at < block.bytes.size(); ++at) {
            text += at % bytesInRecord == 0 ? '\n' : ' ';
            appendHex(text, static_cast<uint8_t>(block.bytes[at]), 2);
        }
        text += '\n';
    }
    return text + "q\n";
}

/// A number with the count of its digits in front.
std::string tektronixNumber(uint32_t value) {
    std::string text = "6";
    appendHex(text, value, 6);
    return text;
}

/// Tektronix, extended: length, kind, the sum of all other characters, an address, data.
std::string tektronix(const std::vector<LoadBlock>& blocks, uint32_t entry) {
    std::string text;
    const auto add = [&](char kind, const std::string& body) {
        std::string head;
        appendHex(head, static_cast<uint32_t>(body.size()) + 5, 2);
        head += kind;
        uint32_t sum = 0;
        for (const char digit : head + body)
            sum += static_cast<uint32_t>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
        text += "%" + head;
        appendHex(text, sum & 0xFF, 2);
        text += body + "\n";
    };
    forEachRecord(blocks, [&](uint32_t address, std::string_view bytes) {
        std::string body = tektronixNumber(address);
        for (const char byte : bytes)
            appendHex(body, static_cast<uint8_t>(byte), 2);
        add('6', body);
    });
    add('8', tektronixNumber(entry));
    return text;
}

constexpr struct {
    std::string_view name;
    std::string (*write)(const std::vector<LoadBlock>& blocks, uint32_t entry);
} formats[] = {{"hex", intelHex}, {"srec", sRecords}, {"bin", binary}, {"txt", tiText}, {"tek", tektronix}};

} // namespace

std::vector<LoadBlock> loadBlocks(const ElfFile& elf) {
    std::vector<LoadBlock> pieces;
    for (const ElfSection& section : elf.sections)
        if (section.isAllocated() && section.type == SHT_PROGBITS && section.size > 0)
            pieces.push_back({section.address, section.bytes});
    std::stable_sort(pieces.begin(), pieces.end(),
                     [](const LoadBlock& a, const LoadBlock& b) { return a.address < b.address; });
    std::vector<LoadBlock> blocks;
    for (LoadBlock& piece : pieces) {
        const uint64_t end =
            blocks.empty() ? 0 : uint64_t{blocks.back().address} + blocks.back().bytes.size();
        if (!blocks.empty() && piece.address < end)
            throw HException("sections overlap");
        if (uint64_t{piece.address} + piece.bytes.size() > 0x100000)
            throw HException("a section lies beyond the address space");
        if (!blocks.empty() && piece.address == end)
            blocks.back().bytes += piece.bytes;
        else
            blocks.push_back(std::move(piece));
    }
    return blocks;
}

std::string loadFile(std::string_view format, const std::vector<LoadBlock>& blocks, uint32_t entry) {
    for (const auto& row : formats)
        if (row.name == format)
            return row.write(blocks, entry & 0xFFFFF);
    throw HException("no format " + std::string(format) + "; there are " + loadFormatNames() + ", lst");
}

std::string loadFormatNames() {
    std::string names;
    for (const auto& row : formats)
        names.append(names.empty() ? "" : ", ").append(row.name);
    return names;
}
