// SPDX-License-Identifier: MIT
#pragma once

#include <unknwn.h>

#include <utility>

namespace kel::com {

/// A counted pointer to an interface.
template <class T>
class ComPtr {
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}

    /// Takes a reference of its own.
    explicit ComPtr(T* object) noexcept : object_(object)
    {
        if (object_)
            object_->AddRef();
    }

    /// Takes over a reference that the caller has.
    [[nodiscard]] static ComPtr owning(T* object) noexcept
    {
        ComPtr result;
        result.object_ = object;
        return result;
    }

    ComPtr(const ComPtr& other) noexcept : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    ~ComPtr()
    {
        if (object_)
            object_->Release();
    }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Where a call puts a pointer that it gives; lets go of the present one.
    [[nodiscard]] T** out() noexcept
    {
        *this = nullptr;
        return &object_;
    }
    [[nodiscard]] void** outVoid() noexcept { return reinterpret_cast<void**>(out()); }

    /// Gives the reference away.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

/// Another interface of an object, or nothing if it has none such.
template <class To, class From>
[[nodiscard]] ComPtr<To> queryFor(From* object, REFIID iid)
{
    ComPtr<To> result;
    if (object && FAILED(object->QueryInterface(iid, result.outVoid())))
        return nullptr;
    return result;
}

} // namespace kel::com
