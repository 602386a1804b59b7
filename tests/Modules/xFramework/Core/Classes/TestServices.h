#pragma once

#include "Modules/xFramework/Core/Classes/ServiceDomain.h"
#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

/// What the services of a test did, in order.
using Journal = std::vector<std::string>;

/// A service that does on attach and detach what the test tells it to, and notes its life.
class ScriptedService : public Core::Service, public LiveObject {
public:
    using Action = std::function<void(ScriptedService&)>;

    struct Script {
        Action onAttach = [](ScriptedService&) {};
        Action onDetach = [](ScriptedService&) {};
    };

    ScriptedService(std::string name, Journal& journal, Script script)
        : m_name(std::move(name)), m_journal(journal), m_script(std::move(script)) {}
    ~ScriptedService() override { m_journal.push_back(m_name + " deleted"); }

    using Service::RequestService;

protected:
    Core::IServiceDomain* AttachHook() override {
        m_journal.push_back(m_name + " attaching");
        m_script.onAttach(*this);
        m_journal.push_back(m_name + " attached");
        return GetDomain();
    }
    Core::IServiceDomain* DetachHook() override {
        m_journal.push_back(m_name + " detaching");
        m_script.onDetach(*this);
        return GetDomain();
    }

private:
    std::string m_name;
    Journal& m_journal;
    Script m_script;
};

/// Creates scripted services.
class ScriptedCreator : public Core::AClassCreator<Core::IService> {
public:
    ScriptedCreator(std::string name, Journal& journal, ScriptedService::Script script)
        : m_name(std::move(name)), m_journal(journal), m_script(std::move(script)) {}

    std::unique_ptr<Core::IService> Create() override {
        return std::make_unique<ScriptedService>(m_name, m_journal, m_script);
    }

private:
    std::string m_name;
    Journal& m_journal;
    ScriptedService::Script m_script;
};
