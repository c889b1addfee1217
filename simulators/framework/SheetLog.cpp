// SPDX-License-Identifier: MIT
#include "simulators/framework/SheetLog.h"

#include "formats/Json.h"
#include "types/LineText.h"

namespace kel {

const char* nameOf(SheetEvent event)
{
    switch (event) {
    case SheetEvent::Fed: return "fed";
    case SheetEvent::Empty: return "empty";
    case SheetEvent::Jammed: return "jammed";
    case SheetEvent::Read: return "read";
    case SheetEvent::Printed: return "printed";
    case SheetEvent::Rejected: return "rejected";
    case SheetEvent::Ejected: return "ejected";
    case SheetEvent::Ended: return "ended";
    }
    return "";
}

std::string toJson(const SheetRecord& record)
{
    Json object;
    object["event"] = nameOf(record.event);
    if (record.sheet != 0)
        object["sheet"] = record.sheet;
    if (!record.text.empty())
        object["text"] = textOfLine(record.text);
    if (record.line != 0)
        object["line"] = record.line;
    if (record.position != 0)
        object["position"] = record.position;
    return object.dump();
}

} // namespace kel
