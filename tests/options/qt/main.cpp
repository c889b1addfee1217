// SPDX-License-Identifier: MIT
// The tests of the options window. They show no window on the developer's screen unless QT_QPA_PLATFORM says so.
// "/L=German" among the arguments runs them in that language.

#include "startup/Main.h"

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    kel::Main();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
