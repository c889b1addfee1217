// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "options/PresenterPlatform.h"
#include "options/basPublic.h"
#include "options/frmOptions.h"
#include "reader/clsKELReader.h"
#include "types/Text.h"

namespace kel::test {
namespace {

[[noreturn]] void fail()
{
    throw RuntimeFailure(FailureCode::AutomationError);
}

/// The dialog with a model chosen, and a screen that fails when it is to show or sound something.
class Dialog {
public:
    explicit Dialog(GuardBench& bench, kelReaderType model = kelReaderTypeScantronScanMark2500)
        : screen_(bench.machine.screen()), windowed_(bench.machine, screen_), scope_(windowed_)
    {
        reader.LoadDefaults(model);
        form.SetReader(reader);
        form.Show();
    }

private:
    class FailingScreen final : public Screen {
    public:
        BoxAnswer MsgBox(const std::string& text, BoxIcon, BoxButtons, const std::string& title) override
        {
            // That of the last resort comes through.
            if (title == "Application Error")
                return screen_.MsgBox(text, BoxIcon::None, BoxButtons::Ok, title);
            fail();
        }
        void Beep() override { fail(); }
        [[nodiscard]] Int32 MousePointer() const override { return kMousePointerDefault; }
        void MousePointer(Int32) override {}

        explicit FailingScreen(Screen& screen) : screen_(screen) {}

    private:
        Screen& screen_;
    };

    FailingScreen screen_;
    PresenterPlatform windowed_;
    PlatformScope scope_;

public:
    clsKELReader reader;
    frmOptions form;
};

/// Fails with texts that a test names.
class FailingMeasure final : public TextMeasure {
public:
    explicit FailingMeasure(std::string text) : text_(std::move(text)) {}
    double TextWidth(const std::string& text, const Font&) override
    {
        if (text == text_)
            fail();
        return 100;
    }

private:
    std::string text_;
};

/// A host that cannot give its font, and hears reports as the bench's does.
class FontlessHost final : public ErrorObject {
public:
    explicit FontlessHost(std::shared_ptr<ErrorObject> host) : host_(std::move(host)) {}
    Int32 RaiseError(const ErrorReport& report) override { return host_->RaiseError(report); }
    void SetFont(void*) override { fail(); }

private:
    std::shared_ptr<ErrorObject> host_;
};

/// A form with two controls.
struct SmallForm final : Form {
    Label left{*this, "left"};
    CheckBox right{*this, "right", nullptr};
};

const std::vector<GuardCase> kLayoutGuards = {
    {"basPublic.ControlTextWidth", FailsBy::Statement, 440,
     [](GuardBench&) {
         SmallForm form;
         FailingMeasure measure("A & B");
         form.Measure(&measure);
         form.left.Caption("A && B");
         EXPECT_EQ(ControlTextWidth(form, form.left), 0);
     }},
    // The caption could be measured, the room after it not.
    {"basPublic.ControlAutoSize", FailsBy::Statement, 440,
     [](GuardBench&) {
         SmallForm form;
         FailingMeasure measure(Space(8));
         form.Measure(&measure);
         form.right.Width(7);
         ControlAutoSize(form, {&form.left, &form.right});
         EXPECT_EQ(form.left.Width(), 100);
         EXPECT_EQ(form.right.Width(), 7);
     }},
    {"basPublic.ControlPositionRight", FailsBy::Statement, 6,
     [](GuardBench&) {
         SmallForm form;
         form.left.Left(1e12);
         ControlPositionRight(form, form.left, form.right, nullptr, True, 60, False);
         EXPECT_EQ(form.right.Left(), 0);
     }},
    {"basPublic.ControlAlignLeft", FailsBy::Processor, 0,
     [](GuardBench&) {
         SmallForm form;
         form.left.Left(500);
         const ControlList controls{&form.right, &form.left};
         SteppedFault::arm();
         const ComponentCode running;
         ControlAlignLeft(controls, False);
         SteppedFault::disarm();
         EXPECT_EQ(form.right.Left(), 0);
     }},
    {"basPublic.UnloadForm", FailsBy::Statement, 440,
     [](GuardBench&) {
         auto form = std::make_shared<SmallForm>();
         form->Show();
         form->onHide = &fail;
         UnloadForm(form);
         EXPECT_NE(form, nullptr);
     }},
};

const GuardTable layoutGuards("LayoutGuards", kLayoutGuards);

const GuardTable
    dialogGuards("DialogGuards",
                 {
                     {"frmOptions.SetReader", FailsBy::Processor, 0,
                      [](GuardBench&) {
                          clsKELReader reader;
                          frmOptions form;
                          SteppedFault::arm();
                          const Boolean bResult = form.SetReader(reader);
                          SteppedFault::disarm();
                          EXPECT_EQ(bResult, False);
                      }},
                     {"frmOptions.Form_Load", FailsBy::Statement, 440,
                      [](GuardBench& bench) {
                          clsKELReader reader;
                          frmOptions form;
                          form.SetReader(reader);
                          setErrorObject(std::make_shared<FontlessHost>(bench.host));
                          form.Form_Load();
                          EXPECT_EQ(form.cmdOK.Caption(), VBLM_RTString(154));
                          EXPECT_EQ(form.cboReaderType.RowCount(), 0);
                      }},
                     {"frmPreferences.RepositionControls", FailsBy::Statement, 7,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          const FailingAllocation noMemory;
                          dialog.form.RepositionControls();
                      }},
                     {"frmOptions.LoadValues", FailsBy::Statement, 91,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          dialog.reader.Profiles(nullptr);
                          dialog.form.LoadValues();
                          EXPECT_EQ(dialog.form.cboReaderType.RowCount(), 0);
                      }},
                     {"frmOptions.SaveValues", FailsBy::Statement, 13,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          clsKELReader saved;
                          saved.Parity("before");
                          dialog.form.cboFlowControl.CurrentRow(-1);
                          dialog.form.SaveValues(saved);
                          EXPECT_EQ(saved.BaudRate(), dialog.reader.BaudRate());
                          EXPECT_EQ(saved.Parity(), "before");
                      }},
                     {"frmOptions.AddComboItem", FailsBy::Statement, 9,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          frmOptions::AddComboItem(dialog.form.cboParity, "Sixth", True, 0, 99);
                          EXPECT_EQ(dialog.form.cboParity.RowCount(), 6);
                          EXPECT_EQ(dialog.form.cboParity.CellText(0, 5), "");
                      }},
                     {"frmOptions.SetSpinMinMax", FailsBy::Statement, 380,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          PowerEdit& field = dialog.form.txtSystemPause;
                          field.Maximum(100);
                          field.Minimum(50);
                          frmOptions::SetSpinMinMax(field, 100, 20);
                          EXPECT_EQ(field.Maximum(), 100);
                          EXPECT_EQ(field.Minimum(), 50);
                      }},
                     {"frmOptions.ValidateSpinValue", FailsBy::Statement, 13,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          dialog.form.txtSystemPause.Text("abc");
                          frmOptions::ValidateSpinValue(dialog.form.txtSystemPause, False);
                          EXPECT_EQ(dialog.form.txtSystemPause.Text(), "abc");
                      }},
                     {"frmOptions.cboReaderType_SelChangeEx", FailsBy::Statement, 13,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          dialog.form.cboReaderType_SelChangeEx(0, 99);
                          EXPECT_EQ(dialog.form.frmReader.Visible(), True);
                      }},
                     {"frmOptions.chkReaderGrade_Click", FailsBy::Statement, 440,
                      [](GuardBench& bench) {
                          Dialog dialog(bench, kelReaderTypeNCSOpScan4);
                          dialog.form.chkReaderGrade.Value(1);
                          EXPECT_EQ(dialog.form.txtMarkCutOff.Enabled(), False);
                          dialog.form.chkReaderGrade.Value(0);
                          EXPECT_EQ(dialog.form.txtMarkCutOff.Enabled(), True);
                      }},
                     {"frmOptions.cmdOK_Click", FailsBy::Statement, 440,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          ASSERT_EQ(dialog.form.cboPort.Text(), "");
                          dialog.form.cmdOK.Click();
                          EXPECT_EQ(dialog.form.Visible(), True);
                      }},
                     // The decision stands, though the view fails with it.
                     {"frmOptions.cmdCancel_Click", FailsBy::Statement, 440,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          dialog.form.onHide = &fail;
                          dialog.form.cmdCancel.Click();
                          EXPECT_EQ(dialog.form.iReaderIndex(), -1);
                          EXPECT_EQ(frmOptions::Cancelled(), True);
                          dialog.form.onHide = {};
                      }},
                     {"frmOptions.cmdDefaults_Click", FailsBy::Caller, 7,
                      [](GuardBench& bench) {
                          Dialog dialog(bench);
                          const FailingAllocation noMemory(1, 2);
                          dialog.form.cmdDefaults.Click();
                          EXPECT_EQ(dialog.form.cboReaderType.CellText(1, dialog.form.cboReaderType.CurrentRow()), "0");
                      }},
                     {"frmOptions.cmdLocate_Click", FailsBy::Statement, 13,
                      [](GuardBench& bench) {
                          Dialog dialog(bench, kelReaderTypeNCSEZData);
                          dialog.form.cboFlowControl.CurrentRow(-1);
                          dialog.form.cmdLocate.Click();
                          EXPECT_EQ(dialog.reader.ReaderType(), kelReaderTypeNCSEZData);
                      }},
                 });

/// A number field and its part in the names of its procedures.
struct NumberField {
    const char* name;
    PowerEdit frmOptions::*field;
};

constexpr NumberField kFilteredFields[] = {
    {"txtRecognitionThreshold", &frmOptions::txtRecognitionThreshold},
    {"txtMarkDiscrimination", &frmOptions::txtMarkDiscrimination},
    {"txtMarkCutOff", &frmOptions::txtMarkCutOff},
    {"txtReaderTimeout", &frmOptions::txtReaderTimeout},
};
constexpr NumberField kPauseField = {"txtSystemPause", &frmOptions::txtSystemPause};

void addCases(std::vector<GuardCase>& cases, const NumberField& field)
{
    const std::string prefix = std::string("frmOptions.") + field.name;
    const auto member = field.field;
    cases.push_back({prefix + "_GotFocus", FailsBy::Processor, 0, [member](GuardBench& bench) {
                         Dialog dialog(bench);
                         PowerEdit& edit = dialog.form.*member;
                         SteppedFault::arm();
                         edit.onGotFocus();
                         SteppedFault::disarm();
                     }});
    // What stands in the field is no number, and there is no memory for the report of that.
    const auto leave = [&](const char* event, void (PowerEdit::*left)()) {
        cases.push_back({prefix + event, FailsBy::Caller, 7, [member, left](GuardBench& bench) {
                             Dialog dialog(bench);
                             (dialog.form.*member).Text("abc");
                             FailingAllocation::armForHandlers();
                             ((dialog.form.*member).*left)();
                             EXPECT_EQ((dialog.form.*member).Text(), "abc");
                         }});
    };
    leave("_Validate", &PowerEdit::Validate);
    leave("_ValidationError", &PowerEdit::ValidationError);
}

std::vector<GuardCase> fieldCases()
{
    std::vector<GuardCase> cases;
    addCases(cases, kPauseField);
    for (const NumberField& field : kFilteredFields) {
        addCases(cases, field);
        const auto member = field.field;
        cases.push_back({std::string("frmOptions.") + field.name + "_KeyPress", FailsBy::Statement, 440,
                         [member](GuardBench& bench) {
                             Dialog dialog(bench);
                             EXPECT_EQ((dialog.form.*member).KeyPress('x'), 'x');
                         }});
    }
    return cases;
}

const GuardTable fieldGuards("FieldGuards", fieldCases());

} // namespace
} // namespace kel::test
