#include "drivers/common/Dialogue.h"

#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

void openLine(ReaderContract& oReader, std::optional<Int16> iPort)
{
    oReader.fComm().mscComm().Handshaking(oReader.FlowControl());
    oReader.fComm().mscComm().CommPort(iPort ? *iPort : oReader.Port());
    oReader.fComm().mscComm().Settings(CStr(oReader.BaudRate()) + "," + oReader.Parity() + "," +
                                       CStr(oReader.DataBits()) + "," + CStr(oReader.StopBits()));
    oReader.fComm().mscComm().PortOpen(True);
}

Wait waitForReply(ReaderContract& oReader, WaitRules rules)
{
    if (rules.timed)
        oReader.fComm().tmrScan().Enabled(True);
    while (oReader.fComm().mscComm().InBufferCount() < rules.minimumCount) {
        DoEvents();
        if (rules.cancellable && oReader.CancelScan())
            return Wait::Cancelled;
        if (rules.timed && !oReader.fComm().tmrScan().Enabled())
            return Wait::TimedOut;
    }
    if (rules.timed)
        oReader.fComm().tmrScan().Enabled(False);
    return Wait::Reply;
}

void drainInput(ReaderContract& oReader)
{
    while (oReader.fComm().mscComm().InBufferCount() > 0)
        static_cast<void>(oReader.fComm().mscComm().Input());
}

void drainInputWithPauses(ReaderContract& oReader)
{
    while (oReader.fComm().mscComm().InBufferCount() > 0) {
        static_cast<void>(oReader.fComm().mscComm().Input());
        if (oReader.fComm().mscComm().InBufferCount() == 0)
            Sleep(oReader.SleepTime());
    }
}

Byte takeByte(ReaderContract& oReader, SourceLocation where)
{
    const std::string taken = oReader.fComm().mscComm().Input();
    if (taken.empty())
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange, where);
    return static_cast<Byte>(taken.front());
}

std::string collectText(ReaderContract& oReader, CollectRules rules)
{
    oReader.fComm().mscComm().InputLen(1);
    std::string text;
    for (Int32 taken = 0; taken < rules.mostCharacters && oReader.fComm().mscComm().InBufferCount() > 0; ++taken) {
        text += rules.asBytes ? Chr(takeByte(oReader)) : oReader.fComm().mscComm().Input();
        if (rules.pauseWhenEmpty && oReader.fComm().mscComm().InBufferCount() == 0)
            Sleep(oReader.SleepTime());
    }
    return text;
}

} // namespace kel
