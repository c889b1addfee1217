// SPDX-License-Identifier: MIT
#include "platform/posix/PosixOmrApiLoader.h"

#include "tests/platform/posix/PosixTest.h"
#include "tests/support/BuiltFiles.h"

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace kel::omr_loader_test {
namespace {

using test::simulatedOmrApi;

/// A component's folder without a library, until the test puts one there.
class PosixOmrApiLoaderTest : public ::testing::Test {
protected:
    void put(const std::string& name) { std::filesystem::copy_file(simulatedOmrApi(), folder / name); }

    /// The failure of a call; 0 if it came back.
    static Int32 failureOf(PosixOmrApiLoader& loader, std::string* text = nullptr)
    {
        try {
            loader.omrApi().OMR_CloseDevice();
            return 0;
        } catch (const RuntimeFailure& failure) {
            if (text)
                *text = failure.text();
            return failure.number();
        }
    }

    test::TemporaryFolder temporary;
    std::filesystem::path folder = temporary.path();
};

TEST_F(PosixOmrApiLoaderTest, LoadsNothingBeforeTheFirstCall)
{
    PosixOmrApiLoader loader(folder);
    static_cast<void>(loader.omrApi());
    put("libOMRAPI.so");
    EXPECT_EQ(failureOf(loader), 0);
}

TEST_F(PosixOmrApiLoaderTest, FailsWithoutALibraryUntilThereIsOne)
{
    PosixOmrApiLoader loader(folder);
    std::string text;
    EXPECT_EQ(failureOf(loader, &text), 53);
    EXPECT_EQ(text, "File not found: OMRAPI.DLL");
    EXPECT_EQ(failureOf(loader), 53);
    put("OMRAPI.so");
    EXPECT_EQ(failureOf(loader), 0);
}

TEST_F(PosixOmrApiLoaderTest, TakesAnyOfTheNamesBesideTheComponent)
{
    for (const char* name : {"libOMRAPI.so", "OMRAPI.so", "OMRAPI.DLL"}) {
        put(name);
        PosixOmrApiLoader loader(folder);
        EXPECT_EQ(failureOf(loader), 0) << name;
        std::filesystem::remove(folder / name);
    }
}

TEST_F(PosixOmrApiLoaderTest, TakesTheUsualNameFirst)
{
    put("OMRAPI.DLL");
    put("OMRAPI.so");
    std::ofstream(folder / "libOMRAPI.so") << "no library";
    PosixOmrApiLoader loader(folder);
    std::string text;
    EXPECT_EQ(failureOf(loader, &text), 48);
    EXPECT_TRUE(text.starts_with("Error in loading DLL OMRAPI.DLL: ")) << text;
    EXPECT_NE(text.find("libOMRAPI.so"), std::string::npos) << text;
    std::filesystem::remove(folder / "libOMRAPI.so");
    EXPECT_EQ(failureOf(loader), 0);
}

TEST_F(PosixOmrApiLoaderTest, LoadsTheFileThatWasNamed)
{
    PosixOmrApiLoader loader(folder);
    loader.libraryFile(simulatedOmrApi());
    EXPECT_EQ(failureOf(loader), 0);
    // From then on another one, and the one that is found by name again.
    loader.libraryFile(folder / "absent.so");
    std::string text;
    EXPECT_EQ(failureOf(loader, &text), 53);
    EXPECT_EQ(text, "File not found: OMRAPI.DLL");
    loader.libraryFile(folder);
    EXPECT_EQ(failureOf(loader), 48);
    loader.libraryFile({});
    EXPECT_EQ(failureOf(loader), 53);
    put("libOMRAPI.so");
    EXPECT_EQ(failureOf(loader), 0);
}

TEST_F(PosixOmrApiLoaderTest, TakesANamedFileFromTheFolderInWhichTheProcessRuns)
{
    put("here.so");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    PosixOmrApiLoader loader(before);
    loader.libraryFile("here.so");
    EXPECT_EQ(failureOf(loader), 0);
    std::filesystem::current_path(before);
}

TEST_F(PosixOmrApiLoaderTest, TellsWhatAnotherLibraryLacks)
{
    PosixOmrApiLoader loader(folder);
    Dl_info other{};
    ASSERT_NE(::dladdr(reinterpret_cast<void*>(&::getpid), &other), 0);
    loader.libraryFile(other.dli_fname);
    std::string text;
    EXPECT_EQ(failureOf(loader, &text), 453);
    EXPECT_EQ(text, "Can't find DLL entry point OMR_CloseDevice in OMRAPI.DLL");
}

TEST_F(PosixOmrApiLoaderTest, FindsEveryFunctionInTheSimulatedLibrary)
{
    PosixOmrApiLoader loader(folder);
    loader.libraryFile(simulatedOmrApi());
    for (std::size_t i = 0; i < kOmrFunctionCount; ++i) {
        const auto function = static_cast<OmrFunction>(i);
        EXPECT_TRUE(loader.binding().has(function)) << omrFunctionName(function);
    }
}

} // namespace
} // namespace kel::omr_loader_test
