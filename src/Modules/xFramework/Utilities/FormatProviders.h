#pragma once

// Public, stable within a major version. Providers are added before other threads exist. What a
// provider throws passes through.

#include <list>
#include <string>

namespace Core {
class IInterface;
}

namespace Utilities {

/// The process-wide list of functions that rewrite message templates and text arguments before they
/// are used. Providers are registered during start-up, before other threads exist; only Instance()
/// may be called from several threads at once.
class FormatProviders {
public:
    /// Rewrites a text in place.
    using StringProvider = void (*)(std::string& text);
    /// Renders a value into a target and returns the target. The system installs none.
    using ObjectProvider = std::string& (*)(std::string& target, const Core::IInterface& value);

    /// The one instance, created by the first call and never destroyed.
    static FormatProviders& Instance();

    FormatProviders(const FormatProviders&) = delete;
    FormatProviders& operator=(const FormatProviders&) = delete;

    /// Calls the string providers in the order of registration, and stops as soon as the text is
    /// empty.
    virtual void ProcessString(std::string& text) const;

    /// Calls the object providers in the order of registration; returns target.
    virtual std::string& ProcessObject(std::string& target, const Core::IInterface& value) const;

    /// Appends a provider; one that is registered already moves to the end.
    void AddStringProvider(StringProvider provider);

    /// Takes a provider out again; nothing happens when it is not registered.
    void RemoveStringProvider(StringProvider provider);

    /// The same two for object providers.
    void AddObjectProvider(ObjectProvider provider);
    void RemoveObjectProvider(ObjectProvider provider);

private:
    FormatProviders() = default;
    ~FormatProviders() = default;

    std::list<ObjectProvider> m_objectProviders;
    std::list<StringProvider> m_stringProviders;
};

} // namespace Utilities
