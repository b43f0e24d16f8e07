#include "object/SOBFScope.h"

#include "object/SOBFExpr.h"
#include "object/SOBFStanding.h"
#include "object/SOBFSymbol.h"
#include "object/SOBFWriter.h"

SOBFScope::SOBFScope(int scopeKind, Pool* pool)
    : symbolsByName(pool), children(PoolAllocator<SOBFScope*>(pool)) {
    kind = scopeKind;
}

void SOBFScope::setScope(SOBFScope* parent) {
    scope = parent;
    if (parent)
        parent->children.push_back(this);
}

void SOBFScope::addReferences(References& references) {
    references.insert(references.end(), {scope, start, end});
    if (kind == TAG_SCOPE_FUNCTION)
        references.insert(references.end(), children.begin(), children.end());
}

void SOBFScope::externalize(SOBFWriter& writer) {
    std::vector<SOBFScope*> waiting{this};
    while (!waiting.empty()) {
        SOBFScope* scopeNow = waiting.back();
        waiting.pop_back();
        if (!writer.begin(scopeNow))
            continue;
        scopeNow->externalizeOwn(writer);
        writer.finishDeferred();
        waiting.insert(waiting.end(), scopeNow->children.rbegin(), scopeNow->children.rend());
    }
}

void SOBFScope::externalizeOwn(SOBFWriter& writer) {
    if (scope && writer.isDefined(scope))
        writer.pushAlias(scope);
    else
        writer.writeTag(TAG_NULL);
    for (SOBFMarkerExpr* edge : {start, end}) {
        if (edge)
            edge->externalize(writer);
        else
            writer.writeTag(TAG_NULL);
    }
    writer.writeTag(kind);
    writer.writeTag(TAG_DUP);
    writer.defineAlias(this);
    for (SOBFSymbol* symbol : standing(symbolsByName)) {
        symbol->externalize(writer);
        writer.pushAlias(symbol);
        writer.writeTag(TAG_SETSCOPE);
    }
    if (!functionSymbol)
        return writer.writeTag(TAG_DROP);
    functionSymbol->externalize(writer);
    writer.pushAlias(functionSymbol);
    writer.writeTag(TAG_SET_FCT_SYMBOL);
}
