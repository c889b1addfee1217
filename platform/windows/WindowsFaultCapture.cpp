// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsFaultCapture.h"

#include "platform/windows/ComponentInstance.h"
#include "platform/windows/FaultContext.h"
#include "platform/windows/WindowsWayBack.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>

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

/// The flags of an exception's record while the frames are taken down for another handler: EXCEPTION_UNWINDING,
/// EXCEPTION_EXIT_UNWIND, EXCEPTION_TARGET_UNWIND and EXCEPTION_COLLIDED_UNWIND.
constexpr DWORD kUnwindFlags = 0x66;

/// Whether a code is one by which this compiler's run time carries its exceptions through the system's handlers: "GCC"
/// under a byte that says what is going on. These find their own way.
bool isOfThisCompiler(DWORD code)
{
    return (code & 0x20FFFFFF) == 0x20474343;
}

/// Whether a fault is to become an exception of the component's.
bool isOurs()
{
    return filterInUse.load() && componentRuns();
}

void take(std::uint32_t code)
{
    detail::expectFault({code, filterInUse});
    faultTaken();
}

/// What an exception and its report need of the stack, and the least to try it with.
constexpr std::uintptr_t kRoomForReport = std::uintptr_t{128} * 1024;
constexpr std::uintptr_t kLeastRoom = std::uintptr_t{16} * 1024;

std::uintptr_t stackOf(const CONTEXT& context)
{
#if defined(_WIN64)
    return context.Rsp;
#else
    return context.Esp;
#endif
}

/// Whether an exception means that the stack is full. Somebody may as well have raised it who only says so.
bool isFullStack(const EXCEPTION_POINTERS& fault)
{
    if (fault.ExceptionRecord->ExceptionCode != static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW))
        return false;
    const std::uintptr_t stack = stackOf(*fault.ContextRecord);
    MEMORY_BASIC_INFORMATION memory{};
    ::VirtualQuery(reinterpret_cast<const void*>(stack), &memory, sizeof memory);
    return stack - reinterpret_cast<std::uintptr_t>(memory.AllocationBase) < kRoomForReport;
}

/// A full stack is given back as far as to a way back that leaves room for the report, and yet not beyond the host's
/// code. Null if there is none.
detail::WayBack* wayOutOfFullStack(const CONTEXT& context)
{
    for (detail::WayBack* place = detail::innermostWayBack(); place; place = place->outer) {
        const std::uintptr_t room = reinterpret_cast<std::uintptr_t>(place) - stackOf(context);
        if (room >= kRoomForReport || (place->fromHost && room >= kLeastRoom))
            return place;
        if (place->fromHost)
            return nullptr;
    }
    return nullptr;
}

/// False if there is no way out.
bool leaveFullStack(const EXCEPTION_POINTERS& fault)
{
    detail::WayBack* const place = wayOutOfFullStack(*fault.ContextRecord);
    if (!place)
        return false;
    faultTaken();
    place->fault = {innermostCode(*fault.ExceptionRecord), filterInUse};
    continueAtWayBack(*fault.ContextRecord, *place);
    return true;
}

/// Makes an exception of the statement's out of a fault.
void throwOurs(const EXCEPTION_POINTERS& fault)
{
    const std::uint32_t code = innermostCode(*fault.ExceptionRecord);
    take(code);
    throwAtStatement(fault, code);
}

/// A full stack has no room left in which the handlers of a library could be looked for: it is given back first.
LONG CALLBACK onException(EXCEPTION_POINTERS* fault)
{
    if (!isOurs())
        return EXCEPTION_CONTINUE_SEARCH;
    if (isFullStack(*fault))
        return leaveFullStack(*fault) ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
    if (!ownImage.holds(placeOf(*fault->ContextRecord)) && !isLostCall(*fault))
        return EXCEPTION_CONTINUE_SEARCH;
    throwOurs(*fault);
    return EXCEPTION_CONTINUE_EXECUTION;
}

/// What a library's own handlers have not taken. False if it is not the component's; where the system would not let the
/// thread go on, this does not come back.
bool takeFromLibrary(const EXCEPTION_POINTERS& fault)
{
    if (!isOurs() || isFullStack(fault))
        return false;
#if defined(_WIN64)
    throwOurs(fault);
    if ((fault.ExceptionRecord->ExceptionFlags & EXCEPTION_NONCONTINUABLE) != 0)
        ::RtlRestoreContext(fault.ContextRecord, nullptr);
#else
    // There are no tables of a library's frames by which an exception could pass them.
    detail::WayBack* const place = detail::innermostWayBack();
    if (!place)
        return false;
    take(innermostCode(*fault.ExceptionRecord));
    detail::takeWayBack(*place);
#endif
    return true;
}

LONG WINAPI onUnhandled(EXCEPTION_POINTERS* fault)
{
    if (takeFromLibrary(*fault))
        return EXCEPTION_CONTINUE_EXECUTION;
    const LPTOP_LEVEL_EXCEPTION_FILTER before = unhandledBefore;
    return before ? before(fault) : EXCEPTION_CONTINUE_SEARCH;
}

} // namespace

extern "C" [[noreturn, gnu::used]] void kelThrowFault(std::uint32_t code)
{
    if (const FaultFilter filter = filterInUse)
        filter({code, nullptr});
    std::abort();
}

extern "C" [[noreturn, gnu::used]] void __fastcall kelTakeWayBack(detail::WayBack* place)
{
    // The page that warns of the next full stack. Without it that one ends the process.
    static_cast<void>(::_resetstkoflw());
    detail::forgetHandlersWithin(*place);
    detail::takeWayBack(*place);
}

extern "C" [[gnu::used]] EXCEPTION_DISPOSITION kelWayBackHandler(EXCEPTION_RECORD* record, void*, CONTEXT* context,
                                                                 void*)
{
    EXCEPTION_POINTERS fault{record, context};
    const bool isUnwinding = (record->ExceptionFlags & kUnwindFlags) != 0;
    if (isUnwinding || isOfThisCompiler(record->ExceptionCode) || !takeFromLibrary(fault))
        return ExceptionContinueSearch;
    return ExceptionContinueExecution;
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
    detail::goBackInsteadOfTerminating();
}

} // namespace kel
