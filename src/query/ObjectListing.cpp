#include "query/ObjectListing.h"

#include "foundation/Text.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "query/Printable.h"

#include <QJsonArray>
#include <algorithm>
#include <ostream>

namespace {

/// Bytes of a record that a line has room for.
constexpr int mostBytes = 8;

using ::printable;

std::string printable(const HString* text) { return printable(text ? text->view() : std::string_view()); }

std::string hex(int64_t value) {
    char text[24];
    std::snprintf(text, sizeof text, value < 0 ? "-0x%llX" : "0x%llX",
                  static_cast<unsigned long long>(value < 0 ? 0 - static_cast<uint64_t>(value)
                                                            : static_cast<uint64_t>(value)));
    return text;
}

QString json(const HString* text) { return toText(text ? text->view() : std::string_view()); }
QString json(const std::string& text) { return toText(text); }

/// The bytes of a record in hexadecimal: those that the file has, or those that any record of its kind has.
/// Empty if the record is not encoded yet.
std::string bytesOf(SOBFInsn& insn) {
    if (insn.byteCount > 0)
        return insn.printOpCode();
    if (!dynamic_cast<SOBFUniformInsn*>(&insn) && !dynamic_cast<SOBFInitInsn*>(&insn))
        return {};
    const int count = std::min(insn.length(), mostBytes + 1);
    std::string text;
    for (int offset = 0; offset < count; ++offset) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", insn.getByte(offset));
        text += digits;
    }
    return text;
}

std::string cut(std::string bytes) {
    constexpr size_t most = 2 * mostBytes;
    if (bytes.size() > most)
        bytes.replace(most, std::string::npos, "..");
    return bytes.append(most + 4 - bytes.size(), ' ');
}

/// Tabs become blanks, so that the text stands in columns wherever the line begins.
std::string columns(std::string_view text) {
    std::string result;
    while (true) {
        const size_t tab = text.find('\t');
        result += printable(text.substr(0, tab));
        if (tab == std::string_view::npos)
            return result;
        result.append(8 - result.size() % 8, ' ');
        text.remove_prefix(tab + 1);
    }
}

std::string textOf(SOBFInsn& insn) {
    std::string text = insn.printString();
    if (dynamic_cast<SOBFProcessorInsn*>(&insn))
        text.insert(0, 1, '\t');
    else if (dynamic_cast<SOBFMarker*>(&insn) && !text.empty())
        text += ':';
    return text;
}

std::string lineOf(const SOBFLocus* locus) {
    return locus ? printable(locus->file->path) + ":" + std::to_string(locus->line) : std::string();
}

/// Where a record came from: the last source line in front of it in its section; for a line the line itself.
const SOBFLocus* locusOf(const SOBFInsn& insn) {
    if (const auto* locus = dynamic_cast<const SOBFLocus*>(&insn))
        return locus;
    const bool here = insn.locus && insn.locus->fragment->section == insn.fragment->section;
    return here ? insn.locus : nullptr;
}

std::string valueOf(const SOBFSymbol& symbol) {
    if (!symbol.value)
        return "undefined";
    const SOBFExprValue value = symbol.value->evaluate();
    if (value.failed)
        return symbol.value->printString() + (value.message.empty() ? "" : " (" + value.message + ")");
    return hex(value.value) + (value.section ? " in " + std::string(value.section->name->view()) : "");
}

void listSection(SOBFSection& section, std::ostream& out) {
    out << "\nSection " << printable(section.name) << ": " << section.getSize() << " bytes";
    if (section.lowest != -1)
        out << ", " << hex(section.lowest) << " to " << hex(section.highest);
    if (section.flags != 0)
        out << ", flags " << hex(section.flags);
    out << '\n';
    std::string lastLine;
    for (const SOBFFragment* fragment : section.fragments) {
        for (SOBFInsn* insn : fragment->insns) {
            const std::string line = lineOf(locusOf(*insn));
            std::string text = "  " + insn->printPC() + "  " + cut(bytesOf(*insn)) + columns(textOf(*insn));
            if (!line.empty() && line != lastLine)
                text += std::string(text.size() < 60 ? 60 - text.size() : 2, ' ') + "; " + line;
            lastLine = line.empty() ? lastLine : line;
            text.erase(text.find_last_not_of(' ') + 1);
            out << text << '\n';
        }
    }
}

QJsonObject describeRecord(SOBFInsn& insn) {
    QJsonObject record{{"text", json(textOf(insn))}, {"length", insn.length()}};
    if (insn.pc != -1)
        record["address"] = insn.pc;
    if (insn.byteCount > 0)
        record["bytes"] = json(insn.printOpCode());
    if (insn.hidden)
        record["hidden"] = true;
    if (const SOBFLocus* locus = locusOf(insn)) {
        record["file"] = json(locus->file->path);
        record["line"] = locus->line;
    }
    return record;
}

QJsonObject describeSection(SOBFSection& section) {
    QJsonArray fragments;
    for (const SOBFFragment* fragment : section.fragments) {
        QJsonArray records;
        for (SOBFInsn* insn : fragment->insns)
            records.append(describeRecord(*insn));
        fragments.append(records);
    }
    QJsonObject object{{"name", json(section.name)},
                       {"size", section.getSize()},
                       {"flags", section.flags},
                       {"fragments", fragments}};
    if (section.lowest != -1) {
        object["lowest"] = section.lowest;
        object["highest"] = section.highest;
    }
    return object;
}

QJsonObject describeSymbol(const SOBFSymbol& symbol) {
    QJsonObject object{{"name", json(symbol.name)}};
    if (!symbol.value)
        return object;
    object["expression"] = json(symbol.value->printString());
    const SOBFExprValue value = symbol.value->evaluate();
    if (value.failed)
        object["failure"] = json(value.message);
    else
        object["value"] = static_cast<qint64>(value.value);
    if (value.section)
        object["section"] = json(value.section->name);
    return object;
}

} // namespace

void listObject(SOBFModule& module, std::ostream& out) {
    if (module.isProtected)
        out << "Protected\n";
    if (module.linkOrderPriority != SOBFModule::usualPriority)
        out << "Link order priority: " << module.linkOrderPriority << '\n';
    for (const auto& [key, value] : module.attributes)
        out << "Attribute " << printable(key) << ": " << printable(value) << '\n';
    for (const auto& [library, present] : module.libraries)
        out << "Library " << printable(library) << '\n';
    for (const auto& [key, symbol] : module.publics)
        out << "Public " << printable(key) << ": " << printable(valueOf(*symbol)) << '\n';
    for (SOBFSection* section : module.sections)
        listSection(*section, out);
}

QJsonObject describeObject(SOBFModule& module) {
    QJsonObject attributes;
    for (const auto& [key, value] : module.attributes)
        attributes[json(key)] = json(value);
    QJsonArray libraries;
    for (const auto& [library, present] : module.libraries)
        libraries.append(json(library));
    QJsonArray publics;
    for (const auto& [key, symbol] : module.publics)
        publics.append(describeSymbol(*symbol));
    QJsonArray sections;
    for (SOBFSection* section : module.sections)
        sections.append(describeSection(*section));
    return {{"attributes", attributes},
            {"libraries", libraries},
            {"publics", publics},
            {"sections", sections},
            {"protected", module.isProtected},
            {"linkOrderPriority", module.linkOrderPriority}};
}
