// SPDX-License-Identifier: MIT
// Registers and frames of x86-64.
#if defined(_WIN64)

#include "platform/windows/FaultContext.h"

#include <cstring>

// The arguments are the code in RCX, the failing statement in R8 and its stack pointer in R9. The stub pushes what the
// processor leaves at an interrupt:
//
//     RSP + 0  RIP   just after the beginning of the failing statement
//         + 8  CS
//         +16  EFLAGS
//         +24  RSP   at the failing statement
//         +32  SS
asm(R"(
    .text
    .globl  kelFaultStub
    .def    kelFaultStub; .scl 2; .type 32; .endef
    .seh_proc kelFaultStub
kelFaultStub:
    movl    %ss, %eax
    pushq   %rax
    pushq   %r9
    pushfq
    movl    %cs, %eax
    pushq   %rax
    pushq   %r8
    .seh_pushframe
    subq    $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    call    kelThrowFault
    nop
    .seh_endproc
)");

extern "C" void kelFaultStub();

namespace kel {

namespace {

/// Above the stub's frames, to spare.
constexpr DWORD64 kGap = 256;
/// Below a way back, to spare.
constexpr DWORD64 kRoom = 4096;
/// Single steps, and strings that go backwards.
constexpr DWORD kOddFlags = 0x500;
constexpr DWORD kNumericFlags = 0x3F;

DWORD64 aligned(DWORD64 stack)
{
    return stack & ~DWORD64{15};
}

} // namespace

std::uintptr_t placeOf(const CONTEXT& context) noexcept
{
    return context.Rip;
}

void throwAtStatement(const EXCEPTION_POINTERS& fault, std::uint32_t code) noexcept
{
    CONTEXT& context = *fault.ContextRecord;
    // An exception is looked for at the statement before the return address.
    DWORD64 rip = context.Rip + 1;
    DWORD64 rsp = context.Rsp;
    if (isLostCall(fault)) {
        std::memcpy(&rip, reinterpret_cast<const void*>(rsp), sizeof rip);
        rsp += sizeof rip;
    }
    context.Rcx = code;
    context.R8 = rip;
    context.R9 = rsp;
    context.Rsp = aligned(rsp - kGap);
    context.Rip = reinterpret_cast<DWORD64>(&kelFaultStub);
    context.EFlags &= ~kOddFlags;
    clearNumericStatus(context);
}

void continueAtWayBack(CONTEXT& context, detail::WayBack& place) noexcept
{
    context.Rcx = reinterpret_cast<DWORD64>(&place);
    context.Rsp = aligned(reinterpret_cast<DWORD64>(&place) - kRoom) - sizeof(DWORD64);
    context.Rip = reinterpret_cast<DWORD64>(&kelTakeWayBack);
    context.EFlags &= ~kOddFlags;
    clearNumericStatus(context);
}

void clearNumericStatus(CONTEXT& context) noexcept
{
    context.FltSave.StatusWord = 0;
    context.FltSave.TagWord = 0;
    context.FltSave.MxCsr &= ~kNumericFlags;
    context.MxCsr &= ~kNumericFlags;
}

} // namespace kel

#endif
