// SPDX-License-Identifier: MIT
#include "station/StateText.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(AStateText, SaysWhatIsNotSentYetIfSomebodyKnows)
{
    StationState state{.station = "hall"};
    state.stream = StreamState{.isUp = true, .unsent = 7};
    EXPECT_THAT(stateTable(jsonState(state)), HasSubstr("Stream: up, 7 not sent yet\n"));
    EXPECT_THAT(stateMetrics(jsonState(state)), HasSubstr("kelreader_stream_unsent{station=\"hall\"} 7\n"));
    state.stream->unsent = -1;
    EXPECT_THAT(stateTable(jsonState(state)), HasSubstr("Stream: up, unknown how many not sent yet\n"));
    EXPECT_THAT(stateMetrics(jsonState(state)), Not(HasSubstr("kelreader_stream_unsent")));
}

} // namespace
} // namespace kel::test
