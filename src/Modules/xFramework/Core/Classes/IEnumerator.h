#pragma once

#include "Modules/xFramework/Core/Classes/IInterface.h"

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

} // namespace Core
