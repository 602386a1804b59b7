#include "Modules/xFramework/Core/Classes/Value.h"

#include "Modules/xFramework/Core/Classes/ValueFactory.h"
#include "Modules/xFramework/Utilities/Exception.h"
#include "Modules/xFramework/Utilities/Singleton.h"

namespace Core {

namespace {

constexpr const char* incompatibleType = "Incompatible value type";

bool IsGreater(const IValue* left, const IValue* right) {
    return left != nullptr && left->IsGreater(right);
}

void ReleaseHolder(IValue* pObject) {
    if (pObject != nullptr && pObject->Release() == 0)
        delete pObject;
}

/// What a typed literal names, or else the text itself.
std::unique_ptr<IValue> NewObject(const std::string& text) {
    auto& factory = Utilities::Singleton<ValueFactory>::Instance();
    std::unique_ptr<IValue> object =
        factory.CanCreate(text) ? factory.CreateFromExpression(text) : nullptr;
    if (object == nullptr)
        object = std::make_unique<TypedValue<std::string>>(text);
    return object;
}

const ITypedValue<std::string>* FindText(const IValue* object) {
    return dynamic_cast<const ITypedValue<std::string>*>(object);
}

} // namespace

Value::Value(const std::string& text) {
    *this = text;
}

Value::Value(const Value& other) : IObject(), IInterface() {
    *this = other;
}

Value::~Value() {
    ReleaseHolder(m_pObject);
}

Value& Value::operator=(const Value& other) {
    // Two values that compare equal are left as they are, whatever their types: options keep the
    // type that they were made with. Taking the other's object always would be simpler and wrong.
    if (this != &other &&
        (IsGreater(m_pObject, other.m_pObject) || IsGreater(other.m_pObject, m_pObject)))
        Set(other.m_pObject);
    return *this;
}

Value& Value::operator=(const std::string& text) {
    const ITypedValue<std::string>* const held = FindText(m_pObject);
    const bool isSameText = held != nullptr && held->IsEqual(text);
    if (!isSameText && !ReadKeepingType(text))
        Set(NewObject(text).release());
    return *this;
}

bool Value::operator==(const std::string& text) const {
    if (const ITypedValue<std::string>* const held = FindText(m_pObject))
        return held->IsEqual(text);
    return *this == Value(text);
}

bool Value::operator==(const Value& other) const {
    return !(*this < other) && !(other < *this);
}

bool Value::operator<(const Value& other) const {
    return IsGreater(other.m_pObject, m_pObject);
}

std::string Value::ToString() const {
    std::string text;
    if (m_pObject != nullptr)
        m_pObject->ToString(text);
    return text;
}

void Value::Set(IValue* pObject) {
    if (pObject != nullptr)
        pObject->AddRef();
    ReleaseHolder(std::exchange(m_pObject, pObject));
}

void Value::RaiseFromGetRef() {
    Utilities::Raise(incompatibleType,
                     {"src/Modules/xFramework/Core/Classes/Value", 122, "Core::Value::GetRef"});
}

void Value::RaiseFromGetMutableRef() {
    Utilities::Raise(incompatibleType, {"src/Modules/xFramework/Core/Classes/Value", 133,
                                        "Core::Value::GetMutableRef"});
}

void Value::MakeUnique() {
    if (m_pObject->GetRefCount() >= 2)
        Set(m_pObject->Clone().release());
}

bool Value::ReadKeepingType(const std::string& text) {
    if (m_pObject == nullptr)
        return false;
    MakeUnique();
    return m_pObject->FromString(text);
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
    return out << value.ToString();
}

} // namespace Core
