// SPDX-License-Identifier: MIT
#include "host/PlayedReader.h"

#include "simulators/platform/windows/ReaderInProcess.h"

namespace kel::host {

namespace {

class ReaderOfThisThread final : public PlayedReader {
public:
    explicit ReaderOfThisThread(std::unique_ptr<Simulator> reader)
        : reader_(std::move(reader)), line_("simulated reader", *reader_)
    {
    }

    [[nodiscard]] std::string device() const override { return line_.name(); }
    [[nodiscard]] std::vector<std::string> end() override { return reader_->errors(); }

private:
    std::unique_ptr<Simulator> reader_;
    ReaderInProcess line_;
};

} // namespace

std::unique_ptr<PlayedReader> playedReader(std::unique_ptr<Simulator> reader)
{
    return std::make_unique<ReaderOfThisThread>(std::move(reader));
}

} // namespace kel::host
