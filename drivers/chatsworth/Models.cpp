// SPDX-License-Identifier: MIT
#include "drivers/chatsworth/Models.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

constexpr Byte kBell = 0x07;

using enum SheetStartCT;

constexpr ModelCT kModels[] = {
    // model, start of a sheet, cancellable, probed, refusal, set-up without and with the feeder
    {kelReaderTypeChatsworthOMR1100, None, true, true, {}, {}, {}},
    {kelReaderTypeChatsworthOMR2000, Byte11, false, true, kBell, {}, {}},
    {kelReaderTypeChatsworthALSAccelScanOMR, Framed, true, true, {}, {}, {}},
    {kelReaderTypeChatsworthACF200, Feed, true, true, {}, SetUpCT{"SF", "HCD"}, SetUpCT{"SL", "HCE"}},
    {kelReaderTypeChatsworthACP200, Feed, true, false, {}, SetUpCT{"SF", "FD"}, SetUpCT{"SL", "HCE"}},
    // Driven as an EZData; its number is still known to the reading.
    {kelReaderTypeChatsworthACF100, Framed, true, true, {}, {}, {}},
};

constexpr ModelCT kOther = {kelReaderTypeNone, None, false, true, {}, {}, {}};

} // namespace

const ModelCT& modelCT(kelReaderType eReaderType)
{
    const auto* row = std::ranges::find(kModels, eReaderType, &ModelCT::type);
    return row == std::end(kModels) ? kOther : *row;
}

} // namespace kel
