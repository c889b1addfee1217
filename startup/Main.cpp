// SPDX-License-Identifier: MIT
#include "startup/Main.h"

#include "failure/modvbCodeShieldSupport.h"
#include "options/OptionsPresenterFactory.h"
#include "options/ShowOptions.h"
#include "reader/OptionsDialog.h"
#include "startup/CrashCapture.h"

#if defined(_WIN32)
#include "options/win32/Win32OptionsPresenter.h"
#include "platform/windows/WindowsFaultCapture.h"
#include "platform/windows/WindowsPlatform.h"
#else
#include "options/posix/OptionsModule.h"
#include "platform/posix/PosixFaultCapture.h"
#include "platform/posix/PosixPlatform.h"
#endif

#include <mutex>

namespace kel {

namespace {

#if defined(_WIN32)
constexpr PlatformFactory kPlatformOfThisSystem = &makeWindowsPlatform;
constexpr OptionsPresenterFactory kOptionsPresenterOfThisSystem = &makeWin32OptionsPresenter;
#else
constexpr PlatformFactory kPlatformOfThisSystem = &makePosixPlatform;
constexpr OptionsPresenterFactory kOptionsPresenterOfThisSystem = &loadOptionsModule;
#endif

/// The fault capture of this system; nothing where the compiler cannot make code that it could work on.
FaultCapture* faultCaptureOfThisSystem()
{
#if defined(__clang__)
    return nullptr;
#elif defined(_WIN32)
    return &WindowsFaultCapture::instance();
#else
    return &PosixFaultCapture::instance();
#endif
}

/// What can be done before anything of the component is used: it touches nothing outside this process.
void joinParts()
{
    static std::once_flag once;
    std::call_once(once, [] {
        setPlatformFactory(kPlatformOfThisSystem);
        setFaultCapture(faultCaptureOfThisSystem());
        setOptionsDialog(&showOptionsDialog);
        setOptionsPresenterFactory(kOptionsPresenterOfThisSystem);
    });
}

} // namespace

void Main()
{
    joinParts();
    vbcsInitialise();
}

void captureFaults(bool wanted)
{
    joinParts();
    setFaultCapture(wanted ? faultCaptureOfThisSystem() : nullptr);
}

namespace {

// Kept although nothing names it: loading it is all that it is for.
[[maybe_unused, gnu::used]] const bool started = (joinParts(), true);

} // namespace

} // namespace kel
