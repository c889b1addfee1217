// SPDX-License-Identifier: MIT
#include "stream/Outbox.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AnOutbox : public testing::Test {
protected:
    void add(std::int64_t id, const std::string& reader) { outbox_.add(id, reader, {.identity = std::to_string(id)}); }

    std::vector<std::int64_t> due()
    {
        std::vector<std::int64_t> found;
        while (const auto next = outbox_.next(now_))
            found.push_back(next->id);
        return found;
    }

    Outbox outbox_{10};
    Outbox::Time now_{};
};

TEST_F(AnOutbox, HasOneMessageOfAReaderUnderWay)
{
    for (const auto& [id, reader] : {std::pair(11, "left"), {12, "left"}, {13, "right"}, {15, "left"}})
        add(id, reader);
    EXPECT_THAT(due(), ElementsAre(11, 13));
    EXPECT_EQ(outbox_.underWay(), 2U);
    outbox_.acknowledge(11);
    EXPECT_THAT(due(), ElementsAre(12));
    outbox_.acknowledge(12);
    outbox_.acknowledge(13);
    EXPECT_THAT(due(), ElementsAre(15));
    outbox_.acknowledge(15);
    EXPECT_THAT(due(), IsEmpty());
    EXPECT_EQ(outbox_.size(), 0U);
}

TEST_F(AnOutbox, KnowsUpToWhereTheStreamHasEverything)
{
    EXPECT_EQ(outbox_.last(), 10);
    add(12, "left");
    add(13, "right");
    add(14, "left");
    EXPECT_EQ(outbox_.last(), 11);
    due();
    outbox_.acknowledge(13);
    EXPECT_EQ(outbox_.last(), 11);
    outbox_.acknowledge(12);
    EXPECT_EQ(outbox_.last(), 13);
    due();
    outbox_.acknowledge(14);
    outbox_.acknowledge(14); // the answer to one that was sent twice
    EXPECT_EQ(outbox_.last(), 14);
    EXPECT_EQ(outbox_.loaded(), 14);
}

TEST_F(AnOutbox, KnowsSinceWhenTheOldestIsUnderWay)
{
    using std::chrono::seconds;
    add(11, "left");
    add(12, "right");
    EXPECT_FALSE(outbox_.oldest());
    EXPECT_EQ(outbox_.next(now_)->id, 11);
    EXPECT_EQ(outbox_.next(now_ + seconds(3))->id, 12);
    EXPECT_EQ(outbox_.oldest(), now_);
    outbox_.acknowledge(11);
    EXPECT_EQ(outbox_.oldest(), now_ + seconds(3));
    outbox_.acknowledge(12);
    EXPECT_FALSE(outbox_.oldest());
}

} // namespace
} // namespace kel::test
