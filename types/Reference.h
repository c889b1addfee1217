// SPDX-License-Identifier: MIT
#pragma once

#include "types/RuntimeFailure.h"

#include <concepts>
#include <cstddef>
#include <memory>
#include <utility>

namespace kel {

/// A counted reference to an object, or a null reference. Using a null reference is failure 91 "Object variable or With
/// block variable not set".
template <class T>
class Reference {
public:
    Reference() noexcept = default;
    /// A null reference.
    Reference(std::nullptr_t) noexcept {}
    /// To an object that may have other references.
    template <class U>
    requires std::convertible_to<U*, T*> Reference(std::shared_ptr<U> object)
    noexcept : object_(std::move(object)) {}
    /// To an object of a derived class.
    template <class U>
    requires std::convertible_to<U*, T*> Reference(const Reference<U>& other)
    noexcept : object_(other.shared()) {}

    /// Whether it is null, and the opposite as a condition.
    [[nodiscard]] bool isNothing() const noexcept { return object_ == nullptr; }
    explicit operator bool() const noexcept { return !isNothing(); }

    /// The object; failure 91 for a null reference.
    T* operator->() const { return &**this; }
    T& operator*() const
    {
        if (!object_)
            throw RuntimeFailure(FailureCode::ObjectNotSet);
        return *object_;
    }

    /// The same as a pointer of the standard library; null for a null reference.
    [[nodiscard]] const std::shared_ptr<T>& shared() const noexcept { return object_; }

    friend bool operator==(const Reference&, const Reference&) noexcept = default;

private:
    std::shared_ptr<T> object_;
};

/// A new object with its first reference.
template <class T, class... Arguments>
[[nodiscard]] Reference<T> makeReference(Arguments&&... arguments)
{
    return std::make_shared<T>(std::forward<Arguments>(arguments)...);
}

} // namespace kel
