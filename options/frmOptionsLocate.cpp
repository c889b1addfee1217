// The search for the reader with the values of the dialog.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/ListSelection.h"
#include "platform/Platform.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

namespace kel {

namespace {

/// The settings that a search borrows. They stand again at the latest when this ends.
class BorrowedSettings {
public:
    explicit BorrowedSettings(clsKELReader& reader)
        : reader_(reader), iPort_(reader.Port()), eReaderType_(reader.ReaderType()),
          iFlowControl_(reader.FlowControl()), lBaudRate_(reader.BaudRate()), sParity_(reader.Parity()),
          iDataBits_(reader.DataBits()), sngStopBits_(reader.StopBits())
    {
    }
    ~BorrowedSettings() { restore(); }
    BorrowedSettings(const BorrowedSettings&) = delete;
    BorrowedSettings& operator=(const BorrowedSettings&) = delete;

    void restore() const
    {
        reader_.Port(iPort_);
        reader_.ReaderType(eReaderType_);
        reader_.FlowControl(iFlowControl_);
        reader_.BaudRate(lBaudRate_);
        reader_.Parity(sParity_);
        reader_.DataBits(iDataBits_);
        reader_.StopBits(sngStopBits_);
    }

private:
    clsKELReader& reader_;
    Int16 iPort_;
    kelReaderType eReaderType_;
    kelReaderFlowControl iFlowControl_;
    kelReaderBaudRate lBaudRate_;
    std::string sParity_;
    kelReaderDataBits iDataBits_;
    float sngStopBits_;
};

} // namespace

bool frmOptions::locateWithDialogValues()
{
    reader().ReaderType(static_cast<kelReaderType>(integerOf(selectedValue(cboReaderType))));
    reader().FlowControl(static_cast<kelReaderFlowControl>(integerOf(selectedValue(cboFlowControl))));
    reader().Port(CInt(Val(cboPort.Text())));
    reader().StopBits(static_cast<float>(Val(cboStopBits.Text())));
    reader().BaudRate(static_cast<kelReaderBaudRate>(integerOf(cboBaud.Text())));
    reader().DataBits(static_cast<kelReaderDataBits>(integerOf(cboDataBits.Text())));
    reader().Parity(selectedValue(cboParity));
    // Without a port in the list the search begins at port 1.
    const Int16 iStartPort = CInt(Val(cboPort.CellText(0, 0)));
    if (!reader().Locate(iStartPort))
        return false;
    const Int16 iPortLocated = reader().Port();
    selectText(cboPort, CStr(iPortLocated), 0);
    return cboPort.CurrentRow() != -1;
}

void frmOptions::cmdLocate_Click()
{
    guarded("KELReader81 - frmOptions.cmdLocate_Click", [&] {
        if (cboReaderType.CurrentRow() == -1)
            return;
        Screen& screen = platform().screen();
        screen.MousePointer(kMousePointerHourglass);
        const BorrowedSettings own(reader());
        if (locateWithDialogValues()) {
            screen.MsgBox(VBLM_RTString(TextNumber(160)) + cboPort.Text(), BoxIcon::Information, BoxButtons::Ok,
                          VBLM_RTString(TextNumber(162)));
            own.restore();
        } else {
            own.restore();
            screen.MsgBox(VBLM_RTString(TextNumber(164)), BoxIcon::Exclamation, BoxButtons::Ok,
                          VBLM_RTString(TextNumber(166)));
        }
        screen.MousePointer(kMousePointerDefault);
    });
}

} // namespace kel
