// SPDX-License-Identifier: MIT
// The button that tests the reader, and what the test says meanwhile.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"

namespace kel {

/// With the Tab key it comes before OK.
void OptionsDialogWindow::createTest()
{
    testReader_ = createAid(L"BUTTON", DWORD{WS_VISIBLE} | WS_TABSTOP | BS_PUSHBUTTON, kTestReader);
    const Shown* const before = shown(form_.cmdDefaults);
    tabAfter(before ? before->window : nullptr, testReader_);
}

/// The button, and what the test does or, once it has been stopped, that it was.
bool OptionsDialogWindow::refreshTest()
{
    const OptionsAids& aids = form_.Aids();
    const bool runs = aids.testsReader();
    bool isNew = showText(testReader_, runs ? aids.captions().stopTest : aids.captions().testReader);
    isNew |= takeState(testReader_, true, runs || aids.canTestReader());
    if (runs || showsTest_) {
        showsTest_ = runs;
        if (showText(notice_, aids.testProgress()) && !aids.testProgress().empty())
            ::NotifyWinEvent(EVENT_SYSTEM_ALERT, notice_, OBJID_CLIENT, CHILDID_SELF);
    }
    return isNew;
}

void OptionsDialogWindow::testReader()
{
    if (!mayTest(form_, *this))
        return;
    ::SetWindowTextW(notice_, L"");
    form_.Aids().testReader();
    refresh();
}

} // namespace kel
