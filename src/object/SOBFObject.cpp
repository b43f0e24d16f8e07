#include "object/SOBFObject.h"

#include "object/SOBFScope.h"
#include "object/SOBFSymbol.h"

void SOBFObject::setScope(SOBFScope* newScope) {
    if (scope)
        return;
    scope = newScope;
    // Only symbols have a place in the map of names; for the rest the scope is but a remark.
    if (auto* symbol = newScope ? dynamic_cast<SOBFSymbol*>(this) : nullptr)
        newScope->symbolsByName.set(getName(), symbol);
}

/// A list of what is still to do instead of recursion: the chains in a file are as long as the file.
void SOBFObject::markReachable(bool flag) {
    References waiting{this};
    while (!waiting.empty()) {
        SOBFObject* object = waiting.back();
        waiting.pop_back();
        if (!object || object->reachable == flag)
            continue;
        object->reachable = flag;
        object->addReferences(waiting);
    }
}
