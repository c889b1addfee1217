// SPDX-License-Identifier: MIT
#include "options/CaptionText.h"

#include "tests/options/OptionsHost.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(PlainCaption, HasNeitherAccessKeyNorColon)
{
    EXPECT_EQ(plainCaption("&Port:"), "Port");
    EXPECT_EQ(plainCaption("Po&rt :"), "Port");
    EXPECT_EQ(plainCaption("&Vitesse\u00a0:"), "Vitesse");
    EXPECT_EQ(plainCaption("Marks && &barcodes"), "Marks & barcodes");
    EXPECT_EQ(plainCaption("1:2"), "1:2");
    EXPECT_EQ(plainCaption(""), "");
}

TEST(SettingName, IsOnTheSettingOrOnTheLabelBeforeIt)
{
    OptionsHost host;
    frmOptions& form = host.form();
    EXPECT_EQ(settingName(form, form.txtSystemPause), "System pause (ms)");
    EXPECT_EQ(settingName(form, form.cboBaud), plainCaption(form.lblBaud.Caption()));
    EXPECT_EQ(settingName(form, form.chkDuplex), plainCaption(form.chkDuplex.Caption()));
    EXPECT_EQ(settingName(form, form.lblBaud), plainCaption(form.lblBaud.Caption()));
}

} // namespace
} // namespace kel::test
