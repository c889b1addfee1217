// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineErrors.h"
#include "platform/ModemLines.h"
#include "reader/clsKELReader.h"
#include "recording/TracingCarrier.h"
#include "recording/TracingLibrary.h"
#include "recording/Transcript.h"
#include "recording/WatchfulPlatform.h"
#include "simulators/platform/ReplayPlatform.h"
#include "types/Reference.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// What was done between one opening of the line and its closing, as a transcript of its own.
struct Section {
    std::string name;
    Transcript trace;
    LineErrors errors{};
    std::optional<ModemLines> modem{};
};

/// What a check's sessions run on: a line or a USB reader's library, or the report of another check.
class Bench {
public:
    virtual ~Bench() = default;

    /// Begins a section with a head of its own: the carrier to use instead of a reader's.
    [[nodiscard]] virtual Reference<Carrier> begin(const std::string& name, const Reference<Carrier>& own,
                                                   const TraceLog::Head& head) = 0;

    /// Reads the wires of the far end, once the line is open.
    virtual void lookAtModemLines() = 0;

    /// Ends the section.
    [[nodiscard]] virtual Section end() = 0;

    /// Whether whoever held this section before was stopped here.
    [[nodiscard]] virtual bool stopped() const { return false; }

    /// A fact of the machine, by its name. `find` is asked where nothing is recorded.
    [[nodiscard]] virtual std::optional<std::string> fact(const std::string& name,
                                                          const std::function<std::optional<std::string>()>& find) = 0;
};

/// Sections on a line. What goes over it is handed out line by line, as a report has it.
class LineBench final : public Bench {
public:
    using Write = std::function<void(const std::string& line)>;

    explicit LineBench(Write write) : write_(std::move(write)) {}

    [[nodiscard]] Reference<Carrier> begin(const std::string& name, const Reference<Carrier>& own,
                                           const TraceLog::Head& head) override;
    void lookAtModemLines() override;
    [[nodiscard]] Section end() override;
    [[nodiscard]] std::optional<std::string> fact(const std::string& name,
                                                  const std::function<std::optional<std::string>()>& find) override;

private:
    struct Open {
        std::string name;
        std::string text;
        Reference<TracingCarrier> carrier;
        std::optional<ModemLines> modem;
        std::unique_ptr<WatchfulPlatform> watchful;
        std::unique_ptr<TracingLibrary> machine;
        std::unique_ptr<PlatformScope> scope;
    };

    Write write_;
    std::unique_ptr<Open> open_;
};

/// A section that a report has not.
class SectionMissing : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Sections of a report, held again. Time is the report's.
class ReportBench final : public Bench {
public:
    using Facts = std::vector<std::pair<std::string, std::string>>;

    ReportBench(std::vector<Section> sections, Facts facts) : sections_(std::move(sections)), facts_(std::move(facts))
    {
    }

    /// SectionMissing where the report ends before.
    [[nodiscard]] Reference<Carrier> begin(const std::string& name, const Reference<Carrier>& own,
                                           const TraceLog::Head& head) override;
    void lookAtModemLines() override {}
    [[nodiscard]] Section end() override;
    [[nodiscard]] bool stopped() const override { return carrier_ && carrier_->stopped(); }
    [[nodiscard]] std::optional<std::string> fact(const std::string& name,
                                                  const std::function<std::optional<std::string>()>& find) override;

    /// Where sessions have left the report, a sentence each.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return differences_; }

private:
    std::vector<Section> sections_;
    Facts facts_;
    std::size_t at_ = 0;
    std::shared_ptr<ReplayCarrier> carrier_;
    std::unique_ptr<ReplayLibrary> library_;
    std::unique_ptr<ReplayPlatform> machine_;
    std::unique_ptr<WatchfulPlatform> watchful_;
    std::unique_ptr<PlatformScope> scope_;
    std::vector<std::string> differences_;
};

/// A section of a bench, ended whatever happens.
class OpenSection {
public:
    OpenSection(Bench& bench, const std::string& name, const clsKELReader& reader, const TraceLog::Head& head = {})
        : bench_(bench), carrier_(bench.begin(name, reader.fComm(), head))
    {
    }
    ~OpenSection()
    {
        if (open_)
            static_cast<void>(end());
    }
    OpenSection(const OpenSection&) = delete;
    OpenSection& operator=(const OpenSection&) = delete;

    [[nodiscard]] const Reference<Carrier>& carrier() const { return carrier_; }

    [[nodiscard]] Section end()
    {
        open_ = false;
        return bench_.end();
    }

private:
    Bench& bench_;
    Reference<Carrier> carrier_;
    bool open_ = true;
};

} // namespace kel
