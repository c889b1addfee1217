// SPDX-License-Identifier: MIT
#include "drivers/common/Dialogue.h"

#include "platform/Platform.h"
#include "types/Text.h"

#include <concepts>

namespace kel {

namespace {

template <std::invocable Take>
void collect(ReaderContract& oReader, const CollectRules& rules, Take&& take)
{
    oReader.fComm().mscComm().InputLen(1);
    for (Int32 lTaken = 0; lTaken < rules.mostCharacters && oReader.fComm().mscComm().InBufferCount() > 0; ++lTaken) {
        take();
        if (rules.pauseWhenEmpty && oReader.fComm().mscComm().InBufferCount() == 0)
            Sleep(oReader.SleepTime());
    }
}

} // namespace

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

void collectText(ReaderContract& oReader, std::string& sData, CollectRules rules)
{
    sData.clear();
    collect(oReader, rules, [&] { sData += oReader.fComm().mscComm().Input(); });
}

void collectBytes(ReaderContract& oReader, ReplyBytes& reply, CollectRules rules)
{
    reply = {};
    collect(oReader, rules, [&] {
        reply.bDataArr[0] = takeByte(oReader);
        reply.sData += Chr(reply.bDataArr[0]);
        ++reply.iByteCount;
    });
}

} // namespace kel
