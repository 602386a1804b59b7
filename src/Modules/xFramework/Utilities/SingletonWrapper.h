#pragma once

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
