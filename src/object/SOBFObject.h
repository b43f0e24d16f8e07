#pragma once

#include "foundation/HString.h"
#include "foundation/Pool.h"
#include "object/SOBFTags.h"

#include <vector>

class SOBFModule;
class SOBFScope;
class SOBFType;
class SOBFWriter;

/// Base of everything that an object file turns into. Lives in a pool and goes with it as a whole: no
/// destructor runs.
class SOBFObject : public PoolObject {
public:
    /// The objects that one object refers to.
    using References = std::vector<SOBFObject*>;

    virtual ~SOBFObject() = default;

    /// The name, or null. Types make one up if none was given.
    virtual HString* getName() const { return name; }
    /// Enters the object in a scope, unless it has one already.
    virtual void setScope(SOBFScope* newScope);
    /// Sets or clears `reachable` here and on all that can be reached from here through objects whose flag
    /// differs.
    void markReachable(bool flag);

    /// Writes what was put off by SOBFWriter::defer.
    virtual void externalizeRest(SOBFWriter&) {}

    bool reachable = false;
    /// What the last writer that met this object did with it. `writtenBy` is that writer's number, so that a
    /// model can be written more than once.
    bool aliasAssigned = false;
    bool externalized = false;
    bool aliasDefined = false; ///< what was written so far makes the object known by its alias
    unsigned writtenBy = 0;
    int alias = 0;

    int kind = TAG_SCOPE_BLOCK; ///< the tag of a scope
    SOBFType* type = nullptr;
    HString* name = nullptr;
    SOBFScope* scope = nullptr;
    SOBFModule* module = nullptr; ///< for the instructions that need it

protected:
    /// Adds what `markReachable` goes on to; null entries are passed over.
    virtual void addReferences(References& references) = 0;
};

/// A text on the machine's stack.
class SOBFString : public SOBFObject {
public:
    SOBFString(HString* t, int l) : text(t), length(l) {}

    HString* text;
    int length; ///< bytes

protected:
    void addReferences(References&) override {}
};
