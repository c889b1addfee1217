// SPDX-License-Identifier: MIT
#pragma once

#include "host/Request.h"
#include "reader/clsKELReader.h"
#include "recording/TraceLog.h"

#include <string>

namespace kel::host {

/// The head of a session's transcript: all that it takes to replay the session. The reader is prepared already. Of a
/// form that was not read from a text it has the sizes, and it has answer keys that were.
[[nodiscard]] TraceLog::Head traceHead(const Request& request, const clsKELReader& reader);

/// The session that a transcript's head describes. UsageError, one sentence with `fileName` and the line's number, for
/// a value that does not fit, and if there is no model. `text` is that of the file.
[[nodiscard]] Request requestOfTranscript(const Transcript& transcript, const std::string& text,
                                          const std::string& fileName);

} // namespace kel::host
