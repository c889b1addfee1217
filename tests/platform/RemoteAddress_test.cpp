// SPDX-License-Identifier: MIT
#include "platform/RemoteAddress.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(RemoteAddress, LocalDevicesAreNone)
{
    for (const char* device : {"/dev/ttyUSB0", "ttyS0", "", "/dev/serial/by-path/pci-0000:00:14.0-usb-0:1:1.0-port0"})
        EXPECT_FALSE(remoteAddress(device)) << device;
}

TEST(RemoteAddress, NamesItsStream)
{
    EXPECT_EQ(remoteAddress("tcp:localhost:3000")->stream, "tcp,localhost,3000");
    EXPECT_EQ(remoteAddress("TCP:[::1]:3000")->stream, "tcp,::1,3000");
    EXPECT_EQ(remoteAddress("rfc2217:10.0.0.7:3000")->stream, "telnet(rfc2217=true),tcp,10.0.0.7,3000");
    EXPECT_EQ(remoteAddress("tls:host:telnets")->stream, "ssl,tcp,host,telnets");
    EXPECT_EQ(remoteAddress("rfc2217s:host:3000")->stream, "telnet(rfc2217=true),ssl,tcp,host,3000");
    EXPECT_EQ(remoteAddress("gensio:serialdev,/dev/ttyS0,9600")->stream, "serialdev,/dev/ttyS0,9600");
}

TEST(RemoteAddress, SaysWhetherTheLineIsSet)
{
    EXPECT_TRUE(remoteAddress("rfc2217:host:1")->takesSettings);
    EXPECT_TRUE(remoteAddress("rfc2217s:host:1")->takesSettings);
    EXPECT_FALSE(remoteAddress("tcp:host:1")->takesSettings);
    EXPECT_FALSE(remoteAddress("tls:host:1")->takesSettings);
}

TEST(RemoteAddress, HasNoStreamForWhatIsNoPlace)
{
    for (const char* device :
         {"tcp:", "tcp:host", "tcp:host:", "tcp::3000", "tcp:ho,st:3000", "tcp:host:30(00", "tcp:::1:30"})
        EXPECT_EQ(remoteAddress(device)->stream, "") << device;
}

} // namespace
} // namespace kel
