// SPDX-License-Identifier: MIT
#include "platform/posix/FaultContext.h"

#include <cstdint>

#include <ucontext.h>

namespace kel {

#if defined(__x86_64__)

namespace {

// A bit of the page fault's error code: it was met in fetching an instruction.
constexpr greg_t kInstructionFetch = 0x10;

} // namespace

void moveToCaller(void* context, const void* address)
{
    greg_t* const registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const bool nothingThere = registers[REG_RIP] == static_cast<greg_t>(reinterpret_cast<std::intptr_t>(address)) ||
                              (registers[REG_ERR] & kInstructionFetch) != 0;
    if (!nothingThere)
        return;
    // The call has pushed where it would have gone on. One byte before that is within the call: what follows it
    // may belong to another block of the procedure.
    const auto* const stack = reinterpret_cast<const greg_t*>(registers[REG_RSP]);
    registers[REG_RIP] = *stack - 1;
    registers[REG_RSP] += static_cast<greg_t>(sizeof *stack);
}

#elif defined(__aarch64__)

void moveToCaller(void* context, const void* address)
{
    constexpr int kLinkRegister = 30;
    constexpr std::uint64_t kInstruction = 4;
    mcontext_t& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
    if (machine.pc == static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(address)))
        machine.pc = machine.regs[kLinkRegister] - kInstruction;
}

#else

void moveToCaller(void*, const void*) {}

#endif

} // namespace kel
