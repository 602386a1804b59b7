#include "Modules/xFramework/Core/Classes/MetaType.h"

#include "Modules/xFramework/Utilities/Singleton.h"

namespace CoreTypes {

namespace {

template <typename... ElementTypes>
const IMetaType* FindAmong(const Core::IValue* object) {
    const IMetaType* const metaTypes[] = {
        &Utilities::Singleton<MetaType<ElementTypes>>::Instance()...};
    for (const IMetaType* const metaType : metaTypes) {
        if (metaType->Describes(object))
            return metaType;
    }
    return nullptr;
}

} // namespace

const IMetaType* FindMetaType(const Core::IValue* object) {
    return FindAmong<std::string, Core::Int8, Core::UInt8, Core::Int16, Core::UInt16, Core::Int,
                     Core::UInt32, Core::Long, Core::Int64, Core::UInt64, double, bool>(object);
}

} // namespace CoreTypes
