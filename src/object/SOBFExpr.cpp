#include "object/SOBFExpr.h"

#include "foundation/HException.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFWriter.h"

#include <algorithm>
#include <array>
#include <climits>

namespace {

/// A symbol may be defined by a long chain of others, or by two that are defined by two more each and so on:
/// the walk recurses, and may take exponential time. Neither goes on for ever.
class Step {
public:
    Step() {
        if (depth++ == 0)
            steps = 0;
        ++steps;
    }
    ~Step() { --depth; }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

    bool tooFar() const { return depth > mostDepth || steps > mostSteps; }

private:
    static constexpr int mostDepth = 2000;
    static constexpr int mostSteps = 10000;
    static int depth;
    static int steps;
};
int Step::depth = 0;
int Step::steps = 0;

/// What becomes of the section to which a value is relative.
enum class SectionRule { Clear, Add, Subtract, Multiply, Left };

struct Operator {
    int tag;
    const char* text;
    int rank; ///< a higher one binds closer
    SectionRule section;
    int64_t (*apply)(int64_t left, int64_t right);
};

int64_t wrap(uint64_t value) { return static_cast<int64_t>(value); }
uint64_t bits(int64_t value) { return static_cast<uint64_t>(value); }
int64_t truth(bool value) { return value ? 1 : 0; }

// The one quotient that 64 bits cannot hold wraps round, as the other operators do.
int64_t quotient(int64_t left, int64_t right) { return right == -1 ? wrap(0 - bits(left)) : left / right; }
int64_t remainder(int64_t left, int64_t right) { return right == -1 ? 0 : left % right; }

constexpr int closest = 11;

const Operator operators[] = {
    {TAG_ADD, " + ", 9, SectionRule::Add, [](int64_t l, int64_t r) { return wrap(bits(l) + bits(r)); }},
    {TAG_SUBTRACT, " - ", 9, SectionRule::Subtract,
     [](int64_t l, int64_t r) { return wrap(bits(l) - bits(r)); }},
    {TAG_MULTIPLY, " * ", 10, SectionRule::Multiply,
     [](int64_t l, int64_t r) { return wrap(bits(l) * bits(r)); }},
    {TAG_DIVIDE, " / ", 10, SectionRule::Clear, quotient},
    {TAG_MODULUS, " % ", 10, SectionRule::Clear, remainder},
    {TAG_AND, " & ", 5, SectionRule::Clear, [](int64_t l, int64_t r) { return l & r; }},
    {TAG_OR, " | ", 3, SectionRule::Clear, [](int64_t l, int64_t r) { return l | r; }},
    {TAG_XOR, " ^ ", 4, SectionRule::Clear, [](int64_t l, int64_t r) { return l ^ r; }},
    {TAG_SHIFT_LEFT, " << ", 8, SectionRule::Clear,
     [](int64_t l, int64_t r) { return wrap(bits(l) << (r & 63)); }},
    {TAG_SHIFT_RIGHT, " >> ", 8, SectionRule::Clear,
     [](int64_t l, int64_t r) { return wrap(bits(l) >> (r & 63)); }},
    {TAG_EQUAL, " == ", 6, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l == r); }},
    {TAG_NOT_EQUAL, " != ", 6, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l != r); }},
    {TAG_GREATER, " > ", 7, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l > r); }},
    {TAG_LESS, " < ", 7, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l < r); }},
    {TAG_GREATER_EQUAL, " >= ", 7, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l >= r); }},
    {TAG_LESS_EQUAL, " <= ", 7, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l <= r); }},
    {TAG_LOGICAL_AND, " && ", 2, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l && r); }},
    {TAG_LOGICAL_OR, " || ", 1, SectionRule::Clear, [](int64_t l, int64_t r) { return truth(l || r); }},
    {TAG_ARITHMETIC_SHIFT_RIGHT, " ASHR ", 8, SectionRule::Clear,
     [](int64_t l, int64_t r) { return l >> (r & 63); }},
    {TAG_PAIR, ", ", closest, SectionRule::Left, [](int64_t l, int64_t) { return l; }},
    {TAG_WORD_ADDRESS, "W:", closest, SectionRule::Left, [](int64_t l, int64_t) { return l >> 1; }},
};
const Operator unknownOperator = {0, " ?? ", 1, SectionRule::Clear, [](int64_t l, int64_t) { return l; }};

const Operator& operatorOf(int tag) {
    static const std::array<const Operator*, TAG_COUNT> byTag = [] {
        std::array<const Operator*, TAG_COUNT> table;
        table.fill(&unknownOperator);
        for (const Operator& row : operators)
            table[static_cast<size_t>(row.tag)] = &row;
        return table;
    }();
    return tag >= 0 && tag < TAG_COUNT ? *byTag[static_cast<size_t>(tag)] : unknownOperator;
}

SOBFSection* sectionOf(SectionRule rule, SOBFSection* left, SOBFSection* right) {
    switch (rule) {
    case SectionRule::Add:
        return left ? left : right;
    case SectionRule::Subtract:
        return left && right ? nullptr : left ? left : right;
    case SectionRule::Multiply:
        return right ? nullptr : left;
    case SectionRule::Left:
        return left;
    case SectionRule::Clear:
        break;
    }
    return nullptr;
}

/// The left value has not failed.
SOBFExprValue combine(int op, SOBFExprValue left, SOBFExprValue right) {
    if (right.failed)
        return right;
    if (right.value == 0 && (op == TAG_DIVIDE || op == TAG_MODULUS))
        return SOBFExprValue::failure(op == TAG_DIVIDE ? "division by zero" : "modulus by zero");
    const Operator& row = operatorOf(op);
    left.value = row.apply(left.value, right.value);
    left.section = sectionOf(row.section, left.section, right.section);
    return left;
}

std::string enclose(char before, const std::string& text, char behind) {
    std::string result(1, before);
    result += text;
    result += behind;
    return result;
}

template<class T>
const T* as(const SOBFExpr* expr) {
    return dynamic_cast<const T*>(expr);
}

} // namespace

SOBFExprValue SOBFExprValue::failure(std::string why) {
    SOBFExprValue result;
    result.failed = true;
    result.message = std::move(why);
    return result;
}

bool SOBFConstExpr::equals(const SOBFExpr* other) const {
    const auto* constant = as<SOBFConstExpr>(other);
    return constant && constant->value == value;
}

SOBFExprValue SOBFConstExpr::evaluate() const {
    SOBFExprValue result;
    result.value = value;
    return result;
}

std::string SOBFConstExpr::printString() const { return std::to_string(value); }

void SOBFConstExpr::externalize(SOBFWriter& writer) { writer.externalizeLiteral(value); }

namespace {
const char* const registerNames[] = {"PC", "SP", "SR",  "R3",  "R4",  "R5",  "R6",  "R7",
                                     "R8", "R9", "R10", "R11", "R12", "R13", "R14", "R15"};
}

const char* regName(int number) { return number >= 0 && number < 16 ? registerNames[number] : "(undefined)"; }

int SOBFRegisterExpr::getRegisterNumber(std::string_view name) {
    const auto found = std::find(std::begin(registerNames), std::end(registerNames), name);
    return found == std::end(registerNames) ? -1 : static_cast<int>(found - std::begin(registerNames));
}

bool SOBFRegisterExpr::equals(const SOBFExpr* other) const {
    const auto* reg = as<SOBFRegisterExpr>(other);
    return reg && reg->number == number;
}

SOBFExprValue SOBFRegisterExpr::evaluate() const { return SOBFExprValue::failure({}); }

std::string SOBFRegisterExpr::printString() const { return getRegisterName(); }

void SOBFRegisterExpr::externalize(SOBFWriter& writer) {
    writer.externalizeLiteral(number);
    writer.writeTag(TAG_REGISTER);
}

SOBFTypeExpr::SOBFTypeExpr(SOBFExpr* e) : inner(e) {
    depth = e->depth + 1;
    slots = e->slots;
    nodes = e->nodes;
}

bool SOBFTypeExpr::equals(const SOBFExpr* other) const {
    const auto* typeExpr = as<SOBFTypeExpr>(other);
    return typeExpr && inner->equals(typeExpr->inner);
}

SOBFBinaryExpr::SOBFBinaryExpr(int o, SOBFExpr* l, SOBFExpr* r) : op(o), left(l), right(r) {
    depth = std::max(l->depth, r->depth) + 1;
    slots = std::max(l->slots, r->slots + 1);
    const uint64_t together = uint64_t{l->nodes} + r->nodes + 1;
    nodes = static_cast<unsigned>(std::min<uint64_t>(together, UINT_MAX));
}

SOBFExpr* SOBFBinaryExpr::addUp(SOBFExpr* base, SOBFExpr* first, SOBFExpr* second) {
    const SOBFExprValue sum = combine(TAG_ADD, first->evaluate(), second->evaluate());
    return new SOBFBinaryExpr(TAG_ADD, base, new SOBFConstExpr(sum.value));
}

SOBFExpr* SOBFBinaryExpr::make(int op, SOBFExpr* left, SOBFExpr* right) {
    if (left->isConstant() && right->isConstant()) {
        const SOBFExprValue value = combine(op, left->evaluate(), right->evaluate());
        if (!value.failed)
            return new SOBFConstExpr(value.value);
    }
    if (op == TAG_ADD) {
        const auto* leftSum = as<SOBFBinaryExpr>(left);
        const auto* rightSum = as<SOBFBinaryExpr>(right);
        if (left->isConstant() && rightSum && rightSum->isAddOfConstant())
            return addUp(rightSum->left, left, rightSum->right);
        if (right->isConstant() && leftSum && leftSum->isAddOfConstant())
            return addUp(leftSum->left, leftSum->right, right);
    }
    return new SOBFBinaryExpr(op, left, right);
}

bool SOBFBinaryExpr::equals(const SOBFExpr* other) const {
    const auto* binary = as<SOBFBinaryExpr>(other);
    return binary && binary->op == op && left->equals(binary->left) && right->equals(binary->right);
}

SOBFExprValue SOBFBinaryExpr::evaluate() const {
    const Step step;
    if (step.tooFar())
        return SOBFExprValue::failure("expression too complex");
    SOBFExprValue leftValue = left->evaluate();
    if (leftValue.failed)
        return leftValue;
    return combine(op, std::move(leftValue), right->evaluate());
}

/// A side of an operator, in parentheses if it binds less closely than the operator does.
std::string SOBFBinaryExpr::operand(const SOBFExpr* side, int leastRank) {
    const auto* binary = as<SOBFBinaryExpr>(side);
    const bool loose = binary && operatorOf(binary->op).rank < leastRank;
    return loose ? enclose('(', side->printString(), ')') : side->printString();
}

std::string SOBFBinaryExpr::printString() const {
    if (op == TAG_PAIR)
        return enclose('[', right->printString() + ", " + left->printString(), ']');
    const Operator& row = operatorOf(op);
    if (op == TAG_WORD_ADDRESS) {
        const bool plain = as<SOBFSymbolExpr>(left) || as<SOBFConstExpr>(left);
        return row.text + (plain ? left->printString() : enclose('(', left->printString(), ')'));
    }
    return operand(left, row.rank) + row.text + operand(right, row.rank + 1);
}

void SOBFBinaryExpr::externalize(SOBFWriter& writer) {
    left->externalize(writer);
    right->externalize(writer);
    writer.writeTag(op);
}

void SOBFBinaryExpr::addReferences(References& references) {
    references.push_back(left);
    references.push_back(right);
}

bool SOBFSymbolExpr::equals(const SOBFExpr* other) const {
    const auto* symbolExpr = as<SOBFSymbolExpr>(other);
    return symbolExpr && symbolExpr->symbol == symbol;
}

SOBFExprValue SOBFSymbolExpr::evaluate() const {
    if (evaluating)
        return SOBFExprValue::failure("circular reference to " + printString());
    if (!symbol->value)
        return SOBFExprValue::failure("undefined symbol " + printString());
    const Step step;
    if (step.tooFar())
        return SOBFExprValue::failure("expression too complex");
    evaluating = true;
    SOBFExprValue result = symbol->value->evaluate();
    evaluating = false;
    result.codelet = symbol->codelet;
    result.patchable = symbol->patchable;
    result.patched = symbol->patched;
    return result;
}

std::string SOBFSymbolExpr::printString() const {
    const HString* symbolName = symbol->getName();
    return std::string(symbolName ? symbolName->view() : std::string_view());
}

void SOBFSymbolExpr::externalize(SOBFWriter& writer) {
    symbol->externalize(writer);
    writer.pushAlias(symbol);
    writer.writeTag(TAG_SYMBOLVAL);
}

void SOBFSymbolExpr::addReferences(References& references) { references.push_back(symbol); }

bool SOBFMarkerExpr::equals(const SOBFExpr* other) const {
    const auto* markerExpr = as<SOBFMarkerExpr>(other);
    return markerExpr && markerExpr->marker == marker;
}

SOBFExprValue SOBFMarkerExpr::evaluate() const {
    if (marker->pc == -1) {
        const HString* ownName = getName();
        return SOBFExprValue::failure("forward reference to label" +
                                      (ownName ? " " + std::string(ownName->view()) : std::string()));
    }
    SOBFExprValue result;
    result.value = marker->pc;
    result.section = marker->fragment ? marker->fragment->section : nullptr;
    return result;
}

std::string SOBFMarkerExpr::printString() const { return marker->printString(); }

void SOBFMarkerExpr::externalize(SOBFWriter& writer) {
    writer.externalizeLiteral(writer.getIndex(marker));
    writer.writeTag(TAG_MARKERREF);
}

void SOBFMarkerExpr::addReferences(References& references) { references.push_back(marker); }
