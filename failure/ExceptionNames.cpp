// SPDX-License-Identifier: MIT
#include "failure/ExceptionNames.h"

#include <array>
#include <cstdio>

namespace kel {

namespace {

struct ExceptionName {
    std::uint32_t code;
    const char* name;
};

constexpr ExceptionName kNames[] = {
    {0x80000001, "Guard Page Violation"},
    {0x80000002, "Data Type Misalignment"},
    {0x80000003, "Breakpoint"},
    {0x80000004, "Single Step"},
    {0xC0000005, "Access Violation"},
    {0xC0000006, "In Page Error"},
    {0xC0000008, "Invalid Handle"},
    {0xC000001D, "Illegal Instruction"},
    {0xC0000025, "Non Continuable Exception"},
    {0xC0000026, "Invalid Disposition"},
    {0xC000008C, "Array Bounds Exceeded"},
    {0xC000008D, "Float Denormal Operand"},
    {0xC000008E, "Divide By Zero"},
    {0xC000008F, "Floating Point Inexact Result"},
    {0xC0000090, "Invalid Operation"},
    {0xC0000091, "Float Overflow"},
    {0xC0000092, "Float Stack Check"},
    {0xC0000093, "Float Underflow"},
    {0xC0000094, "Integer Divide By Zero"},
    {0xC0000095, "Integer Overflow"},
    {0xC0000096, "Privileged Instruction"},
    {0xC00000FD, "Stack Overflow"},
    {0xC000013A, "Control-C Exit"},
};

} // namespace

std::string exceptionName(std::uint32_t code)
{
    for (const ExceptionName& known : kNames) {
        if (known.code == code)
            return known.name;
    }
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08X", code);
    return std::string("Unknown (&H") + digits.data() + ")";
}

} // namespace kel
