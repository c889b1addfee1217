// SPDX-License-Identifier: MIT
#pragma once

#include "options/Form.h"
#include "options/win32/DialogLayout.h"

#include <windows.h>

namespace kel {

/// The typefaces of a dialog, and what texts need in them. The form's own typeface is that of the system's messages
/// until a host gives another; what differs from it is the style that a control asks for.
class DialogFonts final : public TextMeasure {
public:
    DialogFonts();
    ~DialogFonts() override;
    DialogFonts(const DialogFonts&) = delete;
    DialogFonts& operator=(const DialogFonts&) = delete;

    /// Takes a typeface of the host's, which stays the host's.
    void use(HFONT font);

    /// Takes the resolution of the screen that the dialog is on, in dots to the inch.
    void resolution(int dots);
    [[nodiscard]] int resolution() const noexcept { return dots_; }

    /// Makes all typefaces smaller or larger than those that were asked for.
    void scale(double factor);
    [[nodiscard]] double scale() const noexcept { return scale_; }

    [[nodiscard]] double TextWidth(const std::string& text, const Font& font) override;

    [[nodiscard]] HFONT text() const noexcept { return text_; }
    [[nodiscard]] HFONT bold() const noexcept { return bold_; }
    [[nodiscard]] HFONT title() const noexcept { return title_; }
    [[nodiscard]] DialogMetrics metrics() const;

    /// A size of the system's, such as the width of a scroll bar, in pixels at this resolution.
    [[nodiscard]] int systemSize(int which) const;

    [[nodiscard]] int pixels(double twips) const;
    [[nodiscard]] double twips(int pixels) const;

private:
    void make();
    void drop();
    /// The height of a line.
    [[nodiscard]] int lineOf(HFONT font) const;
    [[nodiscard]] int widthOf(const std::string& text, HFONT font) const;

    HDC screen_;
    LOGFONTW wanted_{}; // for the system's resolution
    int systemDots_;
    int dots_;
    double scale_ = 1;
    HFONT text_ = nullptr;
    HFONT bold_ = nullptr;
    HFONT title_ = nullptr;
};

} // namespace kel
