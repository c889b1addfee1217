#include "tests/support/FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>

namespace kel::test {

namespace {

thread_local constinit int granted = 0;
thread_local constinit int failing = 0;
thread_local constinit bool failsInHandler = false;

/// Whether the allocation that is asked for is one of those that fail.
bool fails() noexcept
{
    if (failsInHandler && std::current_exception()) {
        failsInHandler = false;
        return true;
    }
    if (failing == 0)
        return false;
    if (granted > 0) {
        --granted;
        return false;
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
}

void FailingAllocation::armForHandlers()
{
    failsInHandler = true;
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
