#pragma once

#include "Modules/xFramework/Core/Classes/TypedValue.h"

/// An int value object that counts its living like.
class LiveValue : public Core::TypedValue<Core::Int> {
public:
    explicit LiveValue(Core::Int element) : TypedValue(element) { ++Count(); }
    ~LiveValue() override { --Count(); }

    static int Alive() { return Count(); }

private:
    static int& Count() {
        static int count = 0;
        return count;
    }
};
