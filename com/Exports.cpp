// SPDX-License-Identifier: MIT
// What the system calls of the server. The names are in KELReader81U.def.

#include "com/ClassFactory.h"
#include "com/LateBoundErrorLibrary.h"
#include "com/LateBoundErrorObject.h"
#include "com/Registration.h"
#include "com/ScriptingDictionary.h"
#include "com/Server.h"
#include "failure/basError.h"
#include "platform/NamedObjects.h"

#include <windows.h>

#include <cwchar>

namespace {

/// A host whose last object is gone has no use for its error object any more; and behind the server nobody could let
/// go of it. One of another apartment is left alone.
void releaseErrorObject() noexcept
try {
    const auto object = std::dynamic_pointer_cast<kel::com::LateBoundErrorObject>(kel::errorObject());
    if (object && object->isOfThisThread())
        kel::setErrorObject(nullptr);
} catch (...) {
    // It stays, then.
}

/// The run time keeps things for each thread and holds the server for that long: whoever let go of it last, the thread
/// would end within code that has just gone. So a server that was used stays as long as the process.
void stayLoaded() noexcept
{
    static const bool stays = [] {
        HMODULE server = nullptr;
        return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                                  reinterpret_cast<PCWSTR>(&stayLoaded), &server) != FALSE;
    }();
    static_cast<void>(stays);
}

} // namespace

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH) {
        kel::com::moduleLoaded(instance);
        kel::setObjectCreator(&kel::com::createRegisteredErrorLibrary);
        kel::setDictionaryObjectCreator(&kel::com::newScriptingDictionary);
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID classID, REFIID iid, void** object)
{
    stayLoaded();
    return kel::com::classFactoryOf(classID, iid, object);
}

STDAPI DllCanUnloadNow()
{
    if (kel::com::isServerInUse())
        return S_FALSE;
    releaseErrorObject();
    return S_OK;
}

/// For the machine, or for the user where that is not permitted.
STDAPI DllRegisterServer()
{
    const HRESULT result = kel::com::registerServer(kel::com::RegistrationScope::Machine);
    return result == E_ACCESSDENIED ? kel::com::registerServer(kel::com::RegistrationScope::User) : result;
}

/// Wherever it is registered.
STDAPI DllUnregisterServer()
{
    const HRESULT user = kel::com::unregisterServer(kel::com::RegistrationScope::User);
    const HRESULT machine = kel::com::unregisterServer(kel::com::RegistrationScope::Machine);
    return machine == E_ACCESSDENIED ? user : machine;
}

/// "regsvr32 /n /i:user" registers for the user alone.
STDAPI DllInstall(BOOL install, PCWSTR commandLine)
{
    if (!commandLine || _wcsicmp(commandLine, L"user") != 0)
        return install ? DllRegisterServer() : DllUnregisterServer();
    return install ? kel::com::registerServer(kel::com::RegistrationScope::User)
                   : kel::com::unregisterServer(kel::com::RegistrationScope::User);
}
