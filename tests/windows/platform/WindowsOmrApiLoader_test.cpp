// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsOmrApiLoader.h"

#include "platform/windows/WindowsProcess.h"
#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

#include <fstream>
#include <windows.h>

namespace kel {
namespace {

constexpr Int32 kWidth = sizeof(void*) * 8;

class WindowsOmrApiLoaderTest : public ::testing::Test {
protected:
    std::filesystem::path bin = WindowsProcess().ComponentFolder();

    static std::int32_t failureOf(OmrApi& api)
    {
        try {
            api.OMR_OpenDeviceUSB();
        } catch (const RuntimeFailure& failure) {
            text() = failure.text();
            return failure.number();
        }
        return 0;
    }
    static std::string& text()
    {
        static std::string last;
        return last;
    }
};

TEST_F(WindowsOmrApiLoaderTest, AMissingLibraryIsMissedAtTheFirstCall)
{
    WindowsOmrApiLoader loader(bin);
    EXPECT_EQ(failureOf(loader.omrApi()), 53);
    EXPECT_EQ(text(), "File not found: OMRAPI.DLL");
}

TEST_F(WindowsOmrApiLoaderTest, AFileThatIsNoLibraryIsToldSo)
{
    const auto folder = std::filesystem::temp_directory_path() / "kel no library";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "OMRAPI.DLL") << "no library";
    WindowsOmrApiLoader loader(folder);
    EXPECT_EQ(failureOf(loader.omrApi()), 48);
    EXPECT_NE(text().find("OMRAPI.DLL: "), std::string::npos);
}

// As much of a library as says for which processor it is.
void writeLibraryFor(WORD processor, const std::filesystem::path& file)
{
    IMAGE_DOS_HEADER head{};
    head.e_magic = IMAGE_DOS_SIGNATURE;
    head.e_lfanew = sizeof head;
    IMAGE_NT_HEADERS image{};
    image.Signature = IMAGE_NT_SIGNATURE;
    image.FileHeader.Machine = processor;
    std::ofstream stream(file, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(&head), sizeof head);
    stream.write(reinterpret_cast<const char*>(&image), sizeof image);
}

TEST_F(WindowsOmrApiLoaderTest, ALibraryOfTheOtherWidthIsAsGoodAsMissing)
{
    const auto folder = std::filesystem::temp_directory_path() / "kel other width";
    std::filesystem::create_directories(folder);
    writeLibraryFor(kWidth == 64 ? IMAGE_FILE_MACHINE_I386 : IMAGE_FILE_MACHINE_AMD64, folder / "OMRAPI.DLL");
    WindowsOmrApiLoader loader(folder);
    EXPECT_EQ(loader.widthNeeded(), 0);
    EXPECT_EQ(failureOf(loader.omrApi()), 53);
    EXPECT_EQ(text(), "File not found: OMRAPI.DLL");
    EXPECT_EQ(loader.widthNeeded(), kWidth);
}

TEST_F(WindowsOmrApiLoaderTest, OneOf64BitsThatLacksAFunctionIsAsGoodAsMissing)
{
    WindowsOmrApiLoader loader(bin / "faulty");
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 1); // under a decorated name in 32 bits
    EXPECT_EQ(loader.omrApi().OMR_GetLastError(), 0);  // and another way of decorating
    EXPECT_EQ(loader.omrApi().OMR_EjectSheet(3), 0);
    EXPECT_EQ(loader.omrApi().OMR_EjectSheet(2), 1);
    EXPECT_EQ(loader.widthNeeded(), 0);
    try {
        loader.omrApi().OMR_FeedSheet();
        FAIL() << "a function that is not there was called";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.number(), kWidth == 64 ? 53 : 453);
    }
    EXPECT_EQ(loader.widthNeeded(), kWidth == 64 ? 64 : 0);
}

TEST_F(WindowsOmrApiLoaderTest, TheLibraryBesideTheComponentIsLoadedAndHasAllFunctions)
{
    WindowsOmrApiLoader loader(bin / "simulated");
    for (std::size_t i = 0; i < kOmrFunctionCount; ++i)
        EXPECT_TRUE(loader.binding().has(static_cast<OmrFunction>(i))) << omrFunctionName(static_cast<OmrFunction>(i));
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    EXPECT_EQ(loader.omrApi().OMR_GetLastError(), 0);
    loader.omrApi().OMR_CloseDevice();
}

TEST_F(WindowsOmrApiLoaderTest, AFileMayBeNamed)
{
    WindowsOmrApiLoader loader(bin);
    loader.libraryFile(bin / "simulated" / "OMRAPI.DLL");
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    loader.omrApi().OMR_CloseDevice();
    loader.libraryFile(bin / "nothing.dll");
    EXPECT_EQ(failureOf(loader.omrApi()), 53);
}

} // namespace
} // namespace kel
