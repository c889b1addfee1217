// SPDX-License-Identifier: MIT
// The search for the reader with the values of the dialog.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/FormAids.h"
#include "options/ListSelection.h"
#include "platform/Platform.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

namespace kel {

namespace {

/// The reader's own settings while a search uses others.
struct OwnSettings {
    Int16 iPort = 0;
    kelReaderType eReaderType = kelReaderTypeNone;
    kelReaderFlowControl iFlowControl{};
    kelReaderBaudRate lBaudRate{};
    std::string sParity;
    kelReaderDataBits iDataBits{};
    float sngStopBits = 0;
};

/// Changes a reader's settings for a search. They are restored at the latest when this ends.
class BorrowedSettings {
public:
    BorrowedSettings(clsKELReader& reader, OwnSettings& own) : reader_(reader), own_(own)
    {
        own = {reader.Port(),   reader.ReaderType(), reader.FlowControl(), reader.BaudRate(),
               reader.Parity(), reader.DataBits(),   reader.StopBits()};
    }
    ~BorrowedSettings() { restore(); }
    BorrowedSettings(const BorrowedSettings&) = delete;
    BorrowedSettings& operator=(const BorrowedSettings&) = delete;

    void restore() const
    {
        reader_.Port(own_.iPort);
        reader_.ReaderType(own_.eReaderType);
        reader_.FlowControl(own_.iFlowControl);
        reader_.BaudRate(own_.lBaudRate);
        reader_.Parity(own_.sParity);
        reader_.DataBits(own_.iDataBits);
        reader_.StopBits(own_.sngStopBits);
    }

private:
    clsKELReader& reader_;
    const OwnSettings& own_;
};

} // namespace

bool frmOptions::locateWithDialogValues(Int16 iPortIndex, Int16& iStartPort, Int16& iPortLocated)
{
    reader().ReaderType(static_cast<kelReaderType>(integerOf(selectedValue(cboReaderType))));
    reader().FlowControl(static_cast<kelReaderFlowControl>(integerOf(selectedValue(cboFlowControl))));
    reader().Port(CInt(Val(cboPort.Text())));
    reader().StopBits(static_cast<float>(Val(cboStopBits.Text())));
    reader().BaudRate(static_cast<kelReaderBaudRate>(integerOf(cboBaud.Text())));
    reader().DataBits(static_cast<kelReaderDataBits>(integerOf(cboDataBits.Text())));
    reader().Parity(selectedValue(cboParity));
    // Without a port in the list the search begins at port 1.
    iStartPort = CInt(Val(cboPort.CellText(0, iPortIndex)));
    if (!reader().Locate(iStartPort))
        return false;
    iPortLocated = reader().Port();
    selectText(cboPort, CStr(iPortLocated), 0);
    return cboPort.CurrentRow() != -1;
}

void frmOptions::cmdLocate_Click()
{
    OwnSettings own;
    const Int16 iPortIndex = 0;
    Int16 iStartPort = 0;
    Int16 iPortLocated = 0;
    const auto locals = localsFrom([&](VariableLines& lines) {
        lines.add("iPort, eReaderType, iFlowControl, lBaudRate, sParity, iDataBits, sngStopBits", own.iPort,
                  own.eReaderType, own.iFlowControl, own.lBaudRate, own.sParity, own.iDataBits, own.sngStopBits);
        lines.add("iPortIndex, iStartPort, iPortLocated", iPortIndex, iStartPort, iPortLocated);
    });
    guarded("KELReader81 - frmOptions.cmdLocate_Click", locals + moduleOf(*this), [&] {
        if (cboReaderType.CurrentRow() == -1)
            return;
        Screen& screen = platform().screen();
        screen.MousePointer(kMousePointerHourglass);
        ownAids_->endLook(); // the search opens the same ports
        const BorrowedSettings borrowed(reader(), own);
        if (locateWithDialogValues(iPortIndex, iStartPort, iPortLocated)) {
            screen.MsgBox(VBLM_RTString(text::kReaderFoundAtPort) + cboPort.Text(), BoxIcon::Information,
                          BoxButtons::Ok, VBLM_RTString(text::kReaderFoundTitle));
            borrowed.restore();
        } else {
            borrowed.restore();
            screen.MsgBox(VBLM_RTString(text::kReaderNotFound), BoxIcon::Exclamation, BoxButtons::Ok,
                          VBLM_RTString(text::kReaderNotFoundTitle));
        }
        screen.MousePointer(kMousePointerDefault);
    });
}

} // namespace kel
