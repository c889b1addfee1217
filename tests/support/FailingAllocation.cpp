// SPDX-License-Identifier: MIT
#include "tests/support/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

namespace kel::test {

namespace {

thread_local constinit int granted = 0;
thread_local constinit int failing = 0;
thread_local constinit bool failsInHandler = false;
thread_local constinit const void* dealtWith = nullptr; // when that was asked for

/// The exception that is being dealt with, to be told from others; null when there is none.
const void* currentException() noexcept
{
    const std::exception_ptr current = std::current_exception();
    const void* object = nullptr;
    static_assert(sizeof object == sizeof current);
    std::memcpy(&object, &current, sizeof object);
    return object;
}

/// Whether the allocation that is asked for is one of those that fail.
bool fails() noexcept
{
    bool result = false;
    if (failsInHandler && currentException() != nullptr && currentException() != dealtWith) {
        failsInHandler = false;
        result = true;
    }
    if (failing == 0)
        return result;
    if (granted > 0) {
        --granted;
        return result;
    }
    --failing;
    return true;
}

void* allocate(std::size_t size) noexcept
{
    return fails() ? nullptr : std::malloc(size == 0 ? 1 : size);
}

void* allocateOrThrow(std::size_t size)
{
    if (void* const place = allocate(size))
        return place;
    throw std::bad_alloc();
}

} // namespace

FailingAllocation::FailingAllocation(int first, int count)
{
    arm(first, count);
}

FailingAllocation::~FailingAllocation()
{
    disarm();
}

void FailingAllocation::arm(int first, int count)
{
    granted = first - 1;
    failing = count;
}

void FailingAllocation::disarm()
{
    failing = 0;
    failsInHandler = false;
    dealtWith = nullptr;
}

void FailingAllocation::armForHandlers()
{
    failsInHandler = true;
    dealtWith = currentException();
}

} // namespace kel::test

void* operator new(std::size_t size)
{
    return kel::test::allocateOrThrow(size);
}

void* operator new[](std::size_t size)
{
    return kel::test::allocateOrThrow(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return kel::test::allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return kel::test::allocate(size);
}

void operator delete(void* place) noexcept
{
    std::free(place);
}

void operator delete[](void* place) noexcept
{
    std::free(place);
}

void operator delete(void* place, std::size_t) noexcept
{
    std::free(place);
}

void operator delete[](void* place, std::size_t) noexcept
{
    std::free(place);
}

void operator delete(void* place, const std::nothrow_t&) noexcept
{
    std::free(place);
}

void operator delete[](void* place, const std::nothrow_t&) noexcept
{
    std::free(place);
}
