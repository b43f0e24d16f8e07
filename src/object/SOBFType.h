#pragma once

#include "object/SOBFContainers.h"
#include "object/SOBFObject.h"

#include <string>

class SOBFExpr;
class SOBFSymbol;
class SOBFTypeName;

/// A type of the source language, as far as a debugger needs it.
class SOBFType : public SOBFObject {
public:
    /// Types that a type is made of from the start: the reader allows no more, and a compiler uses a few.
    static constexpr int mostParts = 50;

    explicit SOBFType(int s) : size(s) {}

    /// The name that was given, else one made up from what the type is made of; cut off with "..." when it
    /// grows out of bounds.
    HString* getName() const override;
    /// The field of that name; null if there is none, and for a type without fields.
    virtual class SOBFField* findField(HString*) const { return nullptr; }
    virtual bool isSimple() const { return false; }
    virtual bool isFloat() const { return false; }
    virtual bool isArray() const { return false; }
    virtual bool isCountedArray() const { return false; }
    virtual bool isStruc() const { return false; }
    virtual bool isPtr() const { return false; }
    virtual bool isQualified() const { return false; }
    virtual bool isFunction() const { return false; }
    virtual bool isMemberFunction() const { return false; }
    /// The type of the elements of an array; null for all others.
    virtual SOBFType* getElementType() const { return nullptr; }
    /// Writes the type, once, and leaves it known by its alias.
    virtual void externalize(SOBFWriter& writer) = 0;

    /// The types that must be known before this one can be made.
    virtual SOBFType* part(int) const { return nullptr; }
    static constexpr int partCount = 2;

    int size;      ///< bytes
    int parts = 1; ///< types it is made of from the start, itself included

protected:
    friend class SOBFTypeName;
    virtual void appendName(SOBFTypeName& text) const = 0;
    void addReferences(References&) override {}

    void addParts(const SOBFType* other) { parts += other->parts; }
    void writeAlias(SOBFWriter& writer);
    void writeSetName(SOBFWriter& writer) const;
};

/// A type without parts: a size and a tag say it all.
class SOBFPlainType : public SOBFType {
public:
    using SOBFType::SOBFType;
    void externalize(SOBFWriter& writer) override;

protected:
    virtual int tag() const = 0;
};

class SOBFSimpleType : public SOBFPlainType {
public:
    SOBFSimpleType(int s, int k) : SOBFPlainType(s), simpleKind(k) {}
    bool isSimple() const override { return true; }

    int simpleKind; ///< TAG_CHAR, TAG_INT or TAG_UNSIGNED

protected:
    void appendName(SOBFTypeName& text) const override;
    int tag() const override { return simpleKind; }
};

class SOBFFloatType : public SOBFPlainType {
public:
    using SOBFPlainType::SOBFPlainType;
    bool isFloat() const override { return true; }

protected:
    void appendName(SOBFTypeName& text) const override;
    int tag() const override { return TAG_FLOAT; }
};

class SOBFUntypedType : public SOBFPlainType {
public:
    using SOBFPlainType::SOBFPlainType;

protected:
    void appendName(SOBFTypeName& text) const override;
    int tag() const override { return TAG_UNTYPED; }
};

/// A pointer. Made before its target, so that the target may refer back to it.
class SOBFPtrType : public SOBFType {
public:
    using SOBFType::SOBFType;
    bool isPtr() const override { return true; }
    void externalize(SOBFWriter& writer) override;
    void externalizeRest(SOBFWriter& writer) override;

    SOBFType* target = nullptr; ///< null until it is known
    int representation = TAG_PTR_REP_1;

protected:
    void appendName(SOBFTypeName& text) const override;
};

/// A type in a certain memory space.
class SOBFQualifiedType : public SOBFType {
public:
    SOBFQualifiedType(SOBFType* b, int space);
    bool isQualified() const override { return true; }
    void externalize(SOBFWriter& writer) override;
    SOBFType* part(int number) const override { return number == 0 ? base : nullptr; }

    SOBFType* base;
    int memorySpace; ///< the tag

protected:
    void appendName(SOBFTypeName& text) const override;
};

class SOBFArrayType : public SOBFType {
public:
    SOBFArrayType(SOBFType* e, int c);
    bool isArray() const override { return true; }
    SOBFType* getElementType() const override { return element; }
    void externalize(SOBFWriter& writer) override;
    SOBFType* part(int number) const override { return number == 0 ? element : nullptr; }

    SOBFType* element;
    int count;

protected:
    void appendName(SOBFTypeName& text) const override;
};

/// An array with the number of its elements in front.
class SOBFCountedArrayType : public SOBFType {
public:
    SOBFCountedArrayType(SOBFType* c, SOBFType* e, int n);
    bool isCountedArray() const override { return true; }
    SOBFType* getElementType() const override { return element; }
    void externalize(SOBFWriter& writer) override;
    SOBFType* part(int number) const override { return number == 0 ? counter : element; }

    SOBFType* counter;
    int count;
    SOBFType* element;

protected:
    void appendName(SOBFTypeName& text) const override;
};

/// A member of a structure; `type` and `name` are those of every object.
class SOBFField : public SOBFObject {
public:
    SOBFField(HString* n, SOBFType* t) {
        name = n;
        type = t;
    }
    /// Adds the field to the structure on top of the stack.
    void externalize(SOBFWriter& writer);
    /// Entries on the stack that writing it takes.
    virtual unsigned slots() const { return 2; }

protected:
    virtual void externalizeValues(SOBFWriter& writer) = 0;
    virtual int tag() const = 0;
    void addReferences(References&) override {}
};

class SOBFStaticField : public SOBFField {
public:
    SOBFStaticField(HString* n, SOBFExpr* v, SOBFType* t) : SOBFField(n, t), value(v) {}
    unsigned slots() const override;

    SOBFExpr* value;

protected:
    void externalizeValues(SOBFWriter& writer) override;
    int tag() const override { return TAG_STATIC_FIELD; }
};

class SOBFDynamicField : public SOBFField {
public:
    SOBFDynamicField(HString* n, int v1, int v2, SOBFType* t) : SOBFField(n, t), value1(v1), value2(v2) {}

    int value1;
    int value2;

protected:
    void externalizeValues(SOBFWriter& writer) override;
    int tag() const override { return TAG_DYNAMIC_FIELD; }
};

class SOBFStrucType : public SOBFType {
public:
    using SOBFType::SOBFType;
    bool isStruc() const override { return true; }
    SOBFField* findField(HString* wanted) const override;
    void externalize(SOBFWriter& writer) override;
    void externalizeRest(SOBFWriter& writer) override;

    PoolVector<SOBFField*> fields;

protected:
    void appendName(SOBFTypeName& text) const override;

private:
    void externalizeFields(SOBFWriter& writer);

    size_t m_nextField = 0; ///< the first that is not written yet
};

class SOBFFunctionType : public SOBFType {
public:
    SOBFFunctionType() : SOBFType(0) {}
    bool isFunction() const override { return true; }
    void externalize(SOBFWriter& writer) override;

    PoolVector<SOBFSymbol*> inputs;
    PoolVector<SOBFSymbol*> outputs;
    int word0 = 0; ///< carried, never looked at
    int word1 = 0;
    int word2 = 0;

protected:
    void appendName(SOBFTypeName& text) const override;
    /// Writes what stands before the parameters.
    virtual void externalizeHead(SOBFWriter& writer);
};

class SOBFMemberFunctionType : public SOBFFunctionType {
public:
    explicit SOBFMemberFunctionType(SOBFType* c) : classType(c) { addParts(c); }
    bool isMemberFunction() const override { return true; }
    SOBFType* part(int number) const override { return number == 0 ? classType : nullptr; }

    SOBFType* classType;

protected:
    void appendName(SOBFTypeName& text) const override;
    void externalizeHead(SOBFWriter& writer) override;
};
