// SPDX-License-Identifier: MIT
#pragma once

#include "failure/Variant.h"

#include <functional>
#include <memory>
#include <string>

namespace kel {

/// Answers of the debugger's interfaces.
inline constexpr Int32 kStatusSuccess = 1;
inline constexpr Int32 kStatusUnknownQuery = -6;
inline constexpr Int32 kNotConnected = -10;

/// The debugger's communication object.
class DebuggerIPC {
public:
    virtual ~DebuggerIPC() = default;
    virtual Int32 Send(Int32 lCode, const std::string& sText, const Variant& vData, Int32 lArg1, Int32 lArg2) = 0;
    [[nodiscard]] virtual Boolean HasDebugSession() = 0;
};

/// What a debugger asks of the component.
class IVBCSClient {
public:
    virtual ~IVBCSClient() = default;

    /// Questions 1 to 4: the title, the component's file, its version, the arguments of the process. `lStatus` becomes
    /// 1, or -6 for any other number.
    virtual void IVBCSClient_OnQuery(Int32 lQuery, Variant& vValue, Int32& lStatus) = 0;
};

/// Starts the debugger for a client; nothing if that does not work. None is known to this component: a tool, or a test
/// that plays one, sets its own. An empty function removes it.
using DebuggerFactory = std::function<std::shared_ptr<DebuggerIPC>(IVBCSClient& client)>;
void setDebuggerFactory(DebuggerFactory factory);

/// The component's end of a debug session.
class vbcsClient final : public IVBCSClient {
public:
    /// Looks whether a debugger is installed on this computer, and starts it. True if there is one now.
    Boolean Initialize();

    /// The debugger's communication object; nothing without a debugger.
    [[nodiscard]] const std::shared_ptr<DebuggerIPC>& IPC() const { return oIPC_; }

    void IVBCSClient_OnQuery(Int32 lQuery, Variant& vValue, Int32& lStatus) override;

private:
    std::shared_ptr<DebuggerIPC> oIPC_;
};

} // namespace kel
