#include "station/WebServer.h"

#include "host/UsageError.h"

#include <dlfcn.h>

namespace kel {

namespace {

/// The module lies beside the program, and stays loaded.
void* moduleFunction(const char* name)
{
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe").parent_path() / kWebModuleName;
    void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const function = module ? ::dlsym(module, name) : nullptr;
    if (function)
        return function;
    const char* const reason = ::dlerror();
    throw host::OperationError(std::string("The module that answers browsers cannot be loaded: ") +
                               (reason ? reason : file.string()) +
                               ". Install cpp-httplib (libcpp-httplib0.11) and the module beside the program.");
}

} // namespace

std::unique_ptr<WebServer> openWebServer(const WebPlan& plan, int most)
{
    std::unique_ptr<WebServer> server;
    std::string problem;
    reinterpret_cast<OpenWebServer>(moduleFunction(kOpenWebServerName))(plan, most, server, problem);
    if (!server)
        throw host::OperationError(problem);
    return server;
}

void checkWebPlan(const WebPlan& plan)
{
    std::string problem;
    reinterpret_cast<CheckWebPlan>(moduleFunction(kCheckWebPlanName))(plan, problem);
    if (!problem.empty())
        throw host::OperationError(problem);
}

} // namespace kel
