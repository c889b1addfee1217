#include "platform/windows/WindowsFaultCapture.h"

#include "platform/windows/ComponentInstance.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

// On entry the stack holds what the processor leaves there at an interrupt:
//
//     RSP + 0  RIP   just behind the beginning of the failing statement
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

std::atomic<FaultFilter> filterInUse{nullptr};
std::atomic<LPTOP_LEVEL_EXCEPTION_FILTER> unhandledBefore{nullptr};

/// Where a module lies.
struct Image {
    std::uintptr_t begin = 0;
    std::uintptr_t size = 0;

    Image() = default;
    explicit Image(HMODULE module) : begin(reinterpret_cast<std::uintptr_t>(module))
    {
        if (!module)
            return;
        const auto* head = reinterpret_cast<const IMAGE_DOS_HEADER*>(module);
        const auto* image =
            reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + static_cast<std::uintptr_t>(head->e_lfanew));
        size = image->OptionalHeader.SizeOfImage;
    }

    [[nodiscard]] bool holds(std::uintptr_t address) const { return address - begin < size; }
};

Image ownImage;

/// What the processor finds wrong. Exceptions that programs raise, and a stack that is full, are not among them.
bool isFault(DWORD code)
{
    switch (code) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_ARRAY_BOUNDS_EXCEEDED:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_FLT_DENORMAL_OPERAND:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_STACK_CHECK:
    case EXCEPTION_FLT_UNDERFLOW:
    case EXCEPTION_BREAKPOINT:
    case EXCEPTION_SINGLE_STEP: return true;
    default: return false;
    }
}

/// A call to an address that is no code.
bool isLostCall(const EXCEPTION_POINTERS& fault)
{
    const EXCEPTION_RECORD& record = *fault.ExceptionRecord;
    return record.ExceptionCode == static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION) && record.NumberParameters >= 2 &&
           record.ExceptionInformation[1] == fault.ContextRecord->Rip;
}

/// Sends the thread on at the stub; the stub's arguments are the codes.
void redirect(const EXCEPTION_POINTERS& fault)
{
    CONTEXT& context = *fault.ContextRecord;
    // An exception is looked for at the statement before the return address.
    DWORD64 rip = context.Rip + 1;
    DWORD64 rsp = context.Rsp;
    if (isLostCall(fault)) {
        std::memcpy(&rip, reinterpret_cast<const void*>(rsp), sizeof rip);
        rsp += sizeof rip;
    }
    const DWORD64 frame[] = {rip, context.SegCs, context.EFlags, rsp, context.SegSs};
    // The stub calls with a stack that is aligned.
    constexpr DWORD64 kGap = 256;
    context.Rsp = ((rsp - kGap) & ~DWORD64{15}) - sizeof frame;
    std::memcpy(reinterpret_cast<void*>(context.Rsp), frame, sizeof frame);
    const EXCEPTION_RECORD* nested = fault.ExceptionRecord->ExceptionRecord;
    context.Rip = reinterpret_cast<DWORD64>(&kelFaultStub);
    context.Rcx = fault.ExceptionRecord->ExceptionCode;
    context.Rdx = nested ? nested->ExceptionCode : 0;
    context.EFlags &= ~DWORD{0x500}; // no single step, and strings go forward
    faultTaken();
}

LONG CALLBACK onException(EXCEPTION_POINTERS* fault)
{
    if (!isFault(fault->ExceptionRecord->ExceptionCode) || !filterInUse.load() || !componentRuns())
        return EXCEPTION_CONTINUE_SEARCH;
    const std::uintptr_t place = fault->ContextRecord->Rip;
    if (!ownImage.holds(place) && !isLostCall(*fault))
        return EXCEPTION_CONTINUE_SEARCH;
    redirect(*fault);
    return EXCEPTION_CONTINUE_EXECUTION;
}

LONG WINAPI onUnhandled(EXCEPTION_POINTERS* fault)
{
    if (isFault(fault->ExceptionRecord->ExceptionCode) && filterInUse.load() && componentRuns()) {
        redirect(*fault);
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    const LPTOP_LEVEL_EXCEPTION_FILTER before = unhandledBefore;
    return before ? before(fault) : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

extern "C" [[noreturn, gnu::used]] void kelThrowFault(std::uint32_t code, std::uint32_t nested)
{
    const FaultRecord cause{nested, nullptr};
    if (const FaultFilter filter = filterInUse)
        filter({code, nested != 0 ? &cause : nullptr});
    std::abort();
}

WindowsFaultCapture& WindowsFaultCapture::instance()
{
    static WindowsFaultCapture capture;
    return capture;
}

WindowsFaultCapture::~WindowsFaultCapture()
{
    filterInUse = nullptr;
    if (!vectored_)
        return;
    ::RemoveVectoredExceptionHandler(vectored_);
    const LPTOP_LEVEL_EXCEPTION_FILTER now = ::SetUnhandledExceptionFilter(unhandledBefore);
    if (now != &onUnhandled)
        ::SetUnhandledExceptionFilter(now);
}

void WindowsFaultCapture::install(FaultFilter filter)
{
    const std::lock_guard lock(mutex_);
    filterInUse = filter;
    ownImage = Image(componentInstance());
    if (vectored_)
        ::RemoveVectoredExceptionHandler(vectored_);
    vectored_ = ::AddVectoredExceptionHandler(TRUE, &onException);
    const LPTOP_LEVEL_EXCEPTION_FILTER before = ::SetUnhandledExceptionFilter(&onUnhandled);
    if (before != &onUnhandled)
        unhandledBefore = before;
}

} // namespace kel
