#pragma once

// Public, stable within a major version. The first access may come from any thread; what T allows
// after that is T's matter. Singleton<T> and SingletonWrapper<T> hold two different objects.

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

/// Access to the process-wide instance of T, which the first access creates and nobody destroys.
template <typename T>
class SingletonWrapper {
public:
    /// Makes sure that the instance exists, and returns it.
    T& accessObject() const {
        static auto* const instance = new T;
        return *instance;
    }

    T* operator->() const { return &accessObject(); }
};
