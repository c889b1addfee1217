#include "platform/windows/WindowsOmrApiLoader.h"

#include "platform/windows/WindowsProcess.h"
#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kel {
namespace {

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

TEST_F(WindowsOmrApiLoaderTest, TheLibraryBesideTheComponentIsLoadedAndHasAllFunctions)
{
    WindowsOmrApiLoader loader(bin / "omrapi");
    for (std::size_t i = 0; i < kOmrFunctionCount; ++i)
        EXPECT_TRUE(loader.binding().has(static_cast<OmrFunction>(i))) << omrFunctionName(static_cast<OmrFunction>(i));
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    EXPECT_EQ(loader.omrApi().OMR_GetLastError(), 0);
    loader.omrApi().OMR_CloseDevice();
}

TEST_F(WindowsOmrApiLoaderTest, AFileMayBeNamed)
{
    WindowsOmrApiLoader loader(bin);
    loader.libraryFile(bin / "omrapi" / "OMRAPI.DLL");
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    loader.omrApi().OMR_CloseDevice();
    loader.libraryFile(bin / "nothing.dll");
    EXPECT_EQ(failureOf(loader.omrApi()), 53);
}

} // namespace
} // namespace kel
