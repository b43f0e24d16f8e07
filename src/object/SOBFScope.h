#pragma once

#include "object/SOBFContainers.h"
#include "object/SOBFObject.h"

class SOBFMarkerExpr;
class SOBFSymbol;

/// Where symbols are known: a module, a function or a block.
class SOBFScope : public SOBFObject {
public:
    explicit SOBFScope(int scopeKind, Pool* pool = Pool::currentPool);

    /// Records the parent, which may be null, and adds the scope to its children.
    void setScope(SOBFScope* parent) override;
    /// Writes the scope and, behind it, all scopes inside. A parent that has not been written is left out.
    void externalize(SOBFWriter& writer);

    SOBFNameMap<SOBFSymbol*> symbolsByName;
    PoolVector<SOBFScope*> children;
    SOBFMarkerExpr* start = nullptr;
    SOBFMarkerExpr* end = nullptr;
    SOBFSymbol* functionSymbol = nullptr;

protected:
    void addReferences(References& references) override;

private:
    void externalizeOwn(SOBFWriter& writer);
};
