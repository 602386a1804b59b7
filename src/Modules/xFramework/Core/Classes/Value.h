#pragma once

// Public, stable within a major version. Values that share an object belong to one thread at a
// time. Errors are raised as Utilities::Exception*; a text that cannot be read as a type stays a
// text.

#include "Modules/xFramework/Core/Classes/TypedValue.h"

#include <ostream>
#include <string>

namespace Core {

/// The framework's variant: a handle on a shared value object of one of the thirteen element types,
/// or on none (an empty value). Copies share the object and allocate nothing; the object is cloned
/// only when it is about to be changed through one of several holders. A Value and the others that
/// share its object belong to one thread at a time.
class Value : public virtual IInterface {
public:
    Value() = default;
    /// The value that assigning the text to an empty value gives. Implicit, so that a std::string
    /// can be given where a value is expected; a literal is given as Value("text").
    // cppcheck-suppress noExplicitConstructor ; meant to be implicit, see above
    Value(const std::string& text);
    Value(const Value& other);
    ~Value() override;

    /// Shares the other's object, but only when the two values differ: an int 5 assigned from a
    /// text 5 stays the object and the type that it was. An empty other empties this value.
    Value& operator=(const Value& other);

    /// A held object that can read the text takes it and keeps its type; a string takes every text,
    /// with the $(name) in it expanded. Otherwise the value
    /// becomes what a typed literal such as {uint16:0x10} names, or the text itself, unchanged, as
    /// string.
    Value& operator=(const std::string& text);

    /// Whether the value equals the value made from the text; a string value compares bytes.
    bool operator==(const std::string& text) const;

    /// Whether neither orders below the other.
    bool operator==(const Value& other) const;

    /// An empty value orders below every other; else the right side's object decides, see IValue.
    bool operator<(const Value& other) const;

    /// The held object's text, "" when empty.
    std::string ToString() const;

    /// The held object, null when empty. It lives as long as some Value holds it.
    IValue* Get() const { return m_pObject; }

    /// Becomes one more holder of the object (may be null) in place of the one held so far. The
    /// last holder deletes: a new object passed here is the Values' from now on.
    void Set(IValue* pObject);

    /// The element, never converted. Raises "Incompatible value type" when the held object is not
    /// of type T or there is none. Valid until the value is changed.
    template <ValueElement T>
    const T& GetRef() const;

    /// The element, for changing. A value that holds no T is emptied and holds a default T first;
    /// an object that is shared is cloned first. Valid until the value is next changed or copied.
    template <ValueElement T>
    T& GetMutableRef();

private:
    [[noreturn]] static void RaiseFromGetRef();
    [[noreturn]] static void RaiseFromGetMutableRef();

    void MakeUnique();
    bool ReadKeepingType(const std::string& text);

    IValue* m_pObject = nullptr;
};

/// Writes ToString().
std::ostream& operator<<(std::ostream& out, const Value& value);

template <ValueElement T>
const T& Value::GetRef() const {
    const auto* const typed = dynamic_cast<const ITypedValue<T>*>(m_pObject);
    if (typed == nullptr)
        RaiseFromGetRef();
    return typed->GetRef();
}

template <ValueElement T>
T& Value::GetMutableRef() {
    if (dynamic_cast<ITypedValue<T>*>(m_pObject) == nullptr)
        Set(std::make_unique<TypedValue<T>>().release());
    MakeUnique();
    auto* const typed = dynamic_cast<ITypedValue<T>*>(m_pObject);
    if (typed == nullptr)
        RaiseFromGetMutableRef();
    return typed->GetMutableRef();
}

} // namespace Core
