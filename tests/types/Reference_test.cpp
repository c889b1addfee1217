// SPDX-License-Identifier: MIT
#include "tests/types/FailureOf.h"
#include "types/Reference.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

struct Base {
    virtual ~Base() = default;
    int value = 1;
};
struct Derived : Base {};

TEST(ReferenceTest, FailsThroughNothing)
{
    const Reference<Base> nothing;
    EXPECT_TRUE(nothing.isNothing());
    EXPECT_FALSE(nothing);
    EXPECT_EQ(failureOf([&] { return nothing->value; }), FailureCode::ObjectNotSet);
    EXPECT_EQ(failureOf([&] { return (*nothing).value; }), FailureCode::ObjectNotSet);
    EXPECT_EQ(failureText(FailureCode::ObjectNotSet), "Object variable or With block variable not set");
}

TEST(ReferenceTest, CountsItsObject)
{
    auto first = makeReference<Base>();
    const std::weak_ptr<Base> watched = first.shared();
    Reference<Base> second = first;
    EXPECT_EQ(first, second);
    first = nullptr;
    EXPECT_TRUE(first.isNothing());
    second->value = 5;
    EXPECT_EQ(watched.lock()->value, 5);
    second = nullptr;
    EXPECT_TRUE(watched.expired());
}

TEST(ReferenceTest, ConvertsToABase)
{
    const auto derived = makeReference<Derived>();
    const Reference<Base> base = derived;
    EXPECT_EQ(&*base, &*derived);
    const Reference<Base> fromShared = std::make_shared<Derived>();
    EXPECT_FALSE(fromShared == base);
    EXPECT_EQ(Reference<Base>(Reference<Derived>()), Reference<Base>());
}

} // namespace
} // namespace kel::test
