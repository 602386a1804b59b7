#pragma once

#include "Modules/xFramework/Utilities/FormatProviders.h"

namespace Utilities {

/// Registers a string provider for as long as it lives.
class ProviderGuard {
public:
    explicit ProviderGuard(FormatProviders::StringProvider provider) : m_provider(provider) {
        FormatProviders::Instance().AddStringProvider(provider);
    }
    ~ProviderGuard() { FormatProviders::Instance().RemoveStringProvider(m_provider); }

    ProviderGuard(const ProviderGuard&) = delete;
    ProviderGuard& operator=(const ProviderGuard&) = delete;

private:
    FormatProviders::StringProvider m_provider;
};

} // namespace Utilities
