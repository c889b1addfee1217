#pragma once

#include "cli/ScanSession.h"
#include "recording/TraceLog.h"

#include <string>

namespace kel {

/// The head of a session's transcript: all that it takes to hold the session again. The reader is prepared already;
/// of the form and of the answer key it is the files' contents, and an empty name is none.
[[nodiscard]] TraceLog::Head traceHead(const ScanRequest& request, const clsKELReader& reader,
                                       const std::string& formFile, const std::string& answerKeyFile);

/// The session that a transcript's head describes. UsageError, one sentence with `fileName` and the line's number, for
/// a value that does not fit, and if there is no model. `text` is that of the file.
[[nodiscard]] ScanRequest requestOfTranscript(const Transcript& transcript, const std::string& text,
                                              const std::string& fileName);

} // namespace kel
