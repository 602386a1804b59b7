#include "Modules/xFramework/Core/Classes/ClassFactory.h"
#include "tests/Modules/xFramework/Core/Classes/Examples/Examples.h"

#include <memory>

namespace {

// example begins
class IAntenna : public virtual Core::IInterface {
public:
    virtual std::string Gain() const = 0;
};

class Dipole : public IAntenna {
public:
    std::string Gain() const override { return "2"; }
};

class Horn : public IAntenna {
public:
    explicit Horn(int gain) : m_gain(gain) {}
    std::string Gain() const override { return std::to_string(m_gain); }

private:
    int m_gain;
};

class HornCreator : public Core::AClassCreator<IAntenna> {
public:
    std::unique_ptr<IAntenna> Create() override { return std::make_unique<Horn>(20); }
};

using Antennas = Core::DynamicFactory<IAntenna, Core::GenericFactory<IAntenna, Core::ClassFactory>>;

std::string GainOf(Antennas& antennas, const std::string& name) {
    const std::unique_ptr<IAntenna> antenna = antennas.CreateTyped(name);
    return antenna == nullptr ? "unknown" : antenna->Gain();
}

std::string CompareAntennas() {
    Antennas antennas;
    antennas.RegisterCreator("dipole", std::make_unique<Core::ClassCreator<Dipole, IAntenna>>());
    antennas.RegisterCreator("horn", std::make_unique<HornCreator>());
    return GainOf(antennas, "dipole") + " " + GainOf(antennas, "horn") + " " +
           GainOf(antennas, "loop");
}
// example ends

} // namespace

std::string Examples::MakeByName() {
    return CompareAntennas();
}
