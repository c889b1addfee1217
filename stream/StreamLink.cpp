// SPDX-License-Identifier: MIT
#include "stream/StreamLink.h"

#include "platform/posix/Module.h"

namespace kel {

namespace {

StreamOpener& loaded()
{
    std::string reason;
    void* const make = moduleFunction(besideProgram(kStreamModuleName), kMakeStreamOpenerName, reason);
    if (!make)
        throw StreamProblem("The module for streams cannot be loaded: " + reason +
                            ". Install the client library for NATS (libnats3.4) and the module beside the program.");
    return *reinterpret_cast<MakeStreamOpener>(make)();
}

} // namespace

StreamOpener& streamOpener()
{
    static StreamOpener& opener = loaded();
    return opener;
}

} // namespace kel
