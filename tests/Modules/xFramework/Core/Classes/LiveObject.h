#pragma once

#include "Modules/xFramework/Core/Classes/IInterface.h"

/// Counts its living like. A test that uses it ends with none.
class LiveObject : public virtual Core::IInterface {
public:
    LiveObject() { ++Count(); }
    ~LiveObject() override { --Count(); }

    static int Alive() { return Count(); }

private:
    static int& Count() {
        static int count = 0;
        return count;
    }
};
