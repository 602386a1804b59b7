#pragma once

#include "Modules/xFramework/Core/Classes/IEnumerator.h"

#include <memory>
#include <string>

namespace Core {

/// Maps names to objects. What it returns stays its own (or its entries').
class INamespace : public virtual IInterface {
public:
    /// The object under the name, null when there is none. The name is taken as it stands, whatever
    /// its characters.
    virtual IInterface* Find(const std::string& name) = 0;

    /// The object at the end of a path: names, each looked up in the object found before, which
    /// must be a namespace itself. Null when a step finds nothing. Names are separated by any one
    /// character that a name in a path cannot hold, see ANamespace::IsNameChar. Each step is a call
    /// within the call before it, with a copy of the rest: paths are a programmer's, of a few
    /// names, and never come from a user.
    virtual IInterface* FindByPath(const std::string& path) = 0;

    /// Walks the entries.
    virtual std::unique_ptr<IEnumerator> CreateEnumerator() = 0;
};

/// A namespace that is filled while the program runs.
class IDynamicNamespace : public virtual INamespace {
public:
    /// Enters an object under a name. When the name is taken, the new object replaces the old one,
    /// which is released.
    virtual void Add(const std::string& name, IInterface* pObject) = 0;

    /// Releases the object under the name; returns whether there was one.
    virtual bool Remove(const std::string& name) = 0;
};

} // namespace Core
