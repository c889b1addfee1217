// SPDX-License-Identifier: MIT
#pragma once

#include "types/RuntimeFailure.h"

#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <utility>

namespace kel::com {

/// A failure that is returned as a result code of COM.
class ComFailure : public std::exception {
public:
    explicit ComFailure(HRESULT code) noexcept : code_(code) {}
    [[nodiscard]] HRESULT code() const noexcept { return code_; }
    [[nodiscard]] const char* what() const noexcept override { return "COM failure"; }

private:
    HRESULT code_;
};

/// Throws a result code that is a failure.
inline void demand(HRESULT code)
{
    if (FAILED(code))
        throw ComFailure(code);
}

/// Throws E_POINTER where a host gave no place for a result.
template <class T>
T& place(T* pointer)
{
    if (!pointer)
        throw ComFailure(E_POINTER);
    return *pointer;
}

/// The result code of a run-time failure, as hosts know it: 0x800A0009 for 9. A number that is a result code itself
/// stays as it is.
[[nodiscard]] HRESULT resultCode(const RuntimeFailure& failure) noexcept;

/// The result code of what is being caught; its text becomes the thread's error information, as coming from `iid`.
[[nodiscard]] HRESULT caughtResult(REFIID iid) noexcept;

/// Runs what a host has called. Nothing is thrown across the boundary: a failure becomes a result code.
template <class Body>
[[nodiscard]] HRESULT atBoundary(REFIID iid, Body&& body) noexcept
{
    try {
        std::forward<Body>(body)();
        return S_OK;
    } catch (...) {
        return caughtResult(iid);
    }
}

/// The run-time failure that a failed call of an object of the host's stands for. Clears the exception's texts.
[[nodiscard]] RuntimeFailure failureOfCall(HRESULT code, EXCEPINFO& exception, const SourceLocation& where);

} // namespace kel::com
