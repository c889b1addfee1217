// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <atomic>
#include <optional>
#include <string>

namespace kel {

class clsKELReader;

/// The test of a reader that a window's button starts: a session is started as a scan does it, and ended at once. No
/// sheet moves. It uses a reader object of its own, whose reports go into the outcome and nowhere else: the host gets
/// no events and no reports.
///
///     window's thread   ReaderTrial ...... stage ... stop      a wait ends within two seconds, a pause at once
///     any thread             run ------------------------> Outcome
class ReaderTrial {
public:
    /// The settings to test, and the device that the port stands for if it is known already.
    ReaderTrial(const clsKELReader& shown, std::optional<std::string> device);
    ReaderTrial(const ReaderTrial&) = delete;
    ReaderTrial& operator=(const ReaderTrial&) = delete;

    /// What it is doing.
    enum class Stage { OpensPort, Waits, EndsSession, AsksFirmware };

    /// The result.
    struct Outcome {
        enum class Kind { Answers, Fails, Stopped };
        Kind kind = Kind::Fails;
        std::string sentence{}; ///< for the user: one or a few sentences on a line
    };

    /// Runs the test on the calling thread and its platform, once. The settings limit its duration.
    [[nodiscard]] Outcome run();

    /// From any thread.
    void stop() noexcept { stopped_ = true; }
    [[nodiscard]] bool isStopped() const noexcept { return stopped_; }
    [[nodiscard]] Stage stage() const noexcept { return stage_; }

    /// The stage in words.
    [[nodiscard]] std::string progress() const;

private:
    class Work;

    /// What a session depends on, apart from the form.
    struct Settings {
        kelReaderType model{};
        Int16 port = 0;
        kelReaderBaudRate baudRate{};
        kelReaderDataBits dataBits{};
        std::string parity;
        float stopBits = 0;
        kelReaderFlowControl flowControl{};
        Boolean readerGrade;
        Boolean duplex;
        Boolean barcode;
        Boolean feeder;
        Boolean rejecter;
        Int16 recognitionThreshold = 0;
        Int16 markDiscrimination = 0;
        Int32 sleepTime = 0;
        Int32 timeout = 0;
    };

    Settings settings_;
    std::optional<std::string> device_;
    std::atomic<bool> stopped_ = false;
    std::atomic<Stage> stage_ = Stage::OpensPort;
};

} // namespace kel
