// SPDX-License-Identifier: MIT
#include "drivers/common/Dialogue.h"
#include "drivers/scanning_systems/EmulationMode.h"
#include "drivers/scanning_systems/ErrorTexts.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>

namespace kel {

namespace {

constexpr const char* kSendCommand = "KELReader81 - basScanningSystems.SendCommandSS";
constexpr const char* kReturnError = "KELReader81 - basScanningSystems.ReturnErrorSS";

} // namespace

std::string SendCommandSS(ReaderContract& oReader, const std::string& sCmd, Boolean bUseByteArray)
{
    std::string sResult;
    std::string sData;
    std::array<Byte, 1> bDataArr{};
    guarded(kSendCommand, KEL_PARAMETERS(oReader, sCmd, bUseByteArray) + KEL_LOCALS(sData, bDataArr), [&] {
        oReader.fComm().mscComm().Output(sCmd);
        switch (waitForReply(oReader)) {
        case Wait::Cancelled: return;
        case Wait::TimedOut:
            reportReaderFault(kSendCommand, text::kSsQueryUnanswered, text::kNotAnsweringTitle);
            return;
        case Wait::Reply: break;
        }

        oReader.fComm().mscComm().InputLen(1);
        while (oReader.fComm().mscComm().InBufferCount() > 0) {
            if (bUseByteArray) {
                bDataArr[0] = takeByte(oReader);
                sData += CStr(bDataArr[0]);
            } else {
                sData += oReader.fComm().mscComm().Input();
            }
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                Sleep(oReader.SleepTime());
        }
        sResult = sData;
    });
    return sResult;
}

void ReturnErrorSS(ReaderContract& oReader, const std::string& sErr)
{
    std::string sText;
    guarded(kReturnError, KEL_PARAMETERS(oReader, sErr) + KEL_LOCALS(sText), [&] {
        const std::optional<ErrorTextSS> error = errorTextSS(oReader.ReaderType(), iEmulationMode, sErr);
        if (!error)
            return;
        sText = VBLM_RTString(error->text);
        if (error->behindCode)
            sText += sErr + VBLM_RTString(*error->behindCode);
        const ReportedText reported(error->text);
        if (!sText.empty())
            reportReaderFault(kReturnError, sText, "Scanner Error");
    });
}

} // namespace kel
