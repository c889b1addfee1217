// SPDX-License-Identifier: MIT
// Works the options dialog without a window, as a host with a window system of its own would, or a script: takes the
// model and the settings from the command line and prints what the reader has then.
// Usage: scripted_options MODEL-NUMBER [CONTROL=TEXT]...; "scripted_options 13 txtMarkCutOff=12 chkRejecter=1".

#include <KELReader81U/OptionsPresenter.h>
#include <KELReader81U/clsKELReader.h>
#include <KELReader81U/frmOptions.h>

#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

/// Shows boxes as lines.
class Lines final : public kel::Screen {
    kel::BoxAnswer MsgBox(const std::string& text, kel::BoxIcon, kel::BoxButtons, const std::string& title) override
    {
        std::cerr << title << ": " << text << '\n';
        return kel::BoxAnswer::Ok;
    }
    void Beep() override {}
    kel::Int32 MousePointer() const override { return kel::kMousePointerDefault; }
    void MousePointer(kel::Int32) override {}
};

/// Does with the controls what a user would do.
class Script final : public kel::OptionsPresenter {
public:
    Script(std::string model, std::vector<std::string> wishes) : model_(std::move(model)), wishes_(std::move(wishes)) {}

    bool show(kel::frmOptions& form, void*, std::string&) override
    {
        form.Show();
        form.cboReaderType.CurrentRow(form.cboReaderType.FindRow(model_, 0, 1));
        for (const std::string& wish : wishes_) {
            const std::size_t sign = wish.find('=');
            if (sign == std::string::npos || !fulfil(form, wish.substr(0, sign), wish.substr(sign + 1)))
                std::cerr << "Cannot do " << wish << '\n';
        }
        form.cmdOK.Click();
        // A warning has kept the form open: nobody is there to correct it.
        if (form.Visible())
            form.cmdCancel.Click();
        return true;
    }

    kel::Screen* screen() override { return &lines_; }

private:
    static bool fulfil(const kel::frmOptions& form, const std::string& name, const std::string& text)
    {
        for (kel::Control* const control : form.Controls()) {
            if (control->Name() != name || !control->Usable())
                continue;
            if (auto* const field = dynamic_cast<kel::PowerEdit*>(control)) {
                field->GotFocus();
                field->Text(text);
                field->Validate();
                return true;
            }
            if (auto* const list = dynamic_cast<kel::PowerCombo*>(control)) {
                list->CurrentRow(list->FindRow(text, 0, 0));
                return list->CurrentRow() != -1;
            }
            if (auto* const box = dynamic_cast<kel::CheckBox*>(control)) {
                if (box->Value() != (text == "1" ? 1 : 0))
                    box->Click();
                return true;
            }
        }
        return false;
    }

    std::string model_;
    std::vector<std::string> wishes_;
    Lines lines_;
};

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) {
        std::cerr << "Usage: scripted_options MODEL-NUMBER [CONTROL=TEXT]...\n";
        return EXIT_FAILURE;
    }
    kel::setOptionsPresenter(
        std::make_shared<Script>(arguments.front(), std::vector<std::string>(arguments.begin() + 1, arguments.end())));
    kel::clsKELReader reader;
    const kel::Boolean chosen = reader.ShowOptions();
    if (chosen)
        std::cout << reader.ReaderName() << ": port " << reader.Port() << ", " << reader.BaudRate()
                  << " baud, threshold " << reader.RecognitionThreshold() << ", mark cut-off " << reader.MarkCutOff()
                  << '\n';
    return chosen ? EXIT_SUCCESS : EXIT_FAILURE;
}
