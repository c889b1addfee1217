// SPDX-License-Identifier: MIT
#pragma once

#include "options/Form.h"

#include <QFont>
#include <QFontMetricsF>
#include <QWidget>

namespace kel {

/// Measures texts as a window would draw them. The form's own typeface is the window's; what differs from it is the
/// size and the style that a control asks for.
class CaptionMeasure final : public TextMeasure {
public:
    explicit CaptionMeasure(const QWidget& window) : window_(window) {}

    [[nodiscard]] double TextWidth(const std::string& text, const Font& font) override
    {
        QFont drawn = window_.font();
        drawn.setBold(static_cast<bool>(font.Bold));
        drawn.setItalic(static_cast<bool>(font.Italic));
        const double pixels = QFontMetricsF(drawn, &window_).horizontalAdvance(QString::fromStdString(text));
        return pixels * kTwipsToTheInch / window_.logicalDpiX();
    }

private:
    static constexpr double kTwipsToTheInch = 1440;

    const QWidget& window_;
};

} // namespace kel
