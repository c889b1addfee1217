// SPDX-License-Identifier: MIT
#include "options/FormTrial.h"

#include "options/ListSelection.h"
#include "options/frmOptions.h"
#include "platform/Platform.h"
#include "platform/PortLook.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

#include <utility>

namespace kel {

FormTrial::~FormTrial()
{
    stop();
}

bool FormTrial::isPossible() const
{
    const bool hasPort = !form_.cboPort.Enabled() || !form_.cboPort.Text().empty();
    return form_.cboReaderType.CurrentRow() > 0 && hasPort;
}

std::shared_ptr<ReaderTrial> FormTrial::ofForm(bool sharesMachine) const
{
    clsKELReader shown;
    form_.SaveValues(shown);
    // A device that a thread has put in a port's place is there on that thread alone.
    const bool needsPort = static_cast<bool>(form_.cboPort.Enabled());
    return std::make_shared<ReaderTrial>(shown, sharesMachine && needsPort ? deviceOfPort(shown.Port()) : std::nullopt);
}

void FormTrial::start(bool sharesMachine)
{
    if (isRunning() || !isPossible())
        return;
    const std::shared_ptr<ReaderTrial> test = ofForm(sharesMachine);
    outcome_.reset();
    if (!sharesMachine) {
        Screen& screen = platform().screen();
        screen.MousePointer(kMousePointerHourglass);
        const ReaderTrial::Outcome outcome = test->run();
        screen.MousePointer(kMousePointerDefault);
        show(outcome);
        return;
    }
    trial_ = test;
    progress_ = test->progress();
    errand_.emplace();
    errand_->send([this, test]() -> Errands::Arrival { return [this, outcome = test->run()] { outcome_ = outcome; }; },
                  [this] { outcome_ = {.sentence = failureText(FailureCode::OutOfMemory)}; });
}

void FormTrial::stop()
{
    if (!isRunning())
        return;
    trial_->stop();
    errand_->callBack();
}

bool FormTrial::turn()
{
    if (!isRunning())
        return false;
    const std::string before = std::exchange(progress_, trial_->progress());
    errand_->take();
    if (!outcome_)
        return progress_ != before;
    // The box has turns of its own: the test is over before it.
    const ReaderTrial::Outcome outcome = *std::exchange(outcome_, std::nullopt);
    errand_.reset();
    trial_.reset();
    show(outcome);
    return true;
}

void FormTrial::show(const ReaderTrial::Outcome& outcome)
{
    using Kind = ReaderTrial::Outcome::Kind;
    progress_ = outcome.kind == Kind::Stopped ? outcome.sentence : std::string();
    if (outcome.kind == Kind::Stopped)
        return;
    platform().screen().MsgBox(outcome.sentence,
                               outcome.kind == Kind::Answers ? BoxIcon::Information : BoxIcon::Exclamation,
                               BoxButtons::Ok, VBLM_RTString(text::kTestTitle));
}

} // namespace kel
