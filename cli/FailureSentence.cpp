#include "cli/FailureSentence.h"

#include "types/Text.h"

namespace kel {

std::string failureSentence(const ReportedFailure& failure)
{
    std::string text;
    if (!failure.title.empty())
        text += failure.title + ": ";
    // Messages for a box carry line ends and tabs of their own.
    for (const char character : failure.description) {
        const bool blank = character == '\r' || character == '\n' || character == '\t' || character == ' ';
        if (!blank)
            text += character;
        else if (!text.ends_with(' '))
            text += ' ';
    }
    text += " (";
    if (failure.number != 0)
        text += CStr(failure.number) + ", ";
    return validUtf8(text + failure.source + ")");
}

} // namespace kel
