// SPDX-License-Identifier: MIT
#include "drivers/apperson/ErrorTexts.h"

#include <gtest/gtest.h>

#include <map>

namespace kel {
namespace {

TEST(ErrorTextsAP, EveryCodeHasItsText)
{
    const std::map<int, Int32> told = {{4, 202},   {5, 204},   {6, 206},   {7, 208},   {8, 210},   {9, 212},
                                       {201, 214}, {202, 216}, {203, 218}, {204, 220}, {205, 220}, {206, 222},
                                       {207, 224}, {208, 226}, {210, 228}, {211, 230}};
    for (int code = -1; code <= 1000; ++code) {
        const auto found = told.find(code);
        EXPECT_EQ(errorTextAP(static_cast<Int16>(code)).value(), found == told.end() ? 232 : found->second) << code;
    }
}

} // namespace
} // namespace kel
