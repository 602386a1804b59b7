#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

namespace {

// example begins
class Clock : public Core::Service {
public:
    virtual std::string Now() const { return "12:00"; }
};

class Journal : public Core::Service {
public:
    std::string Write(const std::string& text) const { return m_clock->Now() + " " + text; }

protected:
    Core::IServiceDomain* AttachHook() override {
        m_clock = dynamic_cast<Clock*>(RequestService("Clock"));
        return GetDomain();
    }

private:
    Clock* m_clock = nullptr;
};

std::string WriteToJournal(Core::INamespace& root) {
    auto& services = dynamic_cast<Core::DynamicDomain&>(*root.Find("Services"));
    services.RegisterServiceClass<Journal>("Journal");
    services.RegisterServiceClass<Clock>("Clock");

    auto* const journal = dynamic_cast<Journal*>(root.FindByPath("Services.Journal"));
    return journal->Write("started");
}
// example ends

} // namespace

std::string Examples::RequestServices() {
    Core::Namespace root;
    root.Add("Services", new Core::ServiceDomain);
    return WriteToJournal(root);
}
