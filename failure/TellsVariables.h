// SPDX-License-Identifier: MIT
#pragma once

/// What an object that works for a procedure tells of the procedure's variables, which it holds: in a dump they stand
/// among the procedure's own, without the underscore at their end. Nothing is done with them unless a dump is built.
#define KEL_TELLS(...)                                                                                                 \
    template <class Lines>                                                                                             \
    void tellVariables(Lines& kelLines) const                                                                          \
    {                                                                                                                  \
        kelLines.add(#__VA_ARGS__, __VA_ARGS__);                                                                       \
    }
