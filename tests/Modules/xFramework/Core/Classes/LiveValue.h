#pragma once

#include "Modules/xFramework/Core/Classes/TypedValue.h"
#include "tests/Modules/xFramework/Core/Classes/LiveObject.h"

/// An int value object that is counted by LiveObject.
class LiveValue : public Core::TypedValue<Core::Int>, public LiveObject {
public:
    explicit LiveValue(Core::Int element) : TypedValue(element) {}
};
