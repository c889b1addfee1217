// SPDX-License-Identifier: MIT
#include "cli/CommandLine.h"

#if defined(_WIN32)
#include "platform/TextScreen.h"
#include "platform/windows/WindowsPlatform.h"
#endif

int main(int argc, char** argv)
{
#if defined(_WIN32)
    // A box on the desktop would hold up a script until somebody saw it.
    kel::setPlatformFactory([]() -> std::unique_ptr<kel::Platform> {
        return std::make_unique<kel::WindowsPlatform>(std::make_unique<kel::TextScreen>());
    });
#endif
    return kel::runCommandLine(argc, argv);
}
