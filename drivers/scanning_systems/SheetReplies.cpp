// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/SheetReplies.h"

#include "types/Text.h"

namespace kel {

Int16 timingMarksSS(std::string_view sReply)
{
    return CInt(Val(sReply.substr(0, 3)));
}

std::string barcodeOfFrameSS(std::string_view frame)
{
    if (frame.starts_with('?'))
        return "?";
    return Mid(frame, 2, CLng(frame.size()) - 2);
}

} // namespace kel
