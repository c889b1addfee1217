// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"

#include <oaidl.h>

namespace kel::com {

// Arrays as Automation has them. An array that is not dimensioned is no array at all there: a null pointer.

/// New arrays with the bounds of the native ones; of 16-bit numbers, and of texts of a sheet.
[[nodiscard]] SAFEARRAY* safeArrayOf(const MarkArray& marks);
[[nodiscard]] SAFEARRAY* safeArrayOf(const PageArray& pages);
[[nodiscard]] SAFEARRAY* safeArrayOf(const TextArray& texts);

/// What a host's array holds. Its elements may be of any type that converts to a 16-bit number or a text; 13 "Type
/// mismatch" or 6 "Overflow" if they do not, 9 "Subscript out of range" for a wrong number of dimensions.
/// Marks are kept by their numbers: what a host has put below row 1 or column 1 is not looked at.
[[nodiscard]] MarkArray markArrayOf(const SAFEARRAY* array);
[[nodiscard]] PageArray pageArrayOf(const SAFEARRAY* array);
[[nodiscard]] TextArray textArrayOf(const SAFEARRAY* array);
/// The bytes of an array of bytes.
[[nodiscard]] std::string bytesOf(const SAFEARRAY* array);

/// A host's array that was made here and comes back changed; destroyed with its owner.
class OwnedArray {
public:
    template <class Native>
    explicit OwnedArray(const Native& native) : array_(safeArrayOf(native))
    {
    }
    OwnedArray(const OwnedArray&) = delete;
    OwnedArray& operator=(const OwnedArray&) = delete;
    ~OwnedArray() { SafeArrayDestroy(array_); }

    [[nodiscard]] SAFEARRAY** place() noexcept { return &array_; }
    [[nodiscard]] const SAFEARRAY* get() const noexcept { return array_; }

private:
    SAFEARRAY* array_;
};

} // namespace kel::com
