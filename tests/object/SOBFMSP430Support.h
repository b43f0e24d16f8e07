#pragma once

#include "object/SOBFExpr.h"
#include "object/SOBFMSP430Insn.h"
#include "object/SOBFSymbol.h"

#include <cstdio>
#include <string>

/// A pool of its own for each test, and a processor without the extension before and after it.
class MSP430Test : public ::testing::Test {
protected:
    MSP430Test() { g_msp430x = false; }
    ~MSP430Test() override { g_msp430x = false; }

    static SOBFExpr* number(int64_t value) { return new SOBFConstExpr(value); }

    static SOBFExpr* symbol(const char* name, SOBFExpr* value = nullptr) {
        auto* made = new SOBFSymbol(HString::intern(name, HString::AsIs));
        made->value = value;
        return new SOBFSymbolExpr(made);
    }

    static SOBFMSP430Insn* insn(unsigned opcode, SOBFExpr* source = nullptr, SOBFExpr* destination = nullptr,
                                bool optimise = false, int pc = 0x4400) {
        auto* made = new SOBFMSP430Insn(opcode, source, destination, optimise);
        made->setPC(pc);
        return made;
    }

    /// The record's bytes in hexadecimal, as they stand.
    static std::string bytesOf(const SOBFInsn& record) {
        std::string text;
        char digits[3];
        for (int i = 0; i < record.byteCount; ++i) {
            std::snprintf(digits, sizeof digits, "%02x", record.bytes[i]);
            text += digits;
        }
        return text;
    }
    static std::string encoded(SOBFMSP430Insn* record) {
        record->encode();
        return bytesOf(*record);
    }

private:
    Pool m_pool;
    CurrentPool m_current{&m_pool};
};
