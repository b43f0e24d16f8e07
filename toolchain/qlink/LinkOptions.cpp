#include "toolchain/qlink/LinkOptions.h"

#include "foundation/HException.h"
#include "toolchain/qlink/Checksum.h"

#include <charconv>

namespace {

constexpr uint32_t addressSpace = 0x100000;

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const size_t end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

uint32_t hexadecimal(const std::string& text, const std::string& word) {
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (error != std::errc() || end != text.data() + text.size() || value > addressSpace)
        throw HException("no address in -T" + word + ": " + text);
    return value;
}

void addChecksum(LinkOptions& options, const std::string& text) {
    const size_t equals = text.rfind('=');
    options.checksumAlgorithm = equals == std::string::npos ? "" : text.substr(equals + 1);
    options.checksumSections = split(std::string_view(text).substr(0, equals), ',');
    if (options.checksumSections.empty() || !checksumAlgorithm(options.checksumAlgorithm))
        throw HException("-H takes sections and one of " + checksumAlgorithmNames() +
                         ", as in -HCODE,CONST=crc16");
}

void addDefinition(LinkOptions& options, const std::string& text) {
    const size_t equals = text.find('=');
    if (equals == 0)
        throw HException("a symbol expected in -D" + text);
    options.definitions.emplace_back(text.substr(0, equals),
                                     equals == std::string::npos ? "1" : text.substr(equals + 1));
}

void addLoaded(LinkOptions& options, const std::string& text) {
    if (text.size() < 3 || text.compare(text.size() - 2, 2, "=L") != 0)
        throw HException("-G takes a section and \"=L\", as in -GCODE=L: -G" + text);
    options.loaded.push_back(text.substr(0, text.size() - 2));
}

/// Optimisations that nothing here does. The joined ones stand behind their longer forms.
std::vector<ToolWord> wordsWithoutEffect(Tool& tool) {
    constexpr struct {
        const char* word;
        ToolWord::Form form;
    } rows[] = {
        {"-Oxcx=", ToolWord::Joined}, {"-Oxcp=", ToolWord::Joined}, {"-Oxc=", ToolWord::Joined},
        {"-Oxj", ToolWord::Alone},    {"-Oph", ToolWord::Alone},    {"-Ofl", ToolWord::Alone},
        {"-Otm", ToolWord::Alone},    {"-Ojt", ToolWord::Alone},    {"-Ojc", ToolWord::Alone},
        {"-Ocm", ToolWord::Alone},    {"-Obl", ToolWord::Alone},    {"-Ocp", ToolWord::Alone},
        {"-fcpu6", ToolWord::Alone},
    };
    std::vector<ToolWord> words;
    for (const auto& row : rows)
        words.push_back({row.word, row.form, row.form == ToolWord::Joined ? "N" : nullptr, "no effect",
                         [&tool, word = row.word](const std::string& value) {
                             tool.say(word + value + " has no effect");
                         }});
    return words;
}

} // namespace

Placement parsePlacement(const std::string& text) {
    const size_t equals = std::min(text.find('='), text.size());
    Placement placement{split(std::string_view(text).substr(0, equals), ','), {}};
    for (const std::string& range :
         split(std::string_view(text).substr(std::min(equals + 1, text.size())), ',')) {
        const size_t dash = range.find('-');
        if (dash == std::string::npos)
            throw HException("no range of addresses in -T" + text + ": " + range);
        placement.ranges.push_back(
            {hexadecimal(range.substr(0, dash), text), hexadecimal(range.substr(dash + 1), text)});
    }
    // A section at a fixed place is given its last address, all others the address behind.
    if (placement.sections.size() == 1 && placement.ranges.size() == 1 && placement.ranges[0].end % 2 == 1)
        ++placement.ranges[0].end;
    return placement;
}

void addLinkWords(Tool& tool, LinkOptions& options) {
    const auto set = [](bool& flag) { return [&flag](const std::string&) { flag = true; }; };
    const auto setText = [](std::string& text) {
        return [&text](const std::string& value) { text = value; };
    };
    tool.addWords(tool.commonWords());
    tool.addWords({
        {"-o", ToolWord::Next, "FILE", "the executable to write", setText(options.output)},
        {"-T", ToolWord::Joined, "SECTIONS=RANGES", "place the sections there, addresses in hexadecimal",
         [&](const std::string& text) { options.placements.push_back(parsePlacement(text)); }},
        {"-G", ToolWord::Joined, "SECTION=L", "the section's contents lie where it is placed",
         [&](const std::string& text) { addLoaded(options, text); }},
        {"-D", ToolWord::Joined, "SYMBOL=VALUE", "define a symbol, as a number or as another symbol",
         [&](const std::string& text) { addDefinition(options, text); }},
        {"-K", ToolWord::Joined, "SYMBOL", "keep it, though nothing refers to it",
         [&](const std::string& text) { options.keep.push_back(text); }},
        {"-E", ToolWord::Joined, "SYMBOL", "where the program starts, else _start", setText(options.entry)},
        {"-H", ToolWord::Joined, "SECTIONS=NAME", "make checksums: crc16, crc32, sum or xor",
         [&](const std::string& text) { addChecksum(options, text); }},
        {"-M", ToolWord::Joined, "FILE", "write a map there", setText(options.mapFile)},
        {"-g", ToolWord::Alone, nullptr, "put source lines into the executable", set(options.debug)},
        {"-Odc", ToolWord::Alone, nullptr, "leave out what nothing refers to", set(options.dropUnused)},
        {"-mcpux", ToolWord::Alone, nullptr, "for the MSP430X", set(options.extended)},
    });
    tool.addWords(wordsWithoutEffect(tool));
}
