// SPDX-License-Identifier: MIT
#include "options/posix/OptionsModule.h"

#include "platform/Platform.h"
#include "platform/posix/Module.h"

namespace kel {

std::shared_ptr<OptionsPresenter> loadOptionsModule()
{
    const std::filesystem::path file = platform().process().ComponentFolder() / kOptionsModuleName;
    std::string reason;
    void* const make = moduleFunction(file, kNewOptionsPresenterName, reason);
    if (!make)
        throw RuntimeFailure(FailureCode::ErrorLoadingLibrary,
                             "The options dialog needs Qt 6 (libqt6widgets6) and the module " +
                                 std::string(kOptionsModuleName) + " beside the component: " + reason + ".");
    return std::shared_ptr<OptionsPresenter>(reinterpret_cast<NewOptionsPresenter>(make)(registeredWindowPlace()));
}

} // namespace kel
