// SPDX-License-Identifier: MIT
#pragma once

#include "platform/PortMap.h"
#include "platform/posix/PosixPlatform.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "tests/support/ReaderHost.h"
#include "tests/support/WatchedDevice.h"

namespace kel::test {

/// A reader object on this system, a device behind a pseudo-terminal as its port 1, and a host that records.
class PtyReader {
public:
    /// The model's defaults with short pauses. Only a paced host's bytes take their time on the wire. A reader that
    /// runs beside others leaves the reports, which are the process's, to somebody else.
    PtyReader(kelReaderType model, LineDevice& device, bool paced = false, bool hearsReports = true)
        : hearsReports_(hearsReports), machine_(makePosixPlatform()), scope_(*machine_), watched_(device),
          pty_(watched_, {.link = {}, .paceHost = paced}), line_(1, pty_.deviceFile()),
          host_(std::make_shared<RecordingHost>())
    {
        pty_.start();
        reader_.Advise(host_);
        if (hearsReports_)
            reader_.SetError(host_);
        reader_.LoadDefaults(model);
        reader_.Port(1);
        reader_.SleepTime(1);
    }
    ~PtyReader()
    {
        if (hearsReports_)
            setErrorObject(nullptr);
    }
    PtyReader(const PtyReader&) = delete;
    PtyReader& operator=(const PtyReader&) = delete;

    [[nodiscard]] clsKELReader& reader() { return reader_; }
    [[nodiscard]] RecordingHost& heard() { return *host_; }

    /// Lets the host's last bytes arrive, once the reader has been ended; from then on what the device has noted may
    /// be looked at.
    void finish()
    {
        watched_.waitForEnd();
        pty_.stop();
        pty_.join();
    }

private:
    bool hearsReports_;
    std::unique_ptr<Platform> machine_;
    PlatformScope scope_;
    WatchedDevice watched_;
    PtyDeviceHost pty_;
    PortOverride line_;
    std::shared_ptr<RecordingHost> host_;
    clsKELReader reader_;
};

} // namespace kel::test
