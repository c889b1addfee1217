// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

namespace kel {

/// The private part of a public class: a value whose type only the class's own source file knows, so that it can change
/// without rebuilding hosts. A copy has a value of its own.
template <class T>
class Hidden {
public:
    Hidden() : value_(std::make_unique<T>()) {}
    explicit Hidden(T value) : value_(std::make_unique<T>(std::move(value))) {}
    Hidden(const Hidden& other) : value_(std::make_unique<T>(*other.value_)) {}
    Hidden& operator=(const Hidden& other)
    {
        *value_ = *other.value_;
        return *this;
    }
    ~Hidden() = default;

    T& operator*() { return *value_; }
    const T& operator*() const { return *value_; }
    T* operator->() { return value_.get(); }
    const T* operator->() const { return value_.get(); }

private:
    std::unique_ptr<T> value_;
};

} // namespace kel
