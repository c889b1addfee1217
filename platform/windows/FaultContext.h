// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WayBackPlace.h"

#include <cstdint>
#include <windows.h>

namespace kel {

/// The code of the innermost of an exception's records.
[[nodiscard]] std::uint32_t innermostCode(const EXCEPTION_RECORD& record) noexcept;

/// The statement at which an exception came up.
[[nodiscard]] std::uintptr_t placeOf(const CONTEXT& context) noexcept;

/// Whether the exception is a call to an address that is no code.
[[nodiscard]] bool isLostCall(const EXCEPTION_POINTERS& fault) noexcept;

/// Sends the thread on at a stub whose frame looks like that of an interrupt, with the failing statement, or the one
/// that called into nowhere, below it: what `kelThrowFault` throws from there unwinds as if the statement had thrown
/// it.
void throwAtStatement(const EXCEPTION_POINTERS& fault, std::uint32_t code) noexcept;

/// Sends the thread on at a way back, on the stack that is free there.
void continueAtWayBack(CONTEXT& context, detail::WayBack& place) noexcept;

/// A numeric exception of the x87 comes up again at the next statement that computes, unless its status is cleared.
void clearNumericStatus(CONTEXT& context) noexcept;

} // namespace kel

/// Throws what the filter makes of a code.
extern "C" [[noreturn]] void kelThrowFault(std::uint32_t code);
/// Goes the way back at last.
extern "C" [[noreturn]] void __fastcall kelTakeWayBack(kel::detail::WayBack* place);
