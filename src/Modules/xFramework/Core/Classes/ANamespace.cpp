#include "Modules/xFramework/Core/Classes/ANamespace.h"

#include <algorithm>
#include <utility>

namespace Core {

/// Remembers the name that it has reached, not the entry: entries may come and go meanwhile.
class ANamespace::Enumerator : public AGenericEnumerator<IInterface> {
public:
    explicit Enumerator(const Entries& entries) : m_entries(entries) {}

    IInterface* NextEntry() override {
        const auto next =
            m_hasStarted ? m_entries.upper_bound(m_name) : m_entries.lower_bound(m_name);
        if (next == m_entries.end())
            return nullptr;
        m_hasStarted = true;
        m_name = next->first;
        return next->second;
    }

    const std::string& GetName() const override { return m_name; }

    void Reset() override {
        m_hasStarted = false;
        m_name.clear();
    }

private:
    const Entries& m_entries;
    bool m_hasStarted = false;
    std::string m_name;
};

bool ANamespace::IsNameChar(char character) {
    const auto isBetween = [character](char first, char last) {
        return character >= first && character <= last;
    };
    return isBetween('a', 'z') || isBetween('A', 'Z') || isBetween('0', '9') || character == '_';
}

std::string ANamespace::SplitFirstName(std::string& path) {
    const auto end = std::find_if_not(path.begin(), path.end(), IsNameChar);
    std::string name(path.begin(), end);
    path.erase(path.begin(), end == path.end() ? end : end + 1);
    return name;
}

IInterface* ANamespace::FindByPath(const std::string& path) {
    std::string rest = path;
    IInterface* const found = Find(SplitFirstName(rest));
    if (rest.empty())
        return found;
    auto* const inner = dynamic_cast<INamespace*>(found);
    return inner == nullptr ? nullptr : inner->FindByPath(rest);
}

std::unique_ptr<IEnumerator> ANamespace::CreateEnumerator() {
    return std::make_unique<Enumerator>(m_entries);
}

IInterface* ANamespace::FindEntry(std::string_view name) const {
    const auto found = m_entries.find(name);
    return found == m_entries.end() ? nullptr : found->second;
}

IInterface* ANamespace::ExchangeEntry(const std::string& name, IInterface* pObject) {
    if (pObject != nullptr)
        return std::exchange(m_entries[name], pObject);
    IInterface* const earlier = FindEntry(name);
    m_entries.erase(name);
    return earlier;
}

} // namespace Core
