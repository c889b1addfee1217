// SPDX-License-Identifier: MIT
#include "station/WebServer.h"

#include "host/UsageError.h"
#include "platform/posix/Module.h"

namespace kel {

namespace {

void* webFunction(const char* name)
{
    std::string reason;
    if (void* const function = moduleFunction(besideProgram(kWebModuleName), name, reason))
        return function;
    throw host::OperationError("The module that answers browsers cannot be loaded: " + reason +
                               ". Install cpp-httplib (libcpp-httplib0.11) and the module beside the program.");
}

} // namespace

std::unique_ptr<WebServer> openWebServer(const WebPlan& plan, int most)
{
    std::unique_ptr<WebServer> server;
    std::string problem;
    reinterpret_cast<OpenWebServer>(webFunction(kOpenWebServerName))(plan, most, server, problem);
    if (!server)
        throw host::OperationError(problem);
    return server;
}

void checkWebPlan(const WebPlan& plan)
{
    std::string problem;
    reinterpret_cast<CheckWebPlan>(webFunction(kCheckWebPlanName))(plan, problem);
    if (!problem.empty())
        throw host::OperationError(problem);
}

} // namespace kel
