#pragma once

namespace XML {

/// Gives the values behind the '$(name)' references in the texts of a node.
class IResolver {
public:
    virtual ~IResolver() = default;

    /// The value of that name, zero-terminated and valid until the next call; null when unknown.
    virtual const char* Resolve(const char* name) = 0;

    /// Takes a further resolver that was offered to a node which has this one already. What becomes
    /// of it is this resolver's business.
    virtual void SetResolver(IResolver* pResolver) = 0;

protected:
    IResolver() = default;
    IResolver(const IResolver&) = default;
    IResolver& operator=(const IResolver&) = default;
};

} // namespace XML
