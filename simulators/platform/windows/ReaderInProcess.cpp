// SPDX-License-Identifier: MIT
#include "simulators/platform/windows/ReaderInProcess.h"

#include "platform/SteadyTime.h"
#include "platform/windows/WatchedInput.h"
#include "platform/windows/WindowsMessagePump.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kel {

namespace {

constexpr std::size_t kReadSize = 4096;
constexpr Int16 kPort = 1; // of its own
constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

} // namespace

class ReaderInProcess::Input final : public WatchedInput {
public:
    explicit Input(ReaderInProcess& reader) : WatchedInput(reader.name(), kReadSize), reader_(reader) {}

    [[nodiscard]] LineErrors errors() override { return {}; }

private:
    [[nodiscard]] Fetched read(char* into, std::size_t room) override
    {
        SimulatedLine& line = reader_.line();
        const std::string bytes = line.take(room);
        std::copy(bytes.begin(), bytes.end(), into);
        if (bytes.empty() && line.hungUp())
            hangUp();
        return {.count = bytes.size(), .more = line.waiting() > 0};
    }

    void awaitInput(Moment) override { ::Sleep(1); }

    ReaderInProcess& reader_;
};

class ReaderInProcess::Line final : public OpenLine {
public:
    Line(ReaderInProcess& reader, const LineParameters& parameters, std::shared_ptr<WindowsMessagePump> pump)
        : reader_(reader), input_(reader), pump_(std::move(pump))
    {
        reader_.line().open(kPort, parameters, {});
        Line::set(parameters);
        pump_->add(input_);
    }

    ~Line() override
    {
        pump_->remove(input_);
        reader_.line().close();
    }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    void set(const LineParameters& parameters) override { input_.characterTime(parameters.characterTime()); }

    [[nodiscard]] ReceivedInput& input() override { return input_; }

    void send(std::string_view bytes) override
    {
        SimulatedLine& line = reader_.line();
        if (line.hungUp())
            input_.failHungUp();
        line.output(bytes);
        input_.answerMayCome();
    }

private:
    ReaderInProcess& reader_;
    Input input_;
    std::shared_ptr<WindowsMessagePump> pump_;
};

ReaderInProcess::ReaderInProcess(std::string name, LineDevice& device)
    : name_(std::move(name)), begin_(steadyTime()), line_(clock_),
      entry_(name_, [this](const LineParameters& parameters, std::shared_ptr<WindowsMessagePump> pump) {
          return std::make_unique<Line>(*this, parameters, std::move(pump));
      })
{
    // Whoever waits for a sheet may do so for days.
    clock_.limits(Moment::max(), kNoLimit, kNoLimit);
    line_.forgetActions();
    line_.attach(device);
}

SimulatedLine& ReaderInProcess::line()
{
    clock_.advanceTo(steadyTime() - begin_);
    return line_;
}

} // namespace kel
