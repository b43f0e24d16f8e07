#include "foundation/FileAccess.h"
#include "foundation/Text.h"
#include "object/SOBFMSP430Support.h"

#include <QStringList>

// The rows of data/msp430.txt come from LLVM's assembler; data/makeTable.py made them, and says what the
// columns are. The same script with --check, a test of its own, holds the rows against LLVM again.

class MSP430Table : public MSP430Test {
protected:
    struct Row {
        std::string text;
        SOBFMSP430Insn* record;
        bool optimised;
        std::string printed;
        std::string bytes;
    };

    static std::vector<Row> rows() {
        const FileBytes contents =
            files().read(QStringLiteral(OSTMAKE_SOURCE_DIR "/tests/object/data/msp430.txt"));
        std::vector<Row> rows;
        for (const QString& line : toText(contents.view()).split('\n', Qt::SkipEmptyParts)) {
            const QStringList fields = line.split(QStringLiteral(" | "));
            if (fields.size() != 7)
                continue;
            g_msp430x = fields[1].contains('x');
            const bool optimised = fields[1].contains('c');
            auto* record =
                insn(fields[2].toUInt(nullptr, 16), operand(fields[3]), operand(fields[4]), optimised);
            QString printed = fields[5];
            rows.push_back({fields[0].toStdString(), record, optimised,
                            printed.replace(QStringLiteral("\\t"), QStringLiteral("\t")).toStdString(),
                            fields[6].toStdString()});
        }
        return rows;
    }

private:
    static SOBFExpr* operand(const QString& field) {
        return field == "-" ? nullptr : number(field.toLongLong());
    }
};

TEST_F(MSP430Table, EncodesToTheBytesOfLlvm) {
    const std::vector<Row> table = rows();
    EXPECT_GT(table.size(), 1300u);
    for (const Row& row : table) {
        EXPECT_EQ(encoded(row.record), row.bytes) << row.text;
        EXPECT_EQ(row.record->length() * 2, static_cast<int>(row.bytes.size())) << row.text;
    }
}

TEST_F(MSP430Table, PrintsTheTextThatLlvmReadsAsTheSameBytes) {
    for (const Row& row : rows())
        EXPECT_EQ(row.record->printString(), row.printed) << row.text;
}
