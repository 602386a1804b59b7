#pragma once

#include "Modules/xFramework/Core/Classes/ElementTypes.h"
#include "Modules/xFramework/Core/Classes/IValue.h"

namespace Core {

/// Base of all value objects: the count of holders, 0 at first. Value objects are never copied but
/// by Clone.
class AValue : public virtual IValue {
public:
    AValue() = default;
    AValue(const AValue&) = delete;
    AValue& operator=(const AValue&) = delete;

    std::int32_t AddRef() override { return ++m_refCount; }
    std::int32_t Release() override { return --m_refCount; }
    std::int32_t GetRefCount() const override { return m_refCount; }

private:
    std::int32_t m_refCount = 0;
};

/// A value object whose element is of type T. References to the element last as long as the object.
template <ValueElement T>
class ITypedValue : public AValue {
public:
    using IValue::IsEqual;
    using IValue::IsGreater;

    virtual T& GetMutableRef() = 0;
    virtual const T& GetRef() const = 0;

    /// The object that others read this element through: this one, unless a class stands in for
    /// another object, or null when it gives none at the moment. Not the caller's.
    virtual const ITypedValue<T>* GetView() const = 0;

    virtual bool IsEqual(const T& element) const = 0;
    virtual bool IsGreater(const T& element) const = 0;
};

} // namespace Core
