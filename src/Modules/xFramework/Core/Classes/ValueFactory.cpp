#include "Modules/xFramework/Core/Classes/ValueFactory.h"

#include "Modules/xFramework/Utilities/Singleton.h"

#include <utility>

namespace Core {

TypedLiteral SplitTypedLiteral(const std::string& text) {
    if (!text.starts_with('{') || !text.ends_with('}'))
        return {text, ""};
    const std::string inside = text.substr(1, text.size() - 2);
    const std::size_t colon = inside.find(':');
    if (colon == std::string::npos)
        return {inside, ""};
    return {inside.substr(0, colon), inside.substr(colon + 1)};
}

std::unique_ptr<IValue> ValueFactory::Create(const std::string& typeName, const std::string& text) {
    std::unique_ptr<IValue> object = CreateTyped(typeName);
    // A text that cannot be read leaves the default element, on purpose.
    if (object != nullptr)
        object->FromString(text);
    return object;
}

bool ValueFactory::CanCreate(const std::string& expression) const {
    const TypedLiteral literal = SplitTypedLiteral(expression);
    return !literal.valueText.empty() && IsRegistered(literal.typeName);
}

std::unique_ptr<IValue> ValueFactory::CreateFromExpression(const std::string& expression) {
    const TypedLiteral literal = SplitTypedLiteral(expression);
    return literal.valueText.empty() ? CreateTyped(literal.typeName)
                                     : Create(literal.typeName, literal.valueText);
}

ITypeDescriptor* ValueFactory::GetTypeDescriptor(const std::string& name) {
    return dynamic_cast<ITypeDescriptor*>(m_descriptors.Find(name));
}

void ValueFactory::Register(const std::string& name, std::unique_ptr<IClassCreator<>> creator) {
    RemoveDescriptor(name);
    ClassFactory::Register(name, std::move(creator));
}

bool ValueFactory::IsOfTheProcess() const {
    return this == &Utilities::Singleton<ValueFactory>::Instance();
}

void ValueFactory::RemoveDescriptor(const std::string& name) {
    const ITypeDescriptor* const earlier = GetTypeDescriptor(name);
    if (earlier != nullptr && IsOfTheProcess())
        earlier->GetMetaType().RemoveName(name);
    m_descriptors.Remove(name);
}

void ValueFactory::RegisterDescriptor(const std::string& name,
                                      std::unique_ptr<ITypeDescriptor> descriptor) {
    if (IsOfTheProcess())
        descriptor->GetMetaType().AddName(name);
    m_descriptors.Add(name, descriptor.release());
}

} // namespace Core
