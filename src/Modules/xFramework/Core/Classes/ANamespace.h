#pragma once

// Public, stable within a major version. One thread at a time. Throws std::bad_alloc only.

#include "Modules/xFramework/Core/Classes/INamespace.h"

#include <functional>
#include <map>
#include <string_view>

namespace Core {

/// What all namespaces share: the names of their entries and the handling of paths. Whose the
/// entries are is decided by the subclass; this class only observes them.
class ANamespace : public virtual INamespace {
public:
    /// Letters a to z and A to Z, digits and the underscore.
    static bool IsNameChar(char character);

    /// Takes the first name off a path, together with the one separator after it, if any. A path
    /// that begins with a separator yields an empty name.
    static std::string SplitFirstName(std::string& path);

    IInterface* Find(const std::string& name) override { return FindEntry(name); }
    IInterface* FindByPath(const std::string& path) override;

    /// Walks the entries in the order of their names.
    std::unique_ptr<IEnumerator> CreateEnumerator() override;

protected:
    using Entries = std::map<std::string, IInterface*, std::less<>>;

    /// The entry itself, which need not be what Find gives: the entries of a service domain are the
    /// holders of its services.
    IInterface* FindEntry(std::string_view name) const;

    /// Puts an object under a name, or takes the name out when pObject is null. Returns what was
    /// there before, or null. Changes nothing when it throws.
    IInterface* ExchangeEntry(const std::string& name, IInterface* pObject);

    const Entries& GetEntries() const { return m_entries; }

private:
    class Enumerator;

    Entries m_entries;
};

} // namespace Core
