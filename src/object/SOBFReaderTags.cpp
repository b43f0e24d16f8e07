// What each tag does. Operands are popped from the top of the stack down.

#include "foundation/HException.h"
#include "object/SOBFModule.h"
#include "object/SOBFPseudoInsn.h"
#include "object/SOBFReader.h"
#include "object/SOBFSection.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFType.h"

void SOBFReader::runLiteral(uint8_t tag) { pushNumber(tag); }

void SOBFReader::runLongLiteral(uint8_t) {
    const auto count = static_cast<uint8_t>(take(1).front());
    uint64_t value = 0;
    for (const char byte : take(count))
        value = value << 8 | static_cast<uint8_t>(byte);
    pushNumber(static_cast<int64_t>(value));
}

void SOBFReader::runNull(uint8_t) { push(nullptr); }

void SOBFReader::runNullNull(uint8_t) {
    push(nullptr);
    push(nullptr);
}

void SOBFReader::runDup(uint8_t) {
    Slot& slot = popSlot();
    SOBFObject* object = materialize(slot);
    push(object);
    push(object);
}

void SOBFReader::runDrop(uint8_t) { popSlot(); }

void SOBFReader::runBinary(uint8_t tag) {
    SOBFExpr* right = popPart(false);
    SOBFExpr* left = popPart(false);
    SOBFExpr* expr = SOBFBinaryExpr::make(tag, left, right);
    if (expr->depth > SOBFExpr::mostDepth || expr->slots > SOBFExpr::mostSlots)
        throw HException("bad object file: expressions nested too deep");
    push(expr);
}

void SOBFReader::runRegister(uint8_t) { push(new SOBFRegisterExpr(popInt())); }

// Tables of what was made earlier.

void SOBFReader::runAlias(uint8_t) {
    const auto index = static_cast<uint64_t>(popConst());
    SOBFObject* object = index < m_aliases.size() ? m_aliases[index] : nullptr;
    if (!object)
        throw HException("bad object file: alias not defined");
    push(object);
}

void SOBFReader::runMakeAlias(uint8_t) {
    const uint32_t index = popIndex();
    SOBFObject* object = popObject();
    if (index >= m_aliases.size())
        m_aliases.resize(index + size_t{1});
    if (m_aliases[index])
        throw HException("bad object file: alias defined more than once");
    m_aliases[index] = object;
}

void SOBFReader::runMarkerDef(uint8_t) {
    const uint32_t index = popIndex();
    const std::string_view name = popBytes(true);
    SOBFMarker* marker = markerAt(index);
    if (name.data())
        marker->name = intern(name);
    place(marker);
}

void SOBFReader::runMarkerRef(uint8_t) { push(new SOBFMarkerExpr(markerAt(popIndex()))); }

// Texts.

void SOBFReader::runStringPool(uint8_t) { m_strings = take(popConst(0, 0xFFFFFF)); }

void SOBFReader::runStringToNul(uint8_t) {
    const std::string_view text = m_strings.substr(popConst(0, static_cast<uint32_t>(m_strings.size())));
    pushText(text.substr(0, text.find('\0')));
}

void SOBFReader::runString(uint8_t) {
    const auto most = static_cast<uint32_t>(m_strings.size());
    const uint32_t length = popConst(0, most);
    const uint32_t offset = popConst(0, most);
    if (length > most - offset)
        throw HException("bad object file: operand value error (constant out of range)");
    pushText(m_strings.substr(offset, length));
}

void SOBFReader::runMakeFilename(uint8_t) { push(new SOBFFilename(popText())); }

void SOBFReader::runSetName(uint8_t) {
    HString* name = popText();
    SOBFObject* object = popAny();
    object->name = name;
    push(object);
}

void SOBFReader::runSetType(uint8_t) {
    SOBFType* type = popType();
    popAny()->type = type;
}

// The module and its scopes.

void SOBFReader::runModule(uint8_t) {
    popExpr(true);
    popExpr(true);
    SOBFScope* parent = popScope(true);
    SOBFModule* module = m_module ? new SOBFModule(m_module->pool) : new SOBFModule;
    if (!m_module) {
        m_module = module;
        m_savedPool = Pool::setCurrentPool(module->pool);
    }
    if (parent)
        module->setScope(parent);
    push(module);
}

void SOBFReader::runScope(uint8_t tag) {
    auto* end = dynamic_cast<SOBFMarkerExpr*>(popExpr(true));
    auto* start = dynamic_cast<SOBFMarkerExpr*>(popExpr(true));
    SOBFScope* parent = popScope(true);
    auto* scope = new SOBFScope(tag);
    scope->start = start;
    scope->end = end;
    if (parent)
        scope->setScope(parent);
    push(scope);
}

void SOBFReader::runSetScope(uint8_t) {
    SOBFSymbol* symbol = popSymbol();
    SOBFScope* scope = popScope(false);
    symbol->setScope(scope);
    push(scope);
}

void SOBFReader::runFunctionSymbol(uint8_t) {
    SOBFSymbol* symbol = popSymbol();
    popScope(false)->functionSymbol = symbol;
}

void SOBFReader::runLibrary(uint8_t) { m_module->libraries.set(popText(), true); }

void SOBFReader::runAttribute(uint8_t) {
    const std::string_view value = popBytes();
    const std::string_view key = popBytes();
    if (m_wantedKey.data() && key == m_wantedKey)
        m_wantedText = value;
    else
        m_module->attributes.set(intern(key), intern(value));
}

void SOBFReader::runEndOfInfo(uint8_t) {
    if (m_quick)
        m_position = m_end;
}

void SOBFReader::runProtected(uint8_t) { m_module->isProtected = true; }

void SOBFReader::runLinkOrderPriority(uint8_t) { m_module->linkOrderPriority = popInt(); }

// Symbols.

void SOBFReader::runMakeSymbol(uint8_t) {
    auto* symbol = new SOBFSymbol(popText());
    m_module->symbols.push_back(symbol);
    push(symbol);
}

void SOBFReader::runSymbolValue(uint8_t) { push(new SOBFSymbolExpr(popSymbol())); }

void SOBFReader::runSymbolDef(uint8_t) {
    SOBFExpr* value = popExpr(false);
    SOBFSymbol* symbol = popSymbol();
    symbol->value = value;
    if (!symbol->type)
        symbol->type = value->type;
}

void SOBFReader::runPublic(uint8_t) {
    SOBFSymbol* symbol = popSymbol();
    m_module->publics.set(symbol->getName(), symbol);
}

void SOBFReader::runSymbolLocus(uint8_t tag) {
    const int line = popInt();
    SOBFFilename* file = popFilename();
    SOBFSymbol* symbol = popSymbol();
    symbol->locus = new SOBFLocus(tag, line, file);
    push(symbol);
}

void SOBFReader::runCodelet(uint8_t) {
    const int codelet = popInt();
    SOBFSymbol* symbol = popSymbol();
    symbol->codelet = codelet;
    m_module->specialSymbols.push_back(symbol);
    push(symbol);
}

void SOBFReader::runPatchable(uint8_t) {
    const int value = popInt();
    SOBFSymbol* symbol = popSymbol();
    symbol->patchable = true;
    symbol->patchValue = value;
    m_module->specialSymbols.push_back(symbol);
    push(symbol);
}

void SOBFReader::runPatched(uint8_t) {
    popConst();
    SOBFSymbol* symbol = popSymbol();
    symbol->patched = true;
    push(symbol);
}

// Sections and what is not a record in them.

void SOBFReader::runMakeSection(uint8_t) {
    HString* name = popText();
    auto* section = new SOBFSection(name);
    m_module->sectionsByName.set(name, section);
    m_module->sections.push_back(section);
    push(section);
}

void SOBFReader::runSection(uint8_t) { m_section = popSection(); }

void SOBFReader::runSetFlags(uint8_t) { m_section->flags = popInt(); }

void SOBFReader::runBreak(uint8_t) {
    m_section->newFragment();
    m_afterBreak = true;
}

void SOBFReader::runSetPC(uint8_t) {
    m_pc = popInt();
    if (!m_afterBreak)
        return;
    auto* insn = new SOBFBreakInsn;
    insn->setPC(m_pc);
    append(insn);
    m_afterBreak = false;
}

void SOBFReader::runAdjustStack(uint8_t) { m_stackAdjust = popInt(); }

void SOBFReader::runLocus(uint8_t tag) {
    const int line = popInt();
    auto* locus = new SOBFLocus(tag, line, popFilename());
    m_locus = locus;
    if (m_stickyLocus)
        locus->locus = locus;
    locus->setPC(m_pc);
    append(locus);
}

/// The end of a source line's range is a record too, so that it is still there when the module is written.
void SOBFReader::runResetLocus(uint8_t) {
    m_locus = nullptr;
    if (m_section)
        append(new SOBFResetLocusInsn);
}

// Records.

void SOBFReader::runInsn(uint8_t tag) {
    SOBFInsn* insn = makeInsn();
    insn->hidden = tag == TAG_HIDDEN_INSN;
    insn->stackAdjust = m_stackAdjust;
    placeCurrent(insn);
}

void SOBFReader::runDefBytes(uint8_t) {
    const auto size = static_cast<int>(popConst(1, 4));
    placeCurrent(new SOBFDefBytesInsn(popExpr(false), size));
}

void SOBFReader::runDefAddr(uint8_t) { placeCurrent(new SOBFDefAddrInsn(popExpr(false))); }

void SOBFReader::runFill(uint8_t) {
    const int length = popInt();
    placeCurrent(new SOBFFillInsn(length, popInt()));
}

void SOBFReader::runAlign(uint8_t) { placeCurrent(new SOBFAlignInsn(popInt())); }

void SOBFReader::runOrigin(uint8_t) { placeCurrent(new SOBFOriginInsn(popInt())); }

void SOBFReader::runSpace(uint8_t) { placeCurrent(new SOBFSpaceInsn(popExpr(false))); }

void SOBFReader::runInit(uint8_t) { placeCurrent(new SOBFInitInsn(popText(), m_module)); }

void SOBFReader::runLocalInsn(uint8_t) { placeCurrent(new SOBFLocalInsn(popExpr(false))); }

void SOBFReader::runLinkIf(uint8_t) { placeCurrent(new SOBFLinkIf(popExpr(false))); }

void SOBFReader::runEndLinkIf(uint8_t) { placeCurrent(new SOBFEndLinkIf); }

void SOBFReader::runSetBytes(uint8_t) {
    SOBFInsn* insn = currentInsn();
    const std::string_view bytes = popBytes();
    spend(m_textBudget, bytes.size(), "bad object file: texts too large");
    insn->appendBytes(bytes);
}

void SOBFReader::runInstrumentation(uint8_t) {
    SOBFInsn* insn = currentInsn();
    insn->instrumentation = popInt();
}

void SOBFReader::runExtensionWord(uint8_t) {
    SOBFInsn* insn = currentInsn();
    insn->extensionWord = popInt();
}

// Types.

void SOBFReader::runSimpleType(uint8_t tag) { pushType(new SOBFSimpleType(popInt(), tag)); }

void SOBFReader::runUntyped(uint8_t) { pushType(new SOBFUntypedType(popInt())); }

void SOBFReader::runFloat(uint8_t) { pushType(new SOBFFloatType(popInt())); }

void SOBFReader::runArray(uint8_t) {
    const int count = popInt();
    pushType(new SOBFArrayType(popType(), count));
}

void SOBFReader::runCountedArray(uint8_t) {
    const int count = popInt();
    SOBFType* element = popType();
    pushType(new SOBFCountedArrayType(popType(), element, count));
}

void SOBFReader::runForwardType(uint8_t) { pushType(new SOBFPtrType(popInt())); }

void SOBFReader::runPtr(uint8_t) {
    SOBFType* target = popType();
    m_ptr = popPtr();
    m_ptr->target = target;
}

void SOBFReader::runPtrRepresentation(uint8_t tag) {
    if (!m_ptr)
        throw HException("bad object file: no pointer type defined");
    m_ptr->representation = tag;
}

void SOBFReader::runMemorySpace(uint8_t tag) {
    auto* type = new SOBFQualifiedType(popType(), tag);
    spend(m_textBudget, type->name->view().size(), "bad object file: texts too large");
    pushType(type);
}

void SOBFReader::runFunction(uint8_t) {
    auto* function = new SOBFFunctionType;
    function->word2 = popInt();
    function->word1 = popInt();
    function->word0 = popInt();
    pushType(function);
}

void SOBFReader::runMember(uint8_t) { pushType(new SOBFMemberFunctionType(popType())); }

void SOBFReader::runParameter(uint8_t tag) {
    SOBFSymbol* symbol = popSymbol();
    SOBFFunctionType* function = popFunctionType();
    (tag == TAG_PARAMIN ? function->inputs : function->outputs).push_back(symbol);
    push(function);
}

void SOBFReader::runOldStruc(uint8_t) { pushType(new SOBFStrucType(0)); }

void SOBFReader::runStruc(uint8_t) { pushType(new SOBFStrucType(popInt())); }

void SOBFReader::runStaticField(uint8_t) {
    SOBFType* type = popType();
    SOBFExpr* value = popExpr(false);
    HString* name = popText();
    SOBFStrucType* structure = popStruc();
    structure->fields.push_back(new SOBFStaticField(name, value, type));
    push(structure);
}

void SOBFReader::runDynamicField(uint8_t) {
    SOBFType* type = popType();
    const int value2 = popInt();
    const int value1 = popInt();
    HString* name = popText();
    SOBFStrucType* structure = popStruc();
    structure->fields.push_back(new SOBFDynamicField(name, value1, value2, type));
    push(structure);
}
