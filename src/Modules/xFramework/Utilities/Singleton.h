#pragma once

namespace Utilities {

/// The process-wide T: created on first use, safely from several threads, and never destroyed.
template <typename T>
class Singleton {
public:
    Singleton() = delete;

    static T& Instance() {
        static auto* const instance = new T;
        return *instance;
    }
};

} // namespace Utilities
