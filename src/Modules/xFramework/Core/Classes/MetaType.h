#pragma once

// Public, stable within a major version. One thread at a time. A meta type is the process's and
// never destroyed. A text that cannot be read is told by false, never thrown.

#include "Modules/xFramework/Core/Classes/Value.h"
#include "Modules/xFramework/Utilities/FormatProviders.h"

#include <concepts>
#include <set>
#include <string>

namespace CoreTypes {

/// What is known of one element type: its names, and how its values and texts become each other.
class IMetaType : public virtual Core::IInterface {
public:
    virtual bool HasName(const std::string& name) const = 0;

    /// A copy of the names, in their order.
    virtual std::set<std::string> GetNames() const = 0;

    /// The registration in the process's value factory keeps the names: it adds a name to the type
    /// that it is registered for, and takes it from the type that it named before.
    virtual void AddName(const std::string& name) = 0;
    virtual void RemoveName(const std::string& name) = 0;

    /// Whether the object (may be null) has the element type.
    virtual bool Describes(const Core::IValue* object) const = 0;

    /// The text of a value of this type.
    virtual std::string ToText(const Core::Value& value) const = 0;

    /// Makes value one of this type, read from text; returns false, and leaves a default element,
    /// when the text cannot be read. $(name) references are expanded, in numbers too.
    virtual bool FromText(const std::string& text, Core::Value& value) const = 0;
};

/// The meta type of T, reached through Utilities::Singleton<CoreTypes::MetaType<T>>. There is one
/// for each element type but the set of values.
template <typename T>
class MetaType : public virtual IMetaType {
public:
    bool HasName(const std::string& name) const override { return m_names.contains(name); }
    std::set<std::string> GetNames() const override { return m_names; }
    void AddName(const std::string& name) override { m_names.insert(name); }
    void RemoveName(const std::string& name) override { m_names.erase(name); }

    bool Describes(const Core::IValue* object) const override {
        return dynamic_cast<const Core::ITypedValue<T>*>(object) != nullptr;
    }
    std::string ToText(const Core::Value& value) const override { return value.ToString(); }
    bool FromText(const std::string& text, Core::Value& value) const override;

private:
    static std::string ToReadableText(std::string text);

    std::set<std::string> m_names;
};

/// The meta type that describes the object (may be null); null when none does.
const IMetaType* FindMetaType(const Core::IValue* object);

template <typename T>
std::string MetaType<T>::ToReadableText(std::string text) {
    // A string value expands the references itself; expanding them twice would rewrite the result.
    if constexpr (!std::same_as<T, std::string>)
        Utilities::FormatProviders::Instance().ProcessString(text);
    return text;
}

template <typename T>
bool MetaType<T>::FromText(const std::string& text, Core::Value& value) const {
    // First of all: the text may belong to the value.
    const std::string readable = ToReadableText(text);
    value.GetMutableRef<T>() = T{};
    return value.Get()->FromString(readable);
}

} // namespace CoreTypes
