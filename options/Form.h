// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"
#include "options/OptionsAids.h"

namespace kel {

/// Measures texts for a form: the window system's view, or an estimate where there is none.
class KEL_PUBLIC TextMeasure {
public:
    virtual ~TextMeasure() = default;

    /// The width of a text of one line, in twips.
    [[nodiscard]] virtual double TextWidth(const std::string& text, const Font& font) = 0;
};

/// A form: its controls, its typeface, and whether it is shown. Header only, as the controls are.
class KEL_PUBLIC Form : public ControlHost {
public:
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    /// Text of the title bar.
    [[nodiscard]] const std::string& Caption() const { return caption_; }
    void Caption(std::string value) { caption_ = std::move(value); }

    /// The typeface in which texts are measured.
    [[nodiscard]] const kel::Font& Font() const { return font_; }
    void Font(kel::Font value) { font_ = std::move(value); }

    /// The help topic of the form within the host's help file, which may be empty.
    [[nodiscard]] Int32 HelpContextID() const { return helpContextID_; }
    void HelpContextID(Int32 value) { helpContextID_ = value; }
    [[nodiscard]] const std::string& HelpFile() const { return helpFile_; }
    void HelpFile(std::string value) { helpFile_ = std::move(value); }

    /// Width of a text in the form's font, in twips.
    [[nodiscard]] double TextWidth(const std::string& text)
    {
        return measure_ ? measure_->TextWidth(text, font_) : estimatedWidth(text);
    }

    /// Measures texts; null: widths are estimated. Set it before the form is shown; it must outlive the form.
    void Measure(TextMeasure* measure) { measure_ = measure; }

    /// The window of the view that shows the form, for the host's error object to give it a font: a `QWidget*`, a
    /// `HWND`. Set it before the form is shown; null if there is no window.
    [[nodiscard]] void* Window() const { return window_; }
    void Window(void* window) { window_ = window; }

    /// What a view may offer around the controls.
    [[nodiscard]] OptionsAids& Aids() const { return *aids_; }

    /// Loads the form, once: its captions, its layout, its values.
    void Load()
    {
        if (std::exchange(loaded_, true))
            return;
        if (onLoad)
            onLoad();
    }

    /// Loads the form and makes it visible. `Hide` ends that; the form calls it itself after OK or Cancel.
    void Show()
    {
        Load();
        visible_ = True;
    }
    void Hide()
    {
        visible_ = False;
        if (onHide)
            onHide();
    }
    [[nodiscard]] Boolean Visible() const { return visible_; }

    /// Ends the form's life.
    void Unload()
    {
        if (visible_)
            Hide();
        if (std::exchange(loaded_, false) && onUnload)
            onUnload();
    }

    std::function<void()> onLoad;   ///< the form's own
    std::function<void()> onUnload; ///< the form's own
    std::function<void()> onHide;   ///< the view's: the form has been hidden

protected:
    Form() = default;
    /// Sets the form's aids, which must live as long as the form.
    void Aids(OptionsAids& aids) { aids_ = &aids; }

private:
    /// 5 points for each character.
    [[nodiscard]] static double estimatedWidth(const std::string& text)
    {
        const auto characters = std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; });
        return 100.0 * static_cast<double>(characters);
    }

    std::string caption_;
    kel::Font font_;
    Int32 helpContextID_ = 0;
    std::string helpFile_;
    TextMeasure* measure_ = nullptr;
    void* window_ = nullptr;
    OptionsAids* aids_ = nullptr;
    bool loaded_ = false;
    Boolean visible_ = False;
};

} // namespace kel
