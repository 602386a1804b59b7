#pragma once

// Public, stable within a major version. As IValue.h: one thread at a time, false for a text that
// cannot be read.

#include "Modules/xFramework/Core/Classes/ElementText.h"
#include "Modules/xFramework/Core/Classes/ElementTypes.h"
#include "Modules/xFramework/Core/Classes/IValue.h"

#include <type_traits>
#include <utility>

namespace Core {

/// Everything that a value object does, done on an element that it does not own.
template <ValueElement T>
class ATypedRefValue : public ITypedValue<T> {
public:
    std::unique_ptr<IValue> Clone() const override { return NewCopy(); }
    std::unique_ptr<IInterface> CloneInterface() const override { return NewCopy(); }
    std::unique_ptr<Utilities::IObject> CloneObject() const override { return NewCopy(); }

    std::string& ToString(std::string& out) const override {
        return out = ElementText::Write(*m_element);
    }
    bool FromString(const std::string& text) override { return Read(text, *m_element); }

    bool IsSameType(const IValue* other) const override { return FindTyped(other) != nullptr; }
    bool IsEqual(const IValue* other) const override;
    bool IsGreater(const IValue* other) const override;
    const IValue* Assign(const IValue& other) override;

    T& GetMutableRef() override { return *m_element; }
    const T& GetRef() const override { return *m_element; }
    const ITypedValue<T>* GetView() const override { return this; }
    bool IsEqual(const T& element) const override { return *m_element == element; }
    bool IsGreater(const T& element) const override { return *m_element > element; }

protected:
    /// The element stays the caller's and must outlive this object.
    explicit ATypedRefValue(T* element) : m_element(element) {}

    /// Reads a text as an element of this type; on failure returns false and leaves the element as
    /// it was.
    virtual bool Read(const std::string& text, T& element) const {
        return !text.empty() && ElementText::Read(text, element);
    }

private:
    static const ITypedValue<T>* FindTyped(const IValue* other) {
        return dynamic_cast<const ITypedValue<T>*>(other);
    }

    std::unique_ptr<ITypedValue<T>> NewCopy() const;

    T* m_element;
};

/// The integer types read the "0x" form too.
template <IntegerElement T>
class IntegerRefValue : public ATypedRefValue<T>, public virtual IIntegerValue {
public:
    bool FromHexString(const std::string& digits) override {
        return ElementText::ReadHex(digits, this->GetMutableRef());
    }

protected:
    using ATypedRefValue<T>::ATypedRefValue;

    bool Read(const std::string& text, T& element) const override {
        constexpr std::size_t prefixSize = 2;
        if (text.starts_with("0x"))
            return ElementText::ReadHex(text.substr(prefixSize), element);
        return ATypedRefValue<T>::Read(text, element);
    }
};

template <typename T>
struct RefValueBase {
    using Type = ATypedRefValue<T>;
};

template <IntegerElement T>
struct RefValueBase<T> {
    using Type = IntegerRefValue<T>;
};

/// A value object that refers to storage owned elsewhere.
template <ValueElement T>
class TypedRefValue : public RefValueBase<T>::Type {
public:
    /// The element stays the caller's and must outlive this object.
    explicit TypedRefValue(T* element) : RefValueBase<T>::Type(element) {}
};

/// A value object that owns its element: the class that is created for values.
template <ValueElement T>
class TypedValue : public TypedRefValue<T> {
public:
    explicit TypedValue(T element = T{})
        : TypedRefValue<T>(&m_ownElement), m_ownElement(std::move(element)) {}

private:
    T m_ownElement;
};

template <ValueElement T>
std::unique_ptr<ITypedValue<T>> ATypedRefValue<T>::NewCopy() const {
    return std::make_unique<TypedValue<T>>(*m_element);
}

template <ValueElement T>
bool ATypedRefValue<T>::IsEqual(const IValue* other) const {
    if (other == nullptr)
        return false;
    if (const ITypedValue<T>* const typed = FindTyped(other))
        return IsEqual(typed->GetRef());
    std::string otherText;
    other->ToString(otherText);
    T element{};
    return Read(otherText, element) ? IsEqual(element)
                                    : ElementText::Write(*m_element) == otherText;
}

template <ValueElement T>
bool ATypedRefValue<T>::IsGreater(const IValue* other) const {
    if (other == nullptr)
        return true;
    if (const ITypedValue<T>* const typed = FindTyped(other))
        return IsGreater(typed->GetRef());
    std::string otherText;
    other->ToString(otherText);
    T element{};
    return Read(otherText, element) ? IsGreater(element)
                                    : ElementText::Write(*m_element).compare(otherText) > 0;
}

template <ValueElement T>
const IValue* ATypedRefValue<T>::Assign(const IValue& other) {
    const ITypedValue<T>* const typed = FindTyped(&other);
    const ITypedValue<T>* const view = typed == nullptr ? nullptr : typed->GetView();
    if (view != nullptr)
        *m_element = view->GetRef();
    return view;
}

} // namespace Core
