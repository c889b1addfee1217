#include "options/posix/OptionsModule.h"

#include "platform/Platform.h"

#include <dlfcn.h>

namespace kel {

std::shared_ptr<OptionsPresenter> loadOptionsModule()
{
    const std::filesystem::path file = platform().process().ComponentFolder() / kOptionsModuleName;
    void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const make = module ? ::dlsym(module, kNewOptionsPresenterName) : nullptr;
    if (!make) {
        const char* const reason = ::dlerror();
        throw RuntimeFailure(FailureCode::ErrorLoadingLibrary,
                             "The options dialog needs Qt 6 (libqt6widgets6) and the module " +
                                 std::string(kOptionsModuleName) +
                                 " beside the component: " + (reason ? reason : file.string()) + ".");
    }
    return std::shared_ptr<OptionsPresenter>(reinterpret_cast<NewOptionsPresenter>(make)(registeredWindowPlace()));
}

} // namespace kel
