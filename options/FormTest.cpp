// SPDX-License-Identifier: MIT
#include "options/FormTest.h"

#include "options/ListSelection.h"
#include "options/frmOptions.h"
#include "platform/Platform.h"
#include "platform/PortLook.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

#include <utility>

namespace kel {

FormTest::~FormTest()
{
    stop();
}

bool FormTest::isPossible() const
{
    const bool hasPort = !form_.cboPort.Enabled() || !form_.cboPort.Text().empty();
    return form_.cboReaderType.CurrentRow() > 0 && hasPort;
}

std::shared_ptr<ReaderTest> FormTest::ofForm(bool sharesMachine) const
{
    clsKELReader shown;
    form_.SaveValues(shown);
    // A device that a thread has put in a port's place is there on that thread alone.
    const bool needsPort = static_cast<bool>(form_.cboPort.Enabled());
    return std::make_shared<ReaderTest>(shown, sharesMachine && needsPort ? deviceOfPort(shown.Port()) : std::nullopt);
}

void FormTest::start(bool sharesMachine)
{
    if (isRunning() || !isPossible())
        return;
    const std::shared_ptr<ReaderTest> test = ofForm(sharesMachine);
    outcome_.reset();
    if (!sharesMachine) {
        Screen& screen = platform().screen();
        screen.MousePointer(kMousePointerHourglass);
        const ReaderTest::Outcome outcome = test->run();
        screen.MousePointer(kMousePointerDefault);
        show(outcome);
        return;
    }
    test_ = test;
    progress_ = test->progress();
    errand_.emplace();
    errand_->send([this, test]() -> Errands::Arrival { return [this, outcome = test->run()] { outcome_ = outcome; }; },
                  [this] { outcome_ = {.sentence = failureText(FailureCode::OutOfMemory)}; });
}

void FormTest::stop()
{
    if (!isRunning())
        return;
    test_->stop();
    errand_->callBack();
}

bool FormTest::turn()
{
    if (!isRunning())
        return false;
    const std::string before = std::exchange(progress_, test_->progress());
    errand_->take();
    if (!outcome_)
        return progress_ != before;
    // The box has turns of its own: the test is over before it.
    const ReaderTest::Outcome outcome = *std::exchange(outcome_, std::nullopt);
    errand_.reset();
    test_.reset();
    show(outcome);
    return true;
}

void FormTest::show(const ReaderTest::Outcome& outcome)
{
    using Kind = ReaderTest::Outcome::Kind;
    progress_ = outcome.kind == Kind::Stopped ? outcome.sentence : std::string();
    if (outcome.kind == Kind::Stopped)
        return;
    platform().screen().MsgBox(outcome.sentence,
                               outcome.kind == Kind::Answers ? BoxIcon::Information : BoxIcon::Exclamation,
                               BoxButtons::Ok, VBLM_RTString(text::kTestTitle));
}

} // namespace kel
