// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <fstream>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>

namespace kel {

/// The reader that the simulated library controls, with the library's own memory of it. Every member function is one
/// call of the host; it does what the reader would do, and notes what a host must not do.
class OmrDevice {
public:
    OmrDevice() = default;
    explicit OmrDevice(OmrSimulationState state);

    [[nodiscard]] OmrSimulationReport report() const;

    /// Lays a sheet under those in the feeder that no seed gives.
    void put(SimulatedSheet sheet) { given_.put(std::move(sheet)); }

    // The device
    Int32 open();
    Int32 close();
    Int32 lastError();
    Int32 readingMethod(Int32& first, Int32& second);
    Int32 setReadingMethod(Int32 method, Int32 second);
    Int32 columns();
    Int32 setColumns(Int32 count);
    Int32 setBackSensor(Int32 on);
    Int32 feedMode(Int32& first, Int32& second);
    Int32 setFeedMode(Int32 first, Int32 second);

    // A sheet
    Int32 feed();
    Int32 marks(Int32 side, Int32 threshold, Int32& rows, Int32 columns, Byte* bytes);
    Int32 eject(Int32 outlet);

    // Barcodes
    Int32 barcodeUnit();
    Int32 setBarcodeUnit(Int32 on);
    Int32 setBarcodeArea(Int32 start, Int32 length);
    Int32 setBarcodeTypes(Int32 mask);
    Int32 setCheckDigit(Byte type, Int32 on);
    Int32 barcodeInfo(Int32& readCount, Int32& settingCount);
    Int32 barcode(Int32 index, Byte& type, Int32& length, Byte* bytes);

    // Print
    Int32 setPrintOrder(Int32 first, Int32 second, Int32 third);
    Int32 setPrintPosition(Int32 position);
    Int32 setPrintString(Int32 line, const char* text);

    /// A function that no host of this system calls.
    Int32 unexpected(const char* function);

private:
    /// The sheet in the transport, and what the host has done with it.
    struct Transport {
        Int32 number = 0;
        SimulatedSheet sheet;
        bool barcodesPrepared = false;
        bool frontFetched = false;
        bool backFetched = false;
        bool printed = false;
    };

    /// Notes a call; its refusal, if there is one. Every call begins here.
    [[nodiscard]] std::optional<Int32> begin(const std::string& function, std::initializer_list<Int32> arguments,
                                             const std::string& text = {});

    /// Notes what the host did wrongly.
    void fault(const std::string& what);
    /// The same if the condition does not hold, which is also the answer.
    bool demand(bool condition, const std::string& what);
    bool demandOpen(const std::string& function);

    void note(SheetEvent event, const std::string& text = {}, Int32 line = 0, Int32 position = 0);
    void writeLine(const std::string& line);

    void checkReadiness();
    [[nodiscard]] bool isFeederEmpty() const { return given_.empty() && random_.empty(); }
    [[nodiscard]] SimulatedSheet takeSheet();
    /// The sheet leaves the transport, printed on if lines were set for it.
    void leave(SheetEvent event, const std::string& where);
    /// What the library reports if this simulation knows no better.
    static constexpr Int32 kSomeError = 1;
    Int32 fail(Int32 code, Int32 result = 0);

    OmrSimulationState state_;
    std::ofstream logFile_;
    std::vector<std::string> calls_;
    std::vector<std::string> faults_;
    std::vector<SheetRecord> log_;
    std::map<std::string, Int32> callCounts_;

    bool open_ = false;
    Int32 lastError_ = 0;
    bool lastErrorDue_ = false;
    std::optional<Int32> backSensor_;

    SheetFeeder given_;
    SheetFeeder random_;
    SiteFaults paperFaults_;
    Int32 feeds_ = 0;
    Int32 fed_ = 0;
    std::optional<Transport> transport_;

    bool areaSet_ = false;
    bool typesSet_ = false;
    std::set<Byte> checkDigits_;

    bool orderSet_ = false;
    std::optional<Int32> printPosition_;
    std::array<std::string, 3> printStrings_;
    Int32 linesSet_ = 0;
};

} // namespace kel
