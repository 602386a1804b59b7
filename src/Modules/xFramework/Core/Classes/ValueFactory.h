#pragma once

// Public, stable within a major version. One thread at a time. What is created is the caller's. An
// unknown type gives null, a text that cannot be read the type's default value; neither is an
// error. The process's factory knows its names from start-up on, before main.

#include "Modules/xFramework/Core/Classes/ClassFactory.h"
#include "Modules/xFramework/Core/Classes/Namespace.h"
#include "Modules/xFramework/Core/Classes/TypeDescriptor.h"

#include <string>

namespace Core {

/// A text such as {uint16:0x10}, taken apart.
struct TypedLiteral {
    std::string typeName;
    std::string valueText;
};

/// Splits a text in braces at its first colon; without a colon there is no value text, and a text
/// that is not in braces is a type name as a whole. Whether the type exists is not asked.
TypedLiteral SplitTypedLiteral(const std::string& text);

/// Makes value objects by the names of their element types, and from typed literals. The one that
/// text assignment asks is Utilities::Singleton<Core::ValueFactory>. New objects are the caller's,
/// with a count of 0. The meta types, which are the process's, know the names that this one factory
/// gives; those of any other factory stay its own.
class ValueFactory : public DynamicFactory<IValue, GenericFactory<IValue, ClassFactory>>,
                     public virtual Service {
public:
    /// Gives the element type T a name: registers a creator and a descriptor, and the process's
    /// factory tells the meta type. A name that is taken names T from now on.
    template <typename T>
    void Register(const std::string& name);

    /// See IClassFactory. A name that named an element type does so no longer: its descriptor
    /// goes with the replaced creator, and its meta type forgets a name of the process's factory.
    void Register(const std::string& name, std::unique_ptr<IClassCreator<>> creator) override;

    /// A value of the named type, read from text; an unreadable text leaves the default element.
    /// Null when the name is unknown or does not name a value's type.
    std::unique_ptr<IValue> Create(const std::string& typeName, const std::string& text);

    /// Whether the text is a typed literal of a registered type with a value text that is not
    /// empty, readable or not.
    bool CanCreate(const std::string& expression) const;

    /// The value of a typed literal, as Create gives it; without a value text, the default value of
    /// the type named by the text in the braces, or by the text itself when there are none.
    std::unique_ptr<IValue> CreateFromExpression(const std::string& expression);

    /// The descriptor registered under the name, null when there is none. It stays the factory's
    /// and lives until the name is registered again.
    ITypeDescriptor* GetTypeDescriptor(const std::string& name);

private:
    bool IsOfTheProcess() const;
    void RemoveDescriptor(const std::string& name);
    void RegisterDescriptor(const std::string& name, std::unique_ptr<ITypeDescriptor> descriptor);

    Namespace m_descriptors;
};

template <typename T>
void ValueFactory::Register(const std::string& name) {
    Register(name, std::make_unique<ClassCreator<TypedValue<T>, IValue>>());
    RegisterDescriptor(name, std::make_unique<TypeDescriptor<T>>());
}

} // namespace Core
