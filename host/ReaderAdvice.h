// SPDX-License-Identifier: MIT
#pragma once

#include "host/Failure.h"
#include "types/Export.h"
#include "types/Numbers.h"

namespace kel::host {

/// The operators' advice on a report. The table is made from the pages for operators.
struct AdviceRow {
    const char* module; ///< the driver's, "basScantron"; empty for advice on all readers
    Int32 text;         ///< the number of the report's text; 0 for a failure, and for words that have no number
    Int32 failure;      ///< the number of a run-time failure, or 0
    const char* cause;  ///< the cause of the report
    const char* remedy; ///< what the operator can do
};

/// The advice on a report, whatever the language of its text; nullptr if there is none.
[[nodiscard]] KEL_PUBLIC const AdviceRow* adviceOn(const Failure& failure);

} // namespace kel::host
