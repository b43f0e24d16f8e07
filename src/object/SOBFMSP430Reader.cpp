#include "object/SOBFMSP430Reader.h"

#include "object/SOBFMSP430Insn.h"

SOBFInsn* SOBFMSP430Reader::makeInsn() {
    const auto opcode = static_cast<uint32_t>(popConst());
    SOBFExpr* destination = popExpr(true);
    SOBFExpr* source = popExpr(true);
    return new SOBFMSP430Insn(opcode, source, destination, false);
}
