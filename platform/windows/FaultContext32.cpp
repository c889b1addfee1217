// SPDX-License-Identifier: MIT
// Registers and frames of x86.
#if !defined(_WIN64)

#include "platform/windows/FaultContext.h"

#include <cstring>

// The arguments are the code in EDX, the failing statement in ECX and its stack pointer in EAX. The stub keeps them in
// its frame, which informs the unwinder:
//
//     ESP + 0  code, the argument of the call
//         + 8  ESP   at the failing statement: the frame's address
//         +12  EIP   of the failing statement itself, as after an interrupt
//
// DW_CFA_def_cfa_expression (0x0F): what stands at ESP (DW_OP_breg4, 0x74) + 8, fetched (DW_OP_deref, 0x06).
// DW_CFA_expression (0x10): register 8, EIP, is kept at ESP + 12.
asm(R"(
    .text
    .globl  _kelFaultStub
    .def    _kelFaultStub; .scl 2; .type 32; .endef
_kelFaultStub:
    .cfi_startproc
    .cfi_signal_frame
    pushl   %ecx
    .cfi_adjust_cfa_offset 4
    pushl   %eax
    .cfi_adjust_cfa_offset 4
    subl    $4, %esp
    .cfi_adjust_cfa_offset 4
    pushl   %edx
    .cfi_adjust_cfa_offset 4
    .cfi_escape 0x0f, 3, 0x74, 8, 0x06
    .cfi_escape 0x10, 8, 2, 0x74, 12
    call    _kelThrowFault
    nop
    .cfi_endproc
)");

extern "C" void kelFaultStub();

namespace kel {

namespace {

/// Above the stub's frames, to spare.
constexpr DWORD kGap = 256;
/// Below a way back, to spare.
constexpr DWORD kRoom = 4096;
/// Single steps, and strings that go backwards.
constexpr DWORD kOddFlags = 0x500;

// Within the image of FXSAVE.
constexpr std::size_t kStatusAt = 2;
constexpr std::size_t kTagsAt = 4;
constexpr std::size_t kMxCsrAt = 24;
constexpr DWORD kNumericFlags = 0x3F;

DWORD aligned(DWORD stack)
{
    return stack & ~DWORD{15};
}

} // namespace

std::uintptr_t placeOf(const CONTEXT& context) noexcept
{
    return context.Eip;
}

void throwAtStatement(const EXCEPTION_POINTERS& fault, std::uint32_t code) noexcept
{
    CONTEXT& context = *fault.ContextRecord;
    DWORD eip = context.Eip;
    DWORD esp = context.Esp;
    if (isLostCall(fault)) {
        std::memcpy(&eip, reinterpret_cast<const void*>(esp), sizeof eip);
        --eip; // within the call: what follows it may belong to another block
        esp += sizeof eip;
    }
    context.Ecx = eip;
    context.Eax = esp;
    context.Edx = code;
    context.Esp = aligned(esp - kGap);
    context.Eip = reinterpret_cast<DWORD>(&kelFaultStub);
    context.EFlags &= ~kOddFlags;
    clearNumericStatus(context);
}

void continueAtWayBack(CONTEXT& context, detail::WayBack& place) noexcept
{
    context.Ecx = reinterpret_cast<DWORD>(&place);
    context.Esp = aligned(reinterpret_cast<DWORD>(&place) - kRoom) - sizeof(DWORD);
    context.Eip = reinterpret_cast<DWORD>(&kelTakeWayBack);
    context.EFlags &= ~kOddFlags;
    clearNumericStatus(context);
}

void clearNumericStatus(CONTEXT& context) noexcept
{
    // The same registers in two images: that of FNSAVE, and that of FXSAVE.
    constexpr DWORD kEmpty = 0xFFFF;
    context.FloatSave.StatusWord &= ~kEmpty;
    context.FloatSave.TagWord |= kEmpty;
    BYTE* const extended = context.ExtendedRegisters;
    std::memset(extended + kStatusAt, 0, sizeof(WORD));
    extended[kTagsAt] = 0;
    DWORD mxCsr = 0;
    std::memcpy(&mxCsr, extended + kMxCsrAt, sizeof mxCsr);
    mxCsr &= ~kNumericFlags;
    std::memcpy(extended + kMxCsrAt, &mxCsr, sizeof mxCsr);
}

} // namespace kel

#endif
