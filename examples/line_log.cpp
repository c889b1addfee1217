// SPDX-License-Identifier: MIT
// Reads one sheet and logs what goes over the line: a carrier of the host's own instead of the reader's.
// Usage: line_log MODEL-NUMBER ROWS COLUMNS; "kelreader ports set 1 DEVICE" says which device port 1 is.

#include <KELReader81U/clsKELReader.h>

#include <cstdio>
#include <cstdlib>

namespace {

void log(char direction, std::string_view bytes)
{
    if (bytes.empty())
        return;
    std::fprintf(stderr, "%c", direction);
    for (const char byte : bytes)
        std::fprintf(stderr, " %02X", static_cast<unsigned char>(byte));
    std::fprintf(stderr, "\n");
}

/// Hands everything on to the reader's own control, and logs what is sent and taken.
class LoggingControl final : public kel::SerialControl {
public:
    explicit LoggingControl(kel::SerialControl& own) : own_(own) {}

    kel::Int16 CommPort() const override { return own_.CommPort(); }
    void CommPort(kel::Int16 value) override { own_.CommPort(value); }
    std::string Settings() const override { return own_.Settings(); }
    void Settings(const std::string& value) override { own_.Settings(value); }
    kel::Int32 Handshaking() const override { return own_.Handshaking(); }
    void Handshaking(kel::Int32 value) override { own_.Handshaking(value); }
    kel::Boolean PortOpen() const override { return own_.PortOpen(); }
    void PortOpen(kel::Boolean value) override { own_.PortOpen(value); }
    kel::Int32 InputLen() const override { return own_.InputLen(); }
    void InputLen(kel::Int32 value) override { own_.InputLen(value); }
    kel::Int32 InBufferCount() override { return own_.InBufferCount(); }

    std::string Input() override
    {
        std::string bytes = own_.Input();
        log('<', bytes);
        return bytes;
    }

    void Output(std::string_view bytes) override
    {
        log('>', bytes);
        own_.Output(bytes);
    }

private:
    kel::SerialControl& own_;
};

class LoggingCarrier final : public kel::Carrier {
public:
    explicit LoggingCarrier(kel::Reference<kel::Carrier> own) : own_(own), control_(own->mscComm()) {}

    kel::SerialControl& mscComm() override { return control_; }
    kel::ScanTimer& tmrScan() override { return own_->tmrScan(); }

private:
    kel::Reference<kel::Carrier> own_; // keeps alive what the control hands on to
    LoggingControl control_;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fprintf(stderr, "usage: line_log MODEL-NUMBER ROWS COLUMNS\n");
        return EXIT_FAILURE;
    }
    kel::clsKELReader reader;
    reader.fComm(kel::makeReference<LoggingCarrier>(reader.fComm()));
    reader.LoadDefaults(static_cast<kel::kelReaderType>(std::atoi(argv[1])));
    reader.Port(1);
    reader.RecognitionMode(kel::kelRecognitionTypePage);
    reader.Side1Rows(kel::PageArray::of(1, {kel::CInt(std::atoi(argv[2]))}));
    reader.Side1Cols(kel::PageArray::of(1, {kel::CInt(std::atoi(argv[3]))}));

    bool read = false;
    if (reader.StartReader()) {
        read = static_cast<bool>(reader.ReadPage(kel::False));
        reader.EjectPage();
    }
    reader.EndReader();
    return read ? EXIT_SUCCESS : EXIT_FAILURE;
}
