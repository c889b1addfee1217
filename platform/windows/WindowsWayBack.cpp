// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsWayBack.h"

#include "platform/windows/ThreadSlot.h"

extern "C" EXCEPTION_DISPOSITION kelWayBackHandler(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                                   void* dispatcher);

#if defined(_WIN64)
// A frame with a handler. The arguments are a function in RCX and its argument in RDX.
asm(R"(
    .text
    .globl  kelCallWithHandler
    .def    kelCallWithHandler; .scl 2; .type 32; .endef
    .seh_proc kelCallWithHandler
kelCallWithHandler:
    .seh_handler kelWayBackHandler, @except
    subq    $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movq    %rcx, %rax
    movq    %rdx, %rcx
    call    *%rax
    nop
    addq    $40, %rsp
    ret
    .seh_endproc
)");

extern "C" void kelCallWithHandler(void (*run)(void*), void* what);
#endif

namespace kel::detail {

namespace {

const ThreadSlot& slot() noexcept
{
    static const ThreadSlot one;
    return one;
}

EXCEPTION_REGISTRATION_RECORD*& handlers() noexcept
{
    return reinterpret_cast<NT_TIB*>(::NtCurrentTeb())->ExceptionList;
}

} // namespace

WayBack* readWaysBack() noexcept
{
    return reinterpret_cast<WayBack*>(slot().read());
}

void writeWaysBack(WayBack* innermost) noexcept
{
    slot().write(reinterpret_cast<std::uintptr_t>(innermost));
}

SystemsWay::SystemsWay(WayBack& place) noexcept : place_(place)
{
#if defined(_WIN64)
    place_.handlers = handlers();
#else
    place_.handler.Next = handlers();
    place_.handler.Handler = reinterpret_cast<decltype(place_.handler.Handler)>(&kelWayBackHandler);
    handlers() = &place_.handler;
#endif
}

SystemsWay::~SystemsWay()
{
#if !defined(_WIN64)
    handlers() = place_.handler.Next;
#endif
}

void SystemsWay::call(void (*run)(void*), void* what)
{
#if defined(_WIN64)
    kelCallWithHandler(run, what);
#else
    run(what);
#endif
}

void SystemsWay::leave(WayBack& place) noexcept
{
#if defined(_WIN64)
    handlers() = place.handlers;
#else
    // It may come back with other registers than it was called with.
    void* registration = &place.handler;
    asm volatile("pushl %%ebp\n\t"
                 "pushl $0\n\t"
                 "pushl $0\n\t"
                 "pushl $1f\n\t"
                 "pushl %0\n\t"
                 "call _RtlUnwind@16\n"
                 "1:\n\t"
                 "popl %%ebp"
                 : "+a"(registration)
                 :
                 : "ebx", "ecx", "edx", "esi", "edi", "memory", "cc");
#endif
    maskNumericFaults();
}

void forgetHandlersWithin(WayBack& place) noexcept
{
#if defined(_WIN64)
    handlers() = place.handlers;
#else
    handlers() = &place.handler;
#endif
}

} // namespace kel::detail
