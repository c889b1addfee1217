// SPDX-License-Identifier: MIT
#include "simulators/framework/Fault.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

using Kind = Fault::Kind;

std::string faultRefusal(std::string_view text)
{
    try {
        static_cast<void>(parseFault(text));
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "taken";
}

TEST(Fault, IsReadFromItsText)
{
    EXPECT_EQ(parseFault("drop@byte=120"), (Fault{.kind = Kind::Drop, .value = 0, .byte = 120}));
    EXPECT_EQ(parseFault("unplug@sheet=2"), (Fault{.kind = Kind::Unplug, .value = 0, .sheet = 2}));
    EXPECT_EQ(parseFault("unplug@byte=7"), (Fault{.kind = Kind::Unplug, .value = 0, .byte = 7}));
    EXPECT_EQ(parseFault("garble=1@sheet=2,byte=5"), (Fault{.kind = Kind::Garble, .value = 1, .byte = 5, .sheet = 2}));
    EXPECT_EQ(parseFault("garble=1@byte=5,sheet=2"), parseFault("garble=1@sheet=2,byte=5"));
    EXPECT_EQ(parseFault("jam@sheet=3"), (Fault{.kind = Kind::Jam, .value = 0, .sheet = 3}));
    EXPECT_EQ(parseFault("empty@sheet=1"), (Fault{.kind = Kind::Empty, .value = 0, .sheet = 1}));
}

TEST(Fault, OfTheOutputIsAtByteOneWhereNoByteIsNamed)
{
    EXPECT_EQ(parseFault("silent"), (Fault{.kind = Kind::Silent, .value = 0, .byte = 1}));
    EXPECT_EQ(parseFault("late=2500@sheet=1"), (Fault{.kind = Kind::Late, .value = 2500, .byte = 1, .sheet = 1}));
}

TEST(Fault, HasUsualValues)
{
    EXPECT_EQ(parseFault("garble@byte=5").value, 0x55);
    EXPECT_EQ(parseFault("split@byte=5").value, 200);
    EXPECT_EQ(parseFault("drip").value, 20);
    EXPECT_EQ(parseFault("late").value, 1000);
}

TEST(Fault, GivesItsTextBack)
{
    for (const char* text :
         {"drop@byte=120", "garble=1@sheet=2,byte=5", "split=200@byte=1", "drip=3@byte=9", "late=2500@sheet=1,byte=1",
          "silent@byte=1", "jam@sheet=3", "empty@sheet=1", "unplug@sheet=2", "unplug@byte=4"})
        EXPECT_EQ(toText(parseFault(text)), text);
}

TEST(Fault, AMistakeNamesTheKnownWords)
{
    EXPECT_EQ(faultRefusal("explode@byte=1"),
              "fault \"explode@byte=1\": unknown word \"explode\". A fault is WORD[=VALUE]@PLACE; the words are drop, "
              "garble, split, drip, late, silent, jam, empty, unplug; a place is byte=N, sheet=N or sheet=N,byte=N. "
              "'kelreader simulate --list-faults' lists the others");
}

TEST(Fault, MistakesAreTold)
{
    const auto expectMistake = [](const char* text, const std::string& why) {
        EXPECT_EQ(faultRefusal(text).find("fault \"" + std::string(text) + "\": " + why + "."), 0U)
            << faultRefusal(text);
    };
    expectMistake("", "unknown word \"\"");
    expectMistake("drop=3", "drop takes no value");
    expectMistake("late=soon", "\"soon\" is not a value");
    expectMistake("late=-1", "\"-1\" is not a value");
    expectMistake("garble=0", "a byte is garbled with 1 to 255");
    expectMistake("garble=256", "a byte is garbled with 1 to 255");
    expectMistake("drop@byte", "\"byte\" is not a place");
    expectMistake("drop@byte=0", "\"byte=0\" is not a place");
    expectMistake("drop@byte=1x", "\"byte=1x\" is not a place");
    expectMistake("drop@page=1", "unknown place \"page\"");
    expectMistake("drop@byte=1,byte=2", "the place byte is there twice");
    expectMistake("jam", "jam happens at a sheet");
    expectMistake("jam@byte=3", "jam happens at a sheet");
    expectMistake("empty@sheet=1,byte=3", "empty happens at a sheet");
}

} // namespace
} // namespace kel
