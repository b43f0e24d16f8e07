#include "object/SOBFReader.h"

#include "foundation/HByteStream.h"
#include "foundation/HException.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"

#include <algorithm>
#include <ostream>

namespace {

// A file as the writer makes it holds every text and every operand once. Other writers may share them, but
// not without end.
constexpr size_t sharing = 8;
constexpr size_t usualBudget = 65536;

constexpr const char* operandType = "bad object file: operand type error ";

[[noreturn]] void failOperand(const char* what) { throw HException(std::string(operandType) + what); }

} // namespace

SOBFReader::SOBFReader(const HByteStream* stream, bool stickyLocus)
    : m_start(stream->start()),
      m_position(stream->start()),
      m_end(stream->end()),
      m_stickyLocus(stickyLocus),
      m_textBudget(stream->size() * sharing + usualBudget),
      m_nodeBudget(stream->size() * sharing + usualBudget) {}

SOBFReader::~SOBFReader() = default;

SOBFModule* SOBFReader::run(bool quick, std::ostream* trace) {
    m_quick = quick;
    try {
        runProgram(trace);
    } catch (...) {
        if (m_savedPool)
            Pool::setCurrentPool(m_savedPool);
        release(m_module);
        m_module = nullptr;
        throw;
    }
    if (m_savedPool)
        Pool::setCurrentPool(m_savedPool);
    return m_module;
}

std::optional<std::string_view> SOBFReader::readAttribute(std::string_view key) {
    m_wantedKey = key;
    release(run(true, nullptr));
    return m_wantedText;
}

void SOBFReader::runProgram(std::ostream* trace) {
    while (m_position != m_end) {
        const auto tag = static_cast<uint8_t>(*m_position++);
        if (trace)
            traceTag(*trace, tag);
        runTag(tag);
        if (trace)
            traceStack(*trace);
    }
    if (m_depth != 0)
        throw HException("bad object file: stack not empty at EOF");
    if (m_module)
        nameMarkers();
}

void SOBFReader::runTag(uint8_t tag) {
    if (tag >= TAG_COUNT || !SOBFTagTable::rows[tag].run)
        throw HException("bad object file: unknown tag");
    const SOBFTagRow& row = SOBFTagTable::rows[tag];
    if (row.needs == SOBFNeeds::Section && !m_section)
        throw HException("bad object file: no defined section");
    if (row.needs == SOBFNeeds::Module && !m_module)
        throw HException("bad object file: no defined module");
    (this->*row.run)(tag);
}

void SOBFReader::nameMarkers() const {
    for (SOBFSymbol* symbol : m_module->symbols) {
        const auto* expr = dynamic_cast<const SOBFMarkerExpr*>(symbol->value);
        if (!expr)
            continue;
        expr->marker->name = symbol->getName();
        expr->marker->symbol = symbol;
    }
}

void SOBFReader::release(SOBFModule* module) {
    if (module)
        delete module->pool;
}

void SOBFReader::traceTag(std::ostream& trace, uint8_t tag) const {
    trace << m_position - m_start << '\t';
    if (tag >= TAG_COUNT || !SOBFTagTable::rows[tag].run) {
        trace << "tag=" << int{tag} << '\n';
        return;
    }
    trace << SOBFTagTable::rows[tag].name;
    if (tag < TAG_LITX)
        trace << ' ' << int{tag};
    else if ((tag == TAG_SETPC || tag == TAG_ADJUST_STACK) && m_depth > 0)
        if (const int64_t* number = numberIn(m_stack[m_depth - 1]))
            trace << ' ' << static_cast<int>(*number);
}

void SOBFReader::traceStack(std::ostream& trace) const {
    trace << '\t';
    for (const Slot* slot = m_stack; slot != m_stack + m_depth; ++slot) {
        const SOBFObject* object = slot->kind == Slot::Object ? slot->object : nullptr;
        if (const int64_t* number = numberIn(*slot))
            trace << "n:" << *number << ' ';
        else if (isText(*slot))
            trace << "str:" << textIn(*slot) << ' ';
        else if (dynamic_cast<const SOBFSymbol*>(object))
            trace << "sym:" << object->getName()->view() << ' ';
        else if (dynamic_cast<const SOBFFunctionType*>(object))
            trace << "fcn ";
        else if (dynamic_cast<const SOBFType*>(object))
            trace << "typ ";
        else if (dynamic_cast<const SOBFScope*>(object))
            trace << "scp ";
        else if (dynamic_cast<const SOBFMarker*>(object))
            trace << "mkr ";
        else
            trace << "unk ";
    }
    trace << '\n';
}

void SOBFReader::failStack(const char* failure) { throw HException(failure); }

HString* SOBFReader::intern(std::string_view text) {
    return HString::intern(text.data(), static_cast<int>(text.size()), HString::AsIs);
}

SOBFObject* SOBFReader::materialize(Slot& slot) {
    if (slot.kind == Slot::Number)
        slot = {Slot::Object, {.object = new SOBFConstExpr(slot.number)}};
    else if (slot.kind == Slot::Text)
        slot = {Slot::Object,
                {.object = new SOBFString(intern(textIn(slot)), static_cast<int>(slot.text.size))}};
    return slot.object;
}

/// The number in a slot, in the one form or the other; null if there is none.
const int64_t* SOBFReader::numberIn(const Slot& slot) {
    if (slot.kind == Slot::Number)
        return &slot.number;
    const auto* constant =
        slot.kind == Slot::Object ? dynamic_cast<const SOBFConstExpr*>(slot.object) : nullptr;
    return constant ? &constant->value : nullptr;
}

bool SOBFReader::isText(const Slot& slot) {
    return slot.kind == Slot::Text ||
           (slot.kind == Slot::Object && dynamic_cast<const SOBFString*>(slot.object));
}

/// The text in a slot that holds one, in the one form or the other.
std::string_view SOBFReader::textIn(const Slot& slot) {
    return slot.kind == Slot::Text ? std::string_view(slot.text.data, slot.text.size)
                                   : static_cast<const SOBFString*>(slot.object)->text->view();
}

SOBFObject* SOBFReader::popObject() { return materialize(popSlot()); }

int64_t SOBFReader::popConst() {
    if (const int64_t* number = numberIn(popSlot()))
        return *number;
    failOperand("(constant expression expected)");
}

uint32_t SOBFReader::popConst(uint32_t least, uint32_t most) {
    const auto value = static_cast<uint64_t>(popConst());
    if (value < least || value > most)
        throw HException("bad object file: operand value error (constant out of range)");
    return static_cast<uint32_t>(value);
}

template<class T>
T* SOBFReader::popAs(const char* failure) {
    auto* object = dynamic_cast<T*>(popObject());
    if (!object)
        failOperand(failure);
    return object;
}

/// An operand that becomes part of another, and is counted with that.
SOBFExpr* SOBFReader::popPart(bool nullAllowed) {
    SOBFObject* object = popObject();
    auto* expr = dynamic_cast<SOBFExpr*>(object);
    if (!expr && (object || !nullAllowed))
        failOperand("(expression expected)");
    return expr;
}

SOBFExpr* SOBFReader::popExpr(bool nullAllowed) {
    SOBFExpr* expr = popPart(nullAllowed);
    // Every walk over an operand takes as long as the operand is, and one that is made of itself is long.
    if (expr && expr->nodes > 1)
        spend(m_nodeBudget, expr->nodes, "bad object file: expressions too large");
    return expr;
}

SOBFScope* SOBFReader::popScope(bool nullAllowed) {
    SOBFObject* object = popObject();
    auto* scope = dynamic_cast<SOBFScope*>(object);
    if (!scope && (object || !nullAllowed))
        failOperand("(scope expected)");
    return scope;
}

/// The bytes of a text; none, and a null pointer to them, for an absent one.
std::string_view SOBFReader::popBytes(bool nullAllowed) {
    const Slot& slot = popSlot();
    if (isText(slot))
        return textIn(slot);
    if (!nullAllowed || !slot.isNull())
        failOperand("(string expected)");
    return {};
}

HString* SOBFReader::popText() { return intern(popBytes()); }

SOBFString* SOBFReader::popString() { return popAs<SOBFString>("(string expected)"); }

SOBFSection* SOBFReader::popSection() { return popAs<SOBFSection>("(section expected)"); }

SOBFType* SOBFReader::popType() { return popAs<SOBFType>("(type expected)"); }

SOBFSymbol* SOBFReader::popSymbol() {
    auto* symbol = dynamic_cast<SOBFSymbol*>(popObject());
    if (!symbol)
        throw HException("operand type error: symbol expected");
    return symbol;
}

SOBFObject* SOBFReader::popAny() {
    SOBFObject* object = popObject();
    if (!object)
        failOperand("(object expected)");
    return object;
}

SOBFFilename* SOBFReader::popFilename() { return popAs<SOBFFilename>("(file expected)"); }

SOBFPtrType* SOBFReader::popPtr() { return popAs<SOBFPtrType>("(pointer expected)"); }

SOBFStrucType* SOBFReader::popStruc() { return popAs<SOBFStrucType>("(structure expected)"); }

SOBFFunctionType* SOBFReader::popFunctionType() {
    return popAs<SOBFFunctionType>("(function type expected)");
}

/// The index of an alias or a marker. What it counts was made by tags of this file, so that there are no more
/// of them than bytes.
uint32_t SOBFReader::popIndex() {
    const auto most = static_cast<size_t>(m_end - m_start);
    return popConst(0, static_cast<uint32_t>(std::min<size_t>(most, UINT32_MAX)));
}

std::string_view SOBFReader::take(size_t bytes) {
    if (bytes > static_cast<size_t>(m_end - m_position))
        throw HException("premature end of SOBF file");
    const std::string_view taken(m_position, bytes);
    m_position += bytes;
    return taken;
}

void SOBFReader::spend(size_t& budget, size_t amount, const char* failure) {
    if (amount > budget)
        throw HException(failure);
    budget -= amount;
}

void SOBFReader::pushText(std::string_view text) {
    spend(m_textBudget, text.size(), "bad object file: texts too large");
    newSlot() = {Slot::Text, {.text = {text.data(), text.size()}}};
}

void SOBFReader::pushType(SOBFType* type) {
    if (type->parts > SOBFType::mostParts)
        throw HException("bad object file: types nested too deep");
    push(type);
}

SOBFInsn* SOBFReader::currentInsn() const {
    if (!m_insn)
        throw HException("bad object file: no instruction defined");
    return m_insn;
}

SOBFMarker* SOBFReader::markerAt(uint32_t index) {
    if (index >= m_markers.size())
        m_markers.resize(index + size_t{1});
    if (!m_markers[index])
        m_markers[index] = new SOBFMarker;
    return m_markers[index];
}

void SOBFReader::append(SOBFInsn* insn) { m_section->addInsn(insn); }

void SOBFReader::place(SOBFInsn* insn) {
    insn->setPC(m_pc);
    insn->locus = m_locus;
    if (!m_stickyLocus)
        m_locus = nullptr;
    append(insn);
}

void SOBFReader::placeCurrent(SOBFInsn* insn) {
    m_insn = insn;
    place(insn);
}
