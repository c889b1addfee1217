// SPDX-License-Identifier: MIT
#pragma once

#include "host/Request.h"
#include "reader/clsKELReader.h"
#include "recording/TraceLog.h"

#include <string>

namespace kel::host {

/// The head of a session's transcript: everything that a replay of the session needs. The reader is already set up. A
/// form that was not read from a text is recorded by its sizes; an answer key only if it was read from a text.
[[nodiscard]] TraceLog::Head traceHead(const Request& request, const clsKELReader& reader);

/// The session that a transcript's head describes. UsageError, one sentence with `fileName` and the line's number, for
/// a value that does not fit, and if there is no model. `text` is that of the file.
[[nodiscard]] Request requestOfTranscript(const Transcript& transcript, const std::string& text,
                                          const std::string& fileName);

} // namespace kel::host
