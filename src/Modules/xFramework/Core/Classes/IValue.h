#pragma once

// Public, stable within a major version. A value object and all its holders belong to one thread at
// a time. A text that cannot be read is told by false, never thrown.

#include "Modules/xFramework/Core/Classes/ElementTypes.h"
#include "Modules/xFramework/Core/Classes/IInterface.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Core {

/// A value object: one element of some type, seen without its type, and the count of the holders
/// that share it. The count is a plain integer, so an object and all its holders belong to one
/// thread at a time.
class IValue : public virtual IInterface {
public:
    /// A new object with a copy of the element, whose count is 0. It owns its element even when
    /// this object refers to storage owned elsewhere.
    virtual std::unique_ptr<IValue> Clone() const = 0;

    /// Writes the element's text into out and returns out.
    virtual std::string& ToString(std::string& out) const = 0;

    /// Reads the element from text; on failure returns false and leaves the element as it was. An
    /// empty text always fails.
    virtual bool FromString(const std::string& text) = 0;

    /// Whether other (may be null) has the same element type.
    virtual bool IsSameType(const IValue* other) const = 0;

    /// Compares across types: when other's text can be read as this object's type, the elements
    /// decide, otherwise the two texts. Nothing equals null.
    virtual bool IsEqual(const IValue* other) const = 0;

    /// Compares like IsEqual. Every object is greater than null.
    virtual bool IsGreater(const IValue* other) const = 0;

    /// Copies the element of other's view of this object's type (ITypedValue::GetView). Returns the
    /// view, or null, with nothing changed, when other gives none. The view stays other's.
    virtual const IValue* Assign(const IValue& other) = 0;

    /// Adds a holder; returns the new count.
    virtual std::int32_t AddRef() = 0;

    /// Takes a holder off; returns the new count. Never deletes: who gets 0 deletes the object.
    virtual std::int32_t Release() = 0;

    virtual std::int32_t GetRefCount() const = 0;

    /// The same copy as Clone, for a caller that knows no values.
    virtual std::unique_ptr<IInterface> CloneInterface() const = 0;
    virtual std::unique_ptr<Utilities::IObject> CloneObject() const = 0;
};

/// What the values of integer element types offer besides.
class IIntegerValue : public virtual IValue {
public:
    /// Reads the element from hexadecimal text, which is what follows a "0x" prefix; on failure
    /// returns false and leaves the element as it was.
    virtual bool FromHexString(const std::string& digits) = 0;
};

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

    /// The object that others read this element through: this one, unless a class represents
    /// another object, or null when it gives none at the moment. Not the caller's.
    virtual const ITypedValue<T>* GetView() const = 0;

    virtual bool IsEqual(const T& element) const = 0;
    virtual bool IsGreater(const T& element) const = 0;
};

} // namespace Core
