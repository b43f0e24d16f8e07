#pragma once

#include "object/SOBFObject.h"

#include <cstdint>
#include <string>

class SOBFMarker;
class SOBFSection;
class SOBFSymbol;
class SOBFWriter;

/// What an expression came to.
struct SOBFExprValue {
    bool failed = false;
    int64_t value = 0;
    int codelet = -1; ///< -1 if there is none
    bool patchable = false;
    bool patched = false;
    std::string message;            ///< why it failed; may be empty even then
    SOBFSection* section = nullptr; ///< that to which the value is relative; null: an absolute value

    static SOBFExprValue failure(std::string why);
};

/// A value that is known when the program is linked. Expressions never change once they are made, and may be
/// shared.
class SOBFExpr : public SOBFObject {
public:
    /// Bounds that the reader keeps, far above what a compiler writes. All walks over expressions recurse,
    /// and what is written must fit the operand stack of whoever reads it.
    static constexpr unsigned mostDepth = 500;
    static constexpr unsigned mostSlots = 80;

    virtual bool isConstant() const { return false; }
    /// Whether `other` is the same expression, part by part.
    virtual bool equals(const SOBFExpr* other) const = 0;
    virtual SOBFExprValue evaluate() const = 0;
    /// The expression as assembly text.
    virtual std::string printString() const = 0;
    virtual void externalize(SOBFWriter& writer) = 0;

    unsigned depth = 1; ///< levels of operators, operands included
    unsigned slots = 1; ///< stack entries that it takes to push it
    unsigned nodes = 1; ///< operators and operands, written out as a tree
};

class SOBFConstExpr : public SOBFExpr {
public:
    explicit SOBFConstExpr(int64_t v) : value(v) {}
    bool isConstant() const override { return true; }
    bool equals(const SOBFExpr* other) const override;
    SOBFExprValue evaluate() const override;
    std::string printString() const override;
    void externalize(SOBFWriter& writer) override;

    int64_t value;

protected:
    void addReferences(References&) override {}
};

/// "PC", "SP", "SR", "R3" to "R15"; "(undefined)" for anything else.
const char* regName(int number);

class SOBFRegisterExpr : public SOBFExpr {
public:
    explicit SOBFRegisterExpr(int n) : number(n) {}
    bool equals(const SOBFExpr* other) const override;
    /// Fails, with an empty message.
    SOBFExprValue evaluate() const override;
    std::string printString() const override;
    void externalize(SOBFWriter& writer) override;

    const char* getRegisterName() const { return regName(number); }
    /// The register of that name, -1 if there is none.
    static int getRegisterNumber(std::string_view name);

    int number;

protected:
    void addReferences(References&) override {}
};

/// An expression in the place of a type; everything is asked of the one inside. No tag makes one.
class SOBFTypeExpr : public SOBFExpr {
public:
    explicit SOBFTypeExpr(SOBFExpr* e);
    bool isConstant() const override { return inner->isConstant(); }
    bool equals(const SOBFExpr* other) const override;
    SOBFExprValue evaluate() const override { return inner->evaluate(); }
    std::string printString() const override { return inner->printString(); }
    void externalize(SOBFWriter& writer) override { inner->externalize(writer); }

    SOBFExpr* inner;

protected:
    void addReferences(References& references) override { references.push_back(inner); }
};

/// Two expressions and the operator between them. All but the constant folding is in one table of operators.
class SOBFBinaryExpr : public SOBFExpr {
public:
    /// The only way to make one. Folds: two constants become one, and constants that are added one after the
    /// other are added up. So the result may be of another class.
    static SOBFExpr* make(int op, SOBFExpr* left, SOBFExpr* right);

    bool equals(const SOBFExpr* other) const override;
    SOBFExprValue evaluate() const override;
    std::string printString() const override;
    void externalize(SOBFWriter& writer) override;

    int op; ///< the tag
    SOBFExpr* left;
    SOBFExpr* right;

protected:
    void addReferences(References& references) override;

private:
    SOBFBinaryExpr(int o, SOBFExpr* l, SOBFExpr* r);
    static SOBFExpr* addUp(SOBFExpr* base, SOBFExpr* first, SOBFExpr* second);
    bool isAddOfConstant() const { return op == TAG_ADD && right->isConstant(); }
    static std::string operand(const SOBFExpr* side, int leastRank);
};

class SOBFSymbolExpr : public SOBFExpr {
public:
    explicit SOBFSymbolExpr(SOBFSymbol* s) : symbol(s) {}
    bool equals(const SOBFExpr* other) const override;
    SOBFExprValue evaluate() const override;
    std::string printString() const override;
    void externalize(SOBFWriter& writer) override;

    SOBFSymbol* symbol;
    mutable bool evaluating = false; ///< guards against symbols that are defined by each other

protected:
    void addReferences(References& references) override;
};

class SOBFMarkerExpr : public SOBFExpr {
public:
    explicit SOBFMarkerExpr(SOBFMarker* m) : marker(m) {}
    bool equals(const SOBFExpr* other) const override;
    SOBFExprValue evaluate() const override;
    std::string printString() const override;
    void externalize(SOBFWriter& writer) override;

    SOBFMarker* marker;

protected:
    void addReferences(References& references) override;
};
