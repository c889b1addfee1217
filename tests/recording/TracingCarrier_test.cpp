// SPDX-License-Identifier: MIT
#include "recording/TracingCarrier.h"

#include "recording/Transcript.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/support/FailingLine.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// An open line whose control counts what the test says.
class CountingLine final : public FailingLine, public CountsLineErrors {
public:
    [[nodiscard]] LineErrors lineErrors() override { return errors; }

    LineErrors errors;
};

/// A carrier that writes a transcript of what passes on such a line.
class TracingCarrierTest : public testing::Test {
protected:
    TracingCarrierTest() : scope_(machine), line(makeReference<CountingLine>())
    {
        line->InputLen(1);
        carrier = makeReference<TracingCarrier>(Reference<Carrier>(line), TraceLog::Head{{"model", "13"}},
                                                [this](const std::string& text) { trace += text; });
        carrier->mscComm().PortOpen(True);
    }

    void send(const char* bytes) { carrier->mscComm().Output(bytes); }

    /// The reader answers, and the host takes all of it.
    void answer(const std::string& bytes)
    {
        line->waiting += bytes;
        while (carrier->mscComm().InBufferCount() > 0)
            static_cast<void>(carrier->mscComm().Input());
    }

    SimulatedPlatform machine;

private:
    PlatformScope scope_;

protected:
    Reference<CountingLine> line;
    Reference<TracingCarrier> carrier;
    std::string trace;
};

TEST_F(TracingCarrierTest, NotesCharactersThatWentWrongBehindTheReplyInWhichTheyDid)
{
    send("A");
    line->errors.parity = 1;
    answer("?");
    send("B");
    answer("b");
    send("C");
    line->errors.parity = 2;
    line->errors.framing = 1;
    answer("c");
    carrier->mscComm().PortOpen(False);

    const std::size_t first = trace.find("# so far 1 parity error\n");
    const std::size_t second = trace.find("# so far 2 parity errors, 1 framing error\n");
    ASSERT_NE(first, std::string::npos) << trace;
    ASSERT_NE(second, std::string::npos) << trace;
    EXPECT_EQ(trace.find("# so far", first + 1), second) << "a count that has not changed is not told again\n" << trace;
    EXPECT_GT(first, trace.find("> \"A\""));
    EXPECT_LT(first, trace.find("> \"B\""));
    EXPECT_GT(second, trace.find("> \"C\""));
}

TEST_F(TracingCarrierTest, ANoteIsNoPartOfTheDialogue)
{
    const auto dialogue = [&] {
        send("A");
        answer("?");
        carrier->mscComm().PortOpen(False);
    };
    line->errors.overrun = 1;
    dialogue();
    EXPECT_THAT(trace, HasSubstr("# so far 1 overrun\n"));
    const Transcript transcript = parseTranscript(trace);
    ASSERT_EQ(transcript.lines.size(), 2U) << trace;
    EXPECT_EQ(transcript.lines[0].bytes, "A");
    EXPECT_EQ(transcript.lines[1].bytes, "?");
}

TEST_F(TracingCarrierTest, ALineWithoutErrorsHasNoNotes)
{
    send("A");
    answer("a");
    carrier->mscComm().PortOpen(False);
    EXPECT_THAT(trace, Not(HasSubstr("so far")));
}

} // namespace
} // namespace kel::test
