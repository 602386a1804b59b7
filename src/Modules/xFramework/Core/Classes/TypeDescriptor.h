#pragma once

// Public, stable within a major version. One thread at a time. What a descriptor creates is the
// caller's. Errors are raised as Utilities::Exception*.

#include "Modules/xFramework/Core/Classes/ClassFactory.h"
#include "Modules/xFramework/Core/Classes/MetaType.h"
#include "Modules/xFramework/Utilities/Singleton.h"

#include <set>

namespace Core {

/// Creates values of one element type and describes it.
class ITypeDescriptor : public virtual AClassCreator<IValue> {
public:
    /// A value that holds a new default element.
    virtual Value CreateValue() = 0;

    /// From a value that holds a std::set<Core::Value>, one that holds a std::set<T>: elements of
    /// another type are read from their text, for numbers with the $(name) in it expanded, and
    /// those that cannot be read become the default element. The given set stays as it is. Raises
    /// "Incompatible value type" for any other value.
    virtual Value ConvertSet(const Value& set) const = 0;

    /// The process-wide meta type of the element type.
    virtual CoreTypes::IMetaType& GetMetaType() const = 0;
};

template <typename T>
class TypeDescriptor : public virtual ITypeDescriptor {
public:
    std::unique_ptr<IValue> Create() override { return std::make_unique<TypedValue<T>>(); }

    Value CreateValue() override {
        Value value;
        value.Set(Create().release());
        return value;
    }

    Value ConvertSet(const Value& set) const override {
        std::set<T> converted;
        for (const Value& element : set.GetRef<std::set<Value>>())
            converted.insert(Convert(element));
        Value result;
        result.Set(std::make_unique<TypedValue<std::set<T>>>(std::move(converted)).release());
        return result;
    }

    CoreTypes::IMetaType& GetMetaType() const override {
        return Utilities::Singleton<CoreTypes::MetaType<T>>::Instance();
    }

private:
    /// The element by value: bringing it to another type must not touch the set that it is in.
    T Convert(Value element) const {
        // A text that cannot be read leaves the default element.
        if (!GetMetaType().Describes(element.Get()))
            GetMetaType().FromText(element.ToString(), element);
        return element.GetMutableRef<T>();
    }
};

} // namespace Core
