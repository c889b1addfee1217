// SPDX-License-Identifier: MIT
#include "host/PlayedReader.h"

#include "simulators/pseudo_terminal/PtyDeviceHost.h"

namespace kel::host {

namespace {

class ReaderBehindPty final : public PlayedReader {
public:
    explicit ReaderBehindPty(std::unique_ptr<Simulator> reader) : reader_(std::move(reader)), host_(*reader_)
    {
        host_.start();
    }

    [[nodiscard]] std::string device() const override { return host_.deviceFile(); }

    [[nodiscard]] std::vector<std::string> end() override
    {
        host_.stop();
        host_.join();
        return reader_->errors();
    }

private:
    std::unique_ptr<Simulator> reader_;
    PtyDeviceHost host_;
};

} // namespace

std::unique_ptr<PlayedReader> playedReader(std::unique_ptr<Simulator> reader)
{
    return std::make_unique<ReaderBehindPty>(std::move(reader));
}

} // namespace kel::host
