// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/apperson/AppersonReader.h"

namespace kel {

/// An Apperson reader that sends its marks as they are: the Advantage Link and the Grade Master. Each command is a few
/// letters with CR (0D) after.
///
///     Advantage Link                                       Grade Master
///     T1    start of session           OK                  A1 S8 M3   start of session           OK
///     FB    there will be a sheet      OK                  P          read a sheet               block
///     FD    read it                    block               S9         end of session             OK
///     FE    it is done                 OK or a code
///     T2    end of session             OK
///
///     block: row 1 in 14 bytes, further rows with           identifier in 10 bytes, a byte without meaning, the
///            a byte a column; 200, or the code of           number of an error in 3, a byte a row (bit 01 is
///            what went wrong                                column 1); 217, or the code of what went wrong
///
/// A sheet without identifier says "Blank ID# ", one that went wrong "Error     ". T1 and A1 do not come when the
/// reader grades.
///
/// It refuses as the host's mistake: any other command and any other order, a sheet asked for while one is under way or
/// not done with FE, and FE before the whole block is there.
///
/// Settings beside those of all Apperson readers: `columns` (of the Advantage Link, those of the form or 12 without
/// it), `empty-code` (the code when the feeder is empty; without it the reader waits for a sheet), `fault-tail` (what
/// follows the code of a block that went wrong, in the notation of transcripts).
///
/// Fields of a sheet: "Status" (the code instead of 200 or 217), "End Code" (of the Advantage Link, instead of the OK
/// of FE), "Error Code" (of the Grade Master, three characters after "Error "). The identifier is the barcode.
class RawMarkReader final : public AppersonReader {
public:
    explicit RawMarkReader(SimulatorOptions options);

private:
    enum class Page { None, Begun, UnderWay, Sent };

    void onByte(Byte byte) override;
    void onClose() override;
    void onSheetPut() override;
    void onLeftover() override;

    void obey(const std::string& command);
    void begin();
    void startRead(const std::string& command);
    void done();
    void endSession(const std::string& command);
    void takeSheet();
    void sendSheet(const std::string& bytes, Int32 status);
    [[nodiscard]] std::string linkBytes() const;
    [[nodiscard]] std::string gradeBytes(const std::string& errorCode) const;
    [[nodiscard]] std::string rowsAsBits() const;
    [[nodiscard]] Int32 rowCount() const;
    void restart();

    bool link_; // an Advantage Link
    std::string command_;
    Page page_ = Page::None;
    bool waitingForSheet_ = false;
    Int32 columns_;
    Int32 emptyCode_;
    std::string faultTail_;
};

} // namespace kel
