// SPDX-License-Identifier: MIT
#pragma once

#include "host/Failure.h"
#include "types/Export.h"
#include "types/Numbers.h"

#include <cstddef>

namespace kel::host {

/// What the pages for operators say about a report. The table is made from them.
struct AdviceRow {
    const char* module; ///< the driver's, "basScantron"; empty for what all readers have in common
    Int32 text;         ///< the number of the report's text; 0 for a failure or for literal words
    Int32 failure;      ///< the number of a failure, or 0
    const char* words;  ///< a text without a number
    const char* cause;  ///< what brings the report about
    const char* remedy; ///< what the operator does
};

/// All of them.
extern const AdviceRow kAdviceRows[];
extern const std::size_t kAdviceCount;

/// The advice on a report, in whatever language its text came; nullptr where the pages say nothing.
[[nodiscard]] KEL_PUBLIC const AdviceRow* adviceOn(const Failure& failure);

} // namespace kel::host
