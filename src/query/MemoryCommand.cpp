#include "query/MemoryCommand.h"

#include "build/LinkPlacement.h"
#include "build/StandardBuildSystem.h"
#include "foundation/Text.h"
#include "memorymap/MemoryMap.h"
#include "memorymap/ParserException.h"
#include "memorymap/SimpleExpressionParser.h"
#include "query/SilentBuilder.h"

#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>
#include <cstring>

namespace {

constexpr int barWidth = 32;

/// Keeps what a link would say.
class Remarks : public SilentBuilder {
public:
    QStringList texts;
    void error(const QString& text) override { texts.append("error: " + text); }
    void message(const QString& text) override { texts.append(text); }
};

AddressRange rangeOf(const MemoryMapElement& element) {
    return {element.address(), uint64_t{element.address()} + element.size()};
}

uint64_t sizeOf(const AddressRange& range) { return range.end - range.start; }

/// A segment with the sections that both files put into it.
struct Segment {
    const MemoryMapElement* element;
    bool isFromPlacement;
    std::vector<std::pair<LinkPlacement::Section, bool>> sections; ///< and whether the placement names it
    std::vector<AddressRange> unused;
};

/// The segments of both passes of a link in the order of addresses, each once.
std::vector<Segment> mergedSegments(const LinkPlacement& placement) {
    std::vector<Segment> merged;
    for (const LinkPlacement::Segment& segment : placement.segments()) {
        auto known = std::find_if(merged.begin(), merged.end(),
                                  [&](const Segment& each) { return each.element == segment.element; });
        if (known == merged.end())
            known = merged.insert(known, {segment.element, segment.isFromPlacement, {}, {}});
        for (const LinkPlacement::Section& section : segment.sections)
            known->sections.emplace_back(section, segment.isFromPlacement);
    }
    for (Segment& segment : merged) {
        std::vector<AddressRange> used;
        for (const auto& [section, fromPlacement] : segment.sections) {
            if (section.isFixed)
                used.push_back(rangeOf(*section.element));
        }
        segment.unused = LinkPlacement::findUnusedRanges(std::move(used), rangeOf(*segment.element));
    }
    std::stable_sort(merged.begin(), merged.end(), [](const Segment& a, const Segment& b) {
        return a.element->address() < b.element->address();
    });
    return merged;
}

// What makes no sense in a file, and is passed over in silence by a build.

void appendFault(const MemoryMapElement& element, const char* attribute, QStringList& remarks) {
    QString fault;
    try {
        bool isNumber = false;
        simpleExpressionParser.getUInteger(element.attribute(attribute), isNumber);
        if (!isNumber)
            fault = "not a number";
    } catch (const ParserException& failure) {
        fault = toText(failure.getCause());
    }
    if (!fault.isEmpty())
        remarks.append(QString(element.elementTypeAsString()) + " " + element.name() + ": " + attribute +
                       " \"" + element.attributeText(attribute) + "\": " + fault);
}

void appendFaults(const MemoryMap& map, QStringList& remarks) {
    QList<MemoryMapElement*> elements = map.getSegments(false);
    for (MemoryMapElement* segment : map.getSegments(false))
        elements += MemoryMap::getSections(segment, true);
    for (const MemoryMapElement* element : elements) {
        if (element->hasAddress())
            appendFault(*element, "start", remarks);
        if (element->hasSize())
            appendFault(*element, "size", remarks);
    }
    for (auto* child = map.getRoot()->firstChildElement(); child; child = child->nextSiblingElement()) {
        if (std::strcmp(child->tagName(), "Import") == 0)
            remarks.append("can't import \"" + child->attributeText("filename") + "\" into " +
                           map.fileName());
    }
}

// For people.

QString hexadecimal(uint64_t address) { return "0x" + QString::number(address, 16).rightJustified(4, u'0'); }

/// As "0x0200-0x09ff  2048".
QString textOf(const AddressRange& range) {
    const uint64_t last = sizeOf(range) ? range.end - 1 : range.end;
    const QString ends = hexadecimal(range.start) + "-" + hexadecimal(last);
    return ends.leftJustified(15) + " " + QString::number(sizeOf(range)).rightJustified(7);
}

/// A character for each piece of a segment: "#" where a section has a fixed place, "." where all is free.
QString barOf(const Segment& segment) {
    const AddressRange memory = rangeOf(*segment.element);
    QString bar;
    for (unsigned cell = 0; cell < barWidth; ++cell) {
        const uint64_t begin = memory.start + sizeOf(memory) * cell / barWidth;
        const uint64_t end = std::max(begin + 1, memory.start + sizeOf(memory) * (cell + 1) / barWidth);
        const bool isFree =
            std::any_of(segment.unused.begin(), segment.unused.end(),
                        [&](const AddressRange& range) { return range.start <= begin && end <= range.end; });
        bar += sizeOf(memory) == 0 ? u' ' : isFree ? u'.' : u'#';
    }
    return bar;
}

void listSegment(const Segment& segment, qsizetype nameWidth, QString& text) {
    const QString indent = "  " + QString(nameWidth + 2, u' ');
    text += "  " + segment.element->name().leftJustified(nameWidth + 2) + textOf(rangeOf(*segment.element)) +
            "  [" + barOf(segment) + "]\n";
    struct Line {
        AddressRange range;
        QString what;
    };
    std::vector<Line> lines;
    for (const AddressRange& range : segment.unused)
        lines.push_back({range, "free"});
    QStringList floating;
    for (const auto& [section, fromPlacement] : segment.sections) {
        const QString name = section.element->name() + (section.element->load() ? " (load)" : "");
        if (section.isFixed)
            lines.push_back({rangeOf(*section.element), name});
        else
            floating.append(name);
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line& a, const Line& b) { return a.range.start < b.range.start; });
    const AddressRange memory = rangeOf(*segment.element);
    for (const Line& line : lines) {
        const bool isInside = line.range.start >= memory.start && line.range.end <= memory.end;
        text += indent + textOf(line.range) + "  " + line.what + (isInside ? "" : ", outside") + "\n";
    }
    if (!floating.isEmpty())
        text += indent + "placed by the linker: " + floating.join(", ") + "\n";
}

// For programs.

QJsonObject jsonOf(const AddressRange& range) {
    return {{"address", static_cast<qint64>(range.start)}, {"size", static_cast<qint64>(sizeOf(range))}};
}

const char* sourceName(bool isPlacement) { return isPlacement ? "placement" : "map"; }

QJsonObject jsonOf(const Segment& segment) {
    QJsonArray sections;
    for (const auto& [section, fromPlacement] : segment.sections) {
        QJsonObject object = section.isFixed ? jsonOf(rangeOf(*section.element)) : QJsonObject();
        object["name"] = section.element->name();
        object["load"] = section.element->load();
        object["from"] = sourceName(fromPlacement);
        sections.append(object);
    }
    QJsonArray unused;
    for (const AddressRange& range : segment.unused)
        unused.append(jsonOf(range));
    QJsonObject object = jsonOf(rangeOf(*segment.element));
    object["name"] = segment.element->name();
    object["from"] = sourceName(segment.isFromPlacement);
    object["sections"] = sections;
    object["free"] = unused;
    return object;
}

void describe(StandardBuildSystem& engine, ProjectElement* project, const QString& configuration,
              QString& text, QJsonArray& array) {
    LinkPlacement placement;
    Remarks remarks;
    placement.load(engine, project, configuration, remarks);
    for (const MemoryMap* map : {placement.placement(), placement.memoryMap()}) {
        if (map)
            appendFaults(*map, remarks.texts);
    }
    text += project->getName() + " in " + configuration + "\n";
    if (!placement.placementPath().isEmpty())
        text += "  section placement  " + placement.placementPath() + "\n";
    if (!placement.memoryMapPath().isEmpty())
        text += "  memory map         " + placement.memoryMapPath() + "\n";
    const std::vector<Segment> segments = mergedSegments(placement);
    qsizetype nameWidth = 0;
    for (const Segment& segment : segments)
        nameWidth = std::max(nameWidth, segment.element->name().size());
    QJsonArray described;
    for (const Segment& segment : segments) {
        listSegment(segment, nameWidth, text);
        described.append(jsonOf(segment));
    }
    if (segments.empty())
        text += "  no segments\n";
    for (const QString& remark : remarks.texts)
        text += "  " + remark + "\n";
    array.append(QJsonObject{{"project", project->getName()},
                             {"placement", placement.placementPath()},
                             {"map", placement.memoryMapPath()},
                             {"segments", described},
                             {"messages", QJsonArray::fromStringList(remarks.texts)}});
}

} // namespace

Answer SolutionCommands::memory(StandardBuildSystem& engine, ProjectElement* node,
                                const QString& configuration) {
    const QStringList offered = projectSystem->configurations(node, ProjectSystem::IncludeVisible);
    if (configuration != "Common" && !offered.contains(configuration))
        throw QueryError{"there is no configuration '" + configuration + "', but: " + offered.join(", ")};
    QString text;
    QJsonArray array;
    for (ProjectElement* each = node; each; each = each->nextInTree(node)) {
        if (engine.buildAction(each, configuration) == StandardBuildSystem::Link)
            describe(engine, each, configuration, text, array);
    }
    if (array.isEmpty())
        throw QueryError{"'" + node->getName() + "' links nothing"};
    return {text, array};
}
