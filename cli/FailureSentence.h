#pragma once

#include "cli/ScanEvents.h"

#include <string>

namespace kel {

/// A failure as one line for a person: "Initialize Error: the reader does not answer (8020, basScantron.InitReaderST)".
[[nodiscard]] std::string failureSentence(const ReportedFailure& failure);

} // namespace kel
