// SPDX-License-Identifier: MIT
#pragma once

#include "failure/ErrorReport.h"
#include "strings/VBLMRTSModule.h"

#include <memory>
#include <string>

namespace kel {

/// The one route of all failure reports: to the host's error object if one is registered, to a message box if not.
/// Gives what `RaiseError` gave, narrowed to 16 bits, and 0 on the message box path. Never fails.
Int16 DisplayError(ErrorReport report);

/// Registers the host's error object for the whole process; nothing switches back to message boxes.
/// True if an object is set now.
Boolean setErrorObject(std::shared_ptr<ErrorObject> object);
/// Where the reports of the calling thread go: to the host's object, unless the thread has a taker of its own
/// (`ThreadReports`).
[[nodiscard]] std::shared_ptr<ErrorObject> errorObject();

/// Reports a fault of the reader or the link that a driver has detected: type 2, without an error number.
void reportReaderFault(const char* source, std::string text, std::string title);
void reportReaderFault(const char* source, TextNumber text, TextNumber title);

/// The same under a number: the reader's own code, or the number of the message, which is the first of a text that is
/// put together from several.
void reportNumberedFault(const char* source, Int32 number, std::string text, std::string title);
void reportNumberedFault(const char* source, TextNumber message, TextNumber title);

} // namespace kel
