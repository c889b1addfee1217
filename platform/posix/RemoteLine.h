// SPDX-License-Identifier: MIT
#pragma once

#include "platform/RemoteAddress.h"
#include "platform/RemoteConnection.h"
#include "platform/posix/SystemLine.h"
#include "types/Numbers.h"

#include <memory>

namespace kel {

/// A serial line at the far end of a network connection. What does the networking is a module beside the component,
/// which is loaded with the first such line; the line's bytes pass through a socket of this process.
class RemoteLine final : public SystemLine {
public:
    /// Connects, within ten seconds, unless `ended` becomes readable before. Fails with 8002 (no such host, no address)
    /// or 8010 (refused, no answer, a certificate that is not trusted, no module); the text names port, device and
    /// cause, and what to try.
    RemoteLine(Int16 port, const std::string& device, const RemoteAddress& address, int ended);

    /// Sets the serial line of the server where the address says that it takes settings, or where the stream happens
    /// to; otherwise whoever owns it has set it.
    void set(const LineParameters& line) override;

    void dropInput() noexcept override;
    [[nodiscard]] int handle() const noexcept override { return connection_->handle(); }
    [[nodiscard]] const std::string& name() const noexcept override { return name_; }

private:
    std::string name_;
    bool takesSettings_;
    std::unique_ptr<RemoteConnection> connection_;
};

} // namespace kel
