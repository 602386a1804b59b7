#include "Modules/xFramework/Core/Classes/ClassFactory.h"

#include <utility>

namespace Core {

void ClassFactory::Register(const std::string& name, std::unique_ptr<IClassCreator<>> creator) {
    if (creator != nullptr)
        m_creators[name] = std::move(creator);
    else
        m_creators.erase(name);
}

bool ClassFactory::IsRegistered(const std::string& name) const {
    return m_creators.contains(name);
}

std::shared_ptr<IClassCreator<>> ClassFactory::GetCreator(const std::string& name) const {
    const auto found = m_creators.find(name);
    return found == m_creators.end() ? nullptr : found->second;
}

std::unique_ptr<IInterface> ClassFactory::CreateInstance(const std::string& name) {
    // A share of the creator: it may register another one under its own name while it is at work.
    const std::shared_ptr<IClassCreator<>> creator = GetCreator(name);
    return creator == nullptr ? nullptr : creator->CreateObject();
}

} // namespace Core
