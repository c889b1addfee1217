// SPDX-License-Identifier: MIT
#include "options/win32/DialogFonts.h"

#include "platform/windows/WindowsText.h"

#include <cmath>

namespace kel {

namespace {

constexpr double kTwipsToTheInch = 1440;

/// The title against the other texts.
constexpr double kTitleSize = 1.4;

LOGFONTW messageFont()
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0);
    return metrics.lfMessageFont;
}

/// A typeface within a device context, for as long as this lives.
class Selected {
public:
    Selected(HDC screen, HFONT font) : screen_(screen), before_(::SelectObject(screen, font)) {}
    ~Selected() { ::SelectObject(screen_, before_); }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC screen_;
    HGDIOBJ before_;
};

} // namespace

DialogFonts::DialogFonts()
    : screen_(::CreateCompatibleDC(nullptr)), wanted_(messageFont()), systemDots_(::GetDeviceCaps(screen_, LOGPIXELSX)),
      dots_(systemDots_)
{
    make();
}

DialogFonts::~DialogFonts()
{
    drop();
    ::DeleteDC(screen_);
}

void DialogFonts::use(HFONT font)
{
    LOGFONTW wanted{};
    if (::GetObjectW(font, sizeof wanted, &wanted) == 0)
        return;
    wanted_ = wanted;
    drop();
    make();
}

void DialogFonts::resolution(int dots)
{
    dots_ = dots;
    drop();
    make();
}

void DialogFonts::scale(double factor)
{
    scale_ = factor;
    drop();
    make();
}

void DialogFonts::make()
{
    LOGFONTW font = wanted_;
    font.lfHeight = static_cast<LONG>(std::lround(font.lfHeight * scale_ * dots_ / systemDots_));
    text_ = ::CreateFontIndirectW(&font);
    font.lfWeight = FW_BOLD;
    bold_ = ::CreateFontIndirectW(&font);
    font.lfHeight = static_cast<LONG>(std::lround(font.lfHeight * kTitleSize));
    title_ = ::CreateFontIndirectW(&font);
}

void DialogFonts::drop()
{
    for (HFONT font : {text_, bold_, title_})
        ::DeleteObject(font);
}

double DialogFonts::TextWidth(const std::string& text, const Font& font)
{
    return twips(widthOf(text, font.Bold ? bold_ : text_));
}

DialogMetrics DialogFonts::metrics() const
{
    const double line = twips(lineOf(text_));
    DialogMetrics result;
    result.line = line;
    result.titleLine = twips(lineOf(title_));
    // The title is measured as a plain text; this is how much wider its typeface is, with something to spare.
    result.titleScale = kTitleSize * 1.25;
    result.tick = twips(systemSize(SM_CXMENUCHECK)) + line / 2;
    result.arrow = twips(systemSize(SM_CXVSCROLL));
    result.fieldHeight = line * 1.25 + twips(6);
    return result;
}

int DialogFonts::systemSize(int which) const
{
    return ::MulDiv(::GetSystemMetrics(which), dots_, systemDots_);
}

int DialogFonts::pixels(double twips) const
{
    return static_cast<int>(std::lround(twips * dots_ / kTwipsToTheInch));
}

double DialogFonts::twips(int pixels) const
{
    return pixels * kTwipsToTheInch / dots_;
}

int DialogFonts::lineOf(HFONT font) const
{
    const Selected selected(screen_, font);
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(screen_, &metrics);
    return metrics.tmHeight;
}

int DialogFonts::widthOf(const std::string& text, HFONT font) const
{
    const Selected selected(screen_, font);
    const std::wstring wide = wideText(text);
    SIZE size{};
    ::GetTextExtentPoint32W(screen_, wide.data(), static_cast<int>(wide.size()), &size);
    return size.cx;
}

} // namespace kel
