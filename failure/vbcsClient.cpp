// SPDX-License-Identifier: MIT
#include "failure/vbcsClient.h"

#include "failure/CommandLineSplit.h"
#include "failure/guarded.h"
#include "failure/modvbCodeShieldSupport.h"
#include "platform/Platform.h"

#include <mutex>

namespace kel {

namespace {

constexpr const char* kDebuggerKey = R"(Software\Innovasys\vbCodeShield\Debugger\)";

std::mutex factoryMutex;

DebuggerFactory& debuggerFactory()
{
    static auto* const factory = new DebuggerFactory;
    return *factory;
}

DebuggerFactory factoryInUse()
{
    const std::lock_guard lock(factoryMutex);
    return debuggerFactory();
}

/// The number of debuggers that are installed, as the value "Count" has it.
double installedDebuggers()
{
    const auto value = platform().registry().read(kelReaderRegistryKeyCurrentUser, kDebuggerKey, "Count");
    if (!value || (value->type != RegistryType::Text && value->type != RegistryType::ExpandableText))
        return 0;
    return Val(value->data.substr(0, value->data.find('\0')));
}

} // namespace

void setDebuggerFactory(DebuggerFactory factory)
{
    const std::lock_guard lock(factoryMutex);
    debuggerFactory().swap(factory);
}

Boolean vbcsClient::Initialize()
{
    ignoringFailures([&] {
        if (installedDebuggers() == 0)
            return;
        if (const DebuggerFactory factory = factoryInUse()) {
            const HostCode debugger;
            oIPC_ = factory(*this);
        }
    });
    return oIPC_ != nullptr;
}

void vbcsClient::IVBCSClient_OnQuery(Int32 lQuery, Variant& vValue, Int32& lStatus)
{
    lStatus = kStatusSuccess;
    switch (lQuery) {
    case 1: vValue = std::string(kComponentName); return;
    case 2: {
        const std::string sFile = platform().process().ComponentFile().string();
        vValue = sFile.substr(0, sFile.find('\0'));
        return;
    }
    case 3: vValue = componentVersion(); return;
    case 4: vValue = splitCommandLine(platform().process().CommandLine()).arguments; return;
    default: lStatus = kStatusUnknownQuery; return;
    }
}

} // namespace kel
