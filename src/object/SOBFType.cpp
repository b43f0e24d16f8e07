#include "object/SOBFType.h"

#include "object/SOBFExpr.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFWriter.h"

/// A name in the making. Types may refer to themselves, and to others many times over, so the text has an
/// end.
class SOBFTypeName {
public:
    void append(std::string_view more) {
        if (m_text.size() + more.size() > mostLength)
            m_cut = true;
        if (!m_cut)
            m_text += more;
    }
    void append(const SOBFType* type) {
        if (!type)
            return append("?");
        if (type->name)
            return append(type->name->view());
        m_cut = m_cut || m_depth == mostDepth;
        if (m_cut)
            return;
        ++m_depth;
        type->appendName(*this);
        --m_depth;
    }
    void append(std::string_view before, int number, std::string_view behind) {
        append(before);
        append(std::to_string(number));
        append(behind);
    }
    /// Whether more would be lost.
    bool isCut() const { return m_cut; }
    std::string text() const { return m_cut ? m_text + "..." : m_text; }

private:
    static constexpr size_t mostLength = 1000;
    static constexpr int mostDepth = 50;

    std::string m_text;
    int m_depth = 0;
    bool m_cut = false;
};

namespace {

void appendTypes(SOBFTypeName& text, const PoolVector<SOBFSymbol*>& symbols) {
    text.append("(");
    const char* separator = "";
    for (const SOBFSymbol* symbol : symbols) {
        if (text.isCut())
            return;
        text.append(separator);
        text.append(symbol->type);
        separator = ", ";
    }
    text.append(")");
}

void externalizeParameters(SOBFWriter& writer, const PoolVector<SOBFSymbol*>& symbols, int tag) {
    for (SOBFSymbol* symbol : symbols) {
        symbol->externalize(writer);
        writer.pushAlias(symbol);
        writer.writeTag(tag);
    }
}

} // namespace

HString* SOBFType::getName() const {
    if (name)
        return name;
    SOBFTypeName text;
    text.append(this);
    return HString::intern(text.text(), HString::AsIs);
}

void SOBFType::writeAlias(SOBFWriter& writer) { writer.defineAlias(this); }

void SOBFType::writeSetName(SOBFWriter& writer) const {
    if (!name)
        return;
    writer.externalizeString(name);
    writer.writeTag(TAG_SETNAME);
}

void SOBFPlainType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    writer.externalizeLiteral(size);
    writer.writeTag(tag());
    writeSetName(writer);
    writeAlias(writer);
}

void SOBFSimpleType::appendName(SOBFTypeName& text) const {
    text.append(simpleKind == TAG_INT ? "INT(" : "UNSIGNED(", size, ")");
}

void SOBFFloatType::appendName(SOBFTypeName& text) const { text.append("FLOAT(", size, ")"); }

void SOBFUntypedType::appendName(SOBFTypeName& text) const { text.append("VOID"); }

void SOBFPtrType::appendName(SOBFTypeName& text) const {
    text.append(target);
    text.append("*");
}

void SOBFPtrType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    writer.externalizeLiteral(size);
    writer.writeTag(TAG_FORWARDTYPE);
    writeSetName(writer);
    writeAlias(writer);
    externalizeRest(writer);
}

void SOBFPtrType::externalizeRest(SOBFWriter& writer) {
    if (!target)
        return;
    const SOBFWriter::Level level(writer);
    if (!writer.mayGoOn(SOBFWriter::typeSlots) || !writer.mayMake(target))
        return writer.defer(this);
    target->externalize(writer);
    writer.pushAlias(this);
    writer.pushAlias(target);
    writer.writeTag(TAG_PTR);
    writer.writeTag(representation);
}

SOBFQualifiedType::SOBFQualifiedType(SOBFType* b, int space)
    : SOBFType(b->size), base(b), memorySpace(space) {
    name = b->getName();
    addParts(b);
}

void SOBFQualifiedType::appendName(SOBFTypeName& text) const { text.append(base); }

void SOBFQualifiedType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    base->externalize(writer);
    writer.pushAlias(base);
    writer.writeTag(memorySpace);
    writeSetName(writer);
    writeAlias(writer);
}

SOBFArrayType::SOBFArrayType(SOBFType* e, int c)
    : SOBFType(static_cast<int>(int64_t{e->size} * c)), element(e), count(c) {
    addParts(e);
}

void SOBFArrayType::appendName(SOBFTypeName& text) const {
    text.append(element);
    text.append("[", count, "]");
}

void SOBFArrayType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    element->externalize(writer);
    writer.pushAlias(element);
    writer.externalizeLiteral(count);
    writer.writeTag(TAG_ARRAY);
    writeSetName(writer);
    writeAlias(writer);
}

SOBFCountedArrayType::SOBFCountedArrayType(SOBFType* c, SOBFType* e, int n)
    : SOBFType(e->size), counter(c), count(n), element(e) {
    addParts(c);
    addParts(e);
}

void SOBFCountedArrayType::appendName(SOBFTypeName& text) const {
    text.append(counter);
    text.append("::[");
    text.append(element);
    text.append("]");
}

void SOBFCountedArrayType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    counter->externalize(writer);
    element->externalize(writer);
    writer.pushAlias(counter);
    writer.pushAlias(element);
    writer.externalizeLiteral(count);
    writer.writeTag(TAG_COUNTED_ARRAY);
    writeSetName(writer);
    writeAlias(writer);
}

void SOBFField::externalize(SOBFWriter& writer) {
    type->externalize(writer);
    writer.externalizeString(name);
    externalizeValues(writer);
    writer.pushAlias(type);
    writer.writeTag(tag());
}

unsigned SOBFStaticField::slots() const { return value->slots; }

void SOBFStaticField::externalizeValues(SOBFWriter& writer) { value->externalize(writer); }

void SOBFDynamicField::externalizeValues(SOBFWriter& writer) {
    writer.externalizeLiteral(value1);
    writer.externalizeLiteral(value2);
}

SOBFField* SOBFStrucType::findField(HString* wanted) const {
    for (SOBFField* field : fields)
        if (field->name == wanted)
            return field;
    return nullptr;
}

void SOBFStrucType::appendName(SOBFTypeName& text) const {
    text.append("{ ");
    const char* separator = "";
    for (const SOBFField* field : fields) {
        if (text.isCut())
            return;
        text.append(separator);
        text.append(field->type);
        text.append(" ");
        text.append(field->name ? field->name->view() : std::string_view());
        separator = "; ";
    }
    text.append(" }");
}

void SOBFStrucType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    m_nextField = 0;
    writer.externalizeLiteral(size);
    writer.writeTag(TAG_STRUC);
    writer.writeTag(TAG_DUP);
    writeAlias(writer);
    writeSetName(writer);
    externalizeFields(writer);
    writer.writeTag(TAG_DROP);
}

void SOBFStrucType::externalizeRest(SOBFWriter& writer) {
    writer.pushAlias(this);
    externalizeFields(writer);
    writer.writeTag(TAG_DROP);
}

void SOBFStrucType::externalizeFields(SOBFWriter& writer) {
    const SOBFWriter::Level level(writer);
    for (; m_nextField < fields.size(); ++m_nextField) {
        SOBFField* field = fields[m_nextField];
        if (!writer.mayGoOn(field->slots() + SOBFWriter::typeSlots) || !writer.mayMake(field->type))
            return writer.defer(this);
        field->externalize(writer);
    }
}

void SOBFFunctionType::appendName(SOBFTypeName& text) const {
    appendTypes(text, inputs);
    if (outputs.empty())
        return;
    text.append("->");
    appendTypes(text, outputs);
}

void SOBFFunctionType::externalizeHead(SOBFWriter& writer) {
    for (const int word : {word0, word1, word2})
        writer.externalizeLiteral(word);
    writer.writeTag(TAG_FUNCTION);
}

void SOBFFunctionType::externalize(SOBFWriter& writer) {
    if (!writer.begin(this))
        return;
    externalizeHead(writer);
    externalizeParameters(writer, inputs, TAG_PARAMIN);
    externalizeParameters(writer, outputs, TAG_PARAMOUT);
    writeSetName(writer);
    writeAlias(writer);
}

void SOBFMemberFunctionType::appendName(SOBFTypeName& text) const {
    text.append(classType);
    text.append("::");
    SOBFFunctionType::appendName(text);
}

void SOBFMemberFunctionType::externalizeHead(SOBFWriter& writer) {
    classType->externalize(writer);
    writer.pushAlias(classType);
    writer.writeTag(TAG_MEMBER);
}
