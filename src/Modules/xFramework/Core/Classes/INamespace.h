#pragma once

// Public, stable within a major version. One thread at a time. What is found stays its owner's; a
// name or path that leads nowhere gives null, no error.

#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <memory>
#include <string>

namespace Core {

/// Walks the entries of a container, which must outlive it and stays their owner. Entries that
/// are added meanwhile may be met or not, as their place is; none is met twice.
class IEnumerator : public virtual IInterface {
public:
    /// The next entry, null at the end.
    virtual IInterface* Next() = 0;

    /// The name of the entry that Next returned last.
    virtual const std::string& GetName() const = 0;

    /// Begins again before the first entry.
    virtual void Reset() = 0;
};

/// An enumerator of a container whose entries are all of type T.
template <typename T>
class AGenericEnumerator : public virtual IEnumerator {
public:
    IInterface* Next() override { return NextEntry(); }

    /// Like Next, in the entries' own type.
    virtual T* NextEntry() = 0;
};

/// Maps names to objects. What it returns stays its own (or its entries').
class INamespace : public virtual IInterface {
public:
    /// The object under the name, null when there is none. The name is taken as it is, whatever
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
