// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApi.h"

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kel::sekonic_usb_test {

/// The maker's library as a script: it notes every call with its arguments, and answers what the test has laid out.
/// Without a script it is a reader that is ready, with a sheet of 200 rows in its transport.
class FakeOmrApi final : public OmrApi {
public:
    std::vector<std::string> calls;

    /// Results of the next calls of a function; after them, and without any, the function's usual result.
    std::map<std::string, std::deque<Int32>> results;

    /// A call of this function fails at run time.
    std::map<std::string, RuntimeFailure> failures;

    /// Hears of each call, before it returns.
    std::function<void(const std::string& function)> onCall;

    Int32 readingMethod[2] = {3, 0};
    Int32 feedMode[2] = {0, 0};
    Int32 columns = 48;
    Int32 barcodeUnit = 1;

    /// Rows and columns that a side comes back with, if they are not those that were asked for, and the byte of a cell.
    std::optional<Int32> deliveredRows[2];
    std::optional<Int32> deliveredColumns[2];
    std::function<Byte(Int32 side, Int32 index)> markOf = [](Int32, Int32) { return Byte{0}; };
    /// How many bytes `OMR_GetMarks` writes.
    Int32 bytesWritten = 9600;

    Int32 readCount = 0;
    Int32 settingCount = 0;
    std::vector<std::string> barcodes;
    std::optional<Int32> barcodeLength;

    Int32 OMR_OpenDeviceUSB() override { return call("OMR_OpenDeviceUSB", {}, 0); }
    Int32 OMR_CloseDevice() override { return call("OMR_CloseDevice", {}, 1); }
    Int32 OMR_GetLastError() override { return call("OMR_GetLastError", {}, 0); }

    Int32 OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2) override
    {
        lVal1 = readingMethod[0];
        lVal2 = readingMethod[1];
        return call("OMR_GetReadingMethod", {}, 1);
    }

    Int32 OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2) override
    {
        return call("OMR_SetReadingMethod", {lMethod, lVal2}, 1);
    }

    Int32 OMR_GetNumberOfColumnsToRead() override { return call("OMR_GetNumberOfColumnsToRead", {}, columns); }

    Int32 OMR_SetNumberOfColumnsToRead(Int32 lCount) override
    {
        return call("OMR_SetNumberOfColumnsToRead", {lCount}, 1);
    }

    Int32 OMR_SetBackSensorUnit(Int32 lOn) override { return call("OMR_SetBackSensorUnit", {lOn}, 1); }

    Int32 OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2) override
    {
        lVal1 = feedMode[0];
        lVal2 = feedMode[1];
        return call("OMR_GetSheetFeedMode", {}, 1);
    }

    Int32 OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2) override
    {
        return call("OMR_SetSheetFeedMode", {lVal1, lVal2}, 1);
    }

    Int32 OMR_FeedSheet() override { return call("OMR_FeedSheet", {}, 0); }

    Int32 OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst) override
    {
        const Int32 result = call("OMR_GetMarks", {lSide, uRead.lThreshold, uRead.lRows, uRead.lCols}, 1);
        for (Int32 i = 0; i < bytesWritten; ++i)
            bFirst[i] = markOf(lSide, i + 1);
        uRead.lRows = deliveredRows[lSide].value_or(uRead.lRows);
        uRead.lCols = deliveredColumns[lSide].value_or(uRead.lCols);
        return result;
    }

    Int32 OMR_EjectSheet(Int32 lOutlet) override { return call("OMR_EjectSheet", {lOutlet}, 1); }
    Int32 OMR_GetBarcodeReaderUnit() override { return call("OMR_GetBarcodeReaderUnit", {}, barcodeUnit); }
    Int32 OMR_SetBarcodeReaderUnit(Int32 lOn) override { return call("OMR_SetBarcodeReaderUnit", {lOn}, 1); }

    Int32 OMR_SetBarCodeArea(SRBarcodeArea& uArea) override
    {
        return call("OMR_SetBarCodeArea", {uArea.lStart, uArea.lLength}, 1);
    }

    Int32 OMR_SetBarCodeReadType(Int32 lMask) override { return call("OMR_SetBarCodeReadType", {lMask}, 1); }

    Int32 OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn) override
    {
        return call("OMR_SetBarCodeCheckDigit", {bType, lOn}, 1);
    }

    Int32 OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount) override
    {
        lReadCount = readCount;
        lSettingCount = settingCount;
        return call("OMR_GetBarcodeInfo", {}, 1);
    }

    Int32 OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst) override
    {
        const Int32 result = call("OMR_GetBarcodeData", {lIndex, bBcType, lDataLen}, 1);
        const auto place = static_cast<std::size_t>(lIndex - 1);
        const std::string text = place < barcodes.size() ? barcodes[place] : std::string();
        for (std::size_t i = 0; i < text.size(); ++i)
            bFirst[i] = static_cast<Byte>(text[i]);
        bBcType = 0x55;
        lDataLen = barcodeLength.value_or(static_cast<Int32>(text.size()));
        return result;
    }

    Int32 OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird) override
    {
        return call("OMR_SetPrintOrder", {lFirst, lSecond, lThird}, 1);
    }

    Int32 OMR_SetPrintPosition(Int32 lPosition) override { return call("OMR_SetPrintPosition", {lPosition}, 1); }

    Int32 OMR_SetPrintString(Int32 lLine, const char* sText) override
    {
        return call("OMR_SetPrintString", {lLine}, 1, std::string(" '") + sText + "'");
    }

private:
    Int32 call(const std::string& function, const std::vector<Int32>& arguments, Int32 usual,
               const std::string& text = {})
    {
        std::string line = function;
        for (const Int32 argument : arguments)
            line += ' ' + std::to_string(argument);
        calls.push_back(line + text);
        if (const auto failure = failures.find(function); failure != failures.end())
            throw failure->second;
        if (onCall)
            onCall(function);
        std::deque<Int32>& next = results[function];
        if (next.empty())
            return usual;
        const Int32 result = next.front();
        next.pop_front();
        return result;
    }
};

} // namespace kel::sekonic_usb_test
