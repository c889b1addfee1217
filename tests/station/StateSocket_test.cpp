// SPDX-License-Identifier: MIT
#include "station/StateSocket.h"

#include "host/UsageError.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

class AStateSocket : public testing::Test {
protected:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "socket";
};

TEST_F(AStateSocket, RefusesThePlaceOfOneThatIsServed)
{
    std::optional<StateSocket> first(file_);
    EXPECT_THAT([&] { const StateSocket second(file_); },
                ThrowsMessage<host::OperationError>(HasSubstr("is that of a station at work")));
    first.reset();
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AStateSocket, TakesThePlaceOfOneThatWasLeftBehind)
{
    {
        const StateSocket first(file_);
        std::filesystem::create_hard_link(file_, folder_.path() / "kept");
    }
    std::filesystem::rename(folder_.path() / "kept", file_);
    const StateSocket second(file_);
    EXPECT_TRUE(std::filesystem::is_socket(file_));
}

TEST_F(AStateSocket, RemovesItsOwnFileAlone)
{
    std::optional<StateSocket> first(file_);
    std::filesystem::remove(file_);
    const StateSocket second(file_);
    first.reset();
    EXPECT_TRUE(std::filesystem::is_socket(file_));
}

TEST_F(AStateSocket, WhoeverAsksAStationThatDoesNotAnswerIsToldSo)
{
    const StateSocket stuck(file_);
    EXPECT_THAT([&] { static_cast<void>(askStation(file_, std::chrono::milliseconds(50))); },
                ThrowsMessage<host::OperationError>(HasSubstr("does not answer")));
}

} // namespace
} // namespace kel::test
