// Whole sessions with the EZData and Chatsworth readers, which judge their replies within the dialogue: whatever a
// reader says, the session ends, and run-time failures other than those that are meant come out of none.

#include "failure/basError.h"
#include "platform/simulated/SimulatedPlatform.h"
#include "reader/clsKELReader.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <string_view>

using namespace kel;

namespace {

constexpr kelReaderType kModels[] = {kelReaderTypeNCSEZData,         kelReaderTypeChatsworthACF100,
                                     kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthOMR2000,
                                     kelReaderTypeChatsworthACF200,  kelReaderTypeChatsworthALSAccelScanOMR,
                                     kelReaderTypeChatsworthACP200};

/// Answers what may be the end of a command with the next piece of the data: its length, then its bytes.
class FuzzedReader final : public LineDevice {
public:
    explicit FuzzedReader(std::string_view data) : data_(data) {}

    void lineOpened(Moment now, const LineParameters&) override { answer(now); }
    void lineClosed(Moment) override { answers_.clear(); }
    void byteFromHost(Moment now, Byte byte) override
    {
        if (byte == 'E' || byte == '\r' || byte == 0x11)
            answer(now);
    }
    [[nodiscard]] std::optional<Moment> nextEvent() const override
    {
        return answers_.empty() ? std::nullopt : std::optional(answers_.front().first);
    }
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override
    {
        if (answers_.empty() || answers_.front().first > now)
            return std::nullopt;
        const Byte byte = answers_.front().second;
        answers_.pop_front();
        return byte;
    }
    [[nodiscard]] bool hungUp() const override { return hungUp_; }
    void hangUp() { hungUp_ = true; }

private:
    void answer(Moment now)
    {
        if (data_.empty())
            return;
        const auto length = static_cast<std::size_t>(static_cast<Byte>(data_.front()));
        data_.remove_prefix(1);
        for (const char byte : data_.substr(0, length))
            answers_.emplace_back(now + std::chrono::milliseconds(5), static_cast<Byte>(byte));
        data_.remove_prefix(std::min(length, data_.size()));
    }

    std::string_view data_;
    std::deque<std::pair<Moment, Byte>> answers_;
    bool hungUp_ = false;
};

class KnownReports final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        constexpr Int32 kMeant[] = {0, 6, 9, 8002, 8018, 8020};
        if (std::find(std::begin(kMeant), std::end(kMeant), report.ErrorNumber) == std::end(kMeant))
            std::abort();
        return 0;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    FuzzedReader device(std::string_view(reinterpret_cast<const char*>(data + 1), size - 1));
    machine.attach(1, device);
    machine.hostPace(HostPace::Instant);
    // Some waits have no end of their own.
    machine.at(std::chrono::minutes(10), [&] { device.hangUp(); });
    clsKELReader reader;
    reader.SetError(std::make_shared<KnownReports>());
    reader.LoadDefaults(kModels[data[0] % std::size(kModels)]);
    reader.Feeder((data[0] & 0x80) != 0);
    reader.Port(1);
    Int32 lSheetCount = 0;
    reader.ReadBatch(False, 3, lSheetCount);
    std::string version;
    reader.Firmware(version);
    reader.Locate(0);
    reader.SetError(nullptr);
    return 0;
}
