// SPDX-License-Identifier: MIT
#include "options/win32/DialogLayout.h"

#include "options/basPublic.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kel {

namespace {

/// How many digits a number field has room for.
constexpr const char* kWidestNumber = "8888888";

/// How many lines an advice about the ports may have.
constexpr int kAdviceLines = 6;

/// How many lines fit between the buttons.
constexpr int kNoticeLines = 4;

/// A label with its field, and what follows that.
struct Row {
    Label* label;
    Control* field;
    Control* behind = nullptr;
};

class LayoutWork {
public:
    LayoutWork(frmOptions& form, const DialogMetrics& metrics) : form_(form), metrics_(metrics) {}

    DialogLayout run()
    {
        const double readerWidth = readerBoxWidth();
        const double portWidth = portBoxWidth();
        const double margin = metrics_.line;
        const double wanted = std::max({readerWidth + margin + portWidth, modelWidth(), headerWidth(), buttonsWidth()});
        const double wider = (wanted - readerWidth - margin - portWidth) / 2;
        layout_.width = wanted + 2 * margin;

        placeHeader();
        double top = layout_.headerHeight + margin;
        top = placeModel(top, wanted) + margin;
        const double height = std::max(boxHeight(readerRows() + 0.5), boxHeight(portRows().size()));
        placeReaderBox({margin, top, readerWidth + wider, height});
        placePortBox({2 * margin + readerWidth + wider, top, portWidth + wider, height});
        layout_.noModel = {margin, top, wanted, kAdviceLines * metrics_.line};
        placeButtons(top + height + margin);
        return std::move(layout_);
    }

private:
    // --- What the texts need

    [[nodiscard]] double textWidth(const Control& control) const { return ControlTextWidth(form_, control); }

    [[nodiscard]] double gap() const { return metrics_.line / 2; }
    [[nodiscard]] double pitch() const { return metrics_.fieldHeight + metrics_.line * 0.35; }
    [[nodiscard]] double buttonHeight() const { return metrics_.line * 1.7; }
    [[nodiscard]] double buttonWidth(const Control& button) const
    {
        return std::max(textWidth(button) + 2 * metrics_.line, 5 * metrics_.line);
    }

    [[nodiscard]] double fieldWidth(const Control& field) const
    {
        if (const auto* list = dynamic_cast<const PowerCombo*>(&field)) {
            // That of the ports changes while they are being looked at; the window keeps its size.
            const PowerCombo& lasting = list == &form_.cboPort ? form_.cboBaud : *list;
            double widest = form_.TextWidth(lasting.Prompt());
            for (Int32 row = 0; row < list->RowCount(); ++row)
                widest = std::max(widest, form_.TextWidth(list->CellText(0, row)));
            return widest + metrics_.arrow + metrics_.line;
        }
        return form_.TextWidth(kWidestNumber) + metrics_.arrow + gap();
    }

    [[nodiscard]] std::vector<CheckBox*> ticks() const
    {
        return {&form_.chkFeeder,  &form_.chkDuplex,  &form_.chkRejecter, &form_.chkReaderGrade,
                &form_.chkBarcode, &form_.chkPrinter, &form_.chkWindowing};
    }
    [[nodiscard]] std::vector<Row> numberRows() const
    {
        return {{&form_.lblRecognitionThreshold, &form_.txtRecognitionThreshold},
                {&form_.lblMarkDiscrimination, &form_.txtMarkDiscrimination},
                {&form_.lblMarkCutOff, &form_.txtMarkCutOff},
                {&form_.lblReaderTimeout, &form_.txtReaderTimeout},
                {&form_.lblSystemPause, &form_.txtSystemPause}};
    }
    [[nodiscard]] std::vector<Row> portRows() const
    {
        return {{&form_.lblPort, &form_.cboPort, &form_.cmdLocate}, {&form_.lblBaud, &form_.cboBaud},
                {&form_.lblDataBits, &form_.cboDataBits},           {&form_.lblParity, &form_.cboParity},
                {&form_.lblStopBits, &form_.cboStopBits},           {&form_.lblFlowControl, &form_.cboFlowControl}};
    }
    /// The button that resets a setting, and the gap before it.
    [[nodiscard]] double resetSize() const { return metrics_.fieldHeight; }
    [[nodiscard]] double resetRoom() const { return metrics_.line / 4 + resetSize(); }

    [[nodiscard]] double readerRows() const { return static_cast<double>(ticks().size() + numberRows().size()); }

    [[nodiscard]] double boxHeight(double rows) const { return metrics_.line * 1.5 + rows * pitch() + gap(); }
    [[nodiscard]] double boxHeight(std::size_t rows) const { return boxHeight(static_cast<double>(rows)); }

    [[nodiscard]] double labelColumn(const std::vector<Row>& rows) const
    {
        double widest = 0;
        for (const Row& row : rows)
            widest = std::max(widest, textWidth(*row.label));
        return widest + gap();
    }

    /// The fields and what follows them.
    [[nodiscard]] double fieldColumn(const std::vector<Row>& rows) const
    {
        double widest = 0;
        for (const Row& row : rows) {
            const double behind = row.behind ? gap() + buttonWidth(*row.behind) : resetRoom();
            widest = std::max(widest, fieldWidth(*row.field) + behind);
        }
        return widest;
    }

    [[nodiscard]] double boxWidth(double content, const Frame& frame) const
    {
        return std::max(content, textWidth(frame)) + 2 * metrics_.line;
    }
    [[nodiscard]] double readerBoxWidth() const
    {
        double widest = labelColumn(numberRows()) + fieldColumn(numberRows());
        for (const CheckBox* tick : ticks())
            widest = std::max(widest, metrics_.tick + textWidth(*tick) + resetRoom());
        return boxWidth(widest, form_.frmReader);
    }
    [[nodiscard]] double portBoxWidth() const
    {
        const OptionsAids::Captions& captions = form_.Aids().captions();
        const double tools = toolWidth(captions.lookAgain) + gap() + toolWidth(captions.assignPort);
        return boxWidth(std::max(labelColumn(portRows()) + fieldColumn(portRows()), tools), form_.frmComPort);
    }
    [[nodiscard]] double toolWidth(const std::string& caption) const
    {
        return form_.TextWidth(caption) + 2 * metrics_.line;
    }
    [[nodiscard]] double modelWidth() const
    {
        return textWidth(form_.lblReaderType) + gap() + fieldWidth(form_.cboReaderType);
    }
    [[nodiscard]] double headerWidth() const
    {
        return std::max(textWidth(form_.lblTitle) * metrics_.titleScale, textWidth(form_.lblSubtitle));
    }
    [[nodiscard]] double buttonsWidth() const
    {
        return buttonWidth(form_.cmdDefaults) + 2 * metrics_.line + noticeWidth() + gap() + testWidth() + gap() +
               2 * decisionWidth() + gap();
    }
    /// Room for the longest sentence, which is broken between words.
    [[nodiscard]] double noticeWidth() const
    {
        constexpr double kLooseness = 1.2;
        const double label = labelColumn(numberRows());
        const double sentence = label + form_.TextWidth(form_.Aids().captions().corrected + kWidestNumber);
        return sentence / kNoticeLines * kLooseness;
    }
    /// The button bears the one caption or the other.
    [[nodiscard]] double testWidth() const
    {
        const OptionsAids::Captions& captions = form_.Aids().captions();
        return std::max(toolWidth(captions.testReader), toolWidth(captions.stopTest));
    }
    [[nodiscard]] double decisionWidth() const
    {
        return std::max(buttonWidth(form_.cmdOK), buttonWidth(form_.cmdCancel));
    }

    // --- Where they stand

    void put(const Control& control, Place place) { layout_.places[&control] = place; }

    void placeHeader()
    {
        const double inside = layout_.width - 2 * metrics_.line;
        double top = metrics_.line * 0.75;
        put(form_.lblTitle, {metrics_.line, top, inside, metrics_.titleLine});
        top += metrics_.titleLine + metrics_.line / 4;
        put(form_.lblSubtitle, {metrics_.line, top, inside, metrics_.line});
        layout_.headerHeight = top + metrics_.line * 1.75;
    }

    double placeModel(double top, double inside)
    {
        const double label = textWidth(form_.lblReaderType) + gap();
        putLabel(form_.lblReaderType, metrics_.line, top, label);
        put(form_.cboReaderType, {metrics_.line + label, top, inside - label, metrics_.fieldHeight});
        return top + metrics_.fieldHeight;
    }

    /// A label stands at the middle of its field.
    void putLabel(const Label& label, double left, double top, double width)
    {
        put(label, {left, top + (metrics_.fieldHeight - metrics_.line) / 2, width, metrics_.line});
    }

    void placeReaderBox(const Place& box)
    {
        put(form_.frmReader, box);
        const double left = box.left + metrics_.line;
        const double inside = box.width - 2 * metrics_.line;
        double top = box.top + metrics_.line * 1.5;
        bool any = false;
        for (const CheckBox* tick : ticks()) {
            put(*tick, {left, top, inside - resetRoom(), metrics_.fieldHeight});
            putReset(*tick, left + inside, top);
            if (tick->Visible()) {
                top += pitch();
                any = true;
            }
        }
        placeRows(numberRows(), left, any ? top + pitch() / 2 : top, inside);
    }

    void placePortBox(const Place& box)
    {
        put(form_.frmComPort, box);
        const double left = box.left + metrics_.line;
        const double inside = box.width - 2 * metrics_.line;
        double top = box.top + metrics_.line * 1.5;
        placeRows(portRows(), left, top, inside);
        top += static_cast<double>(portRows().size()) * pitch() + gap();
        const OptionsAids::Captions& captions = form_.Aids().captions();
        layout_.lookAgain = {left, top, toolWidth(captions.lookAgain), metrics_.fieldHeight};
        layout_.assignPort = {left + layout_.lookAgain.width + gap(), top, toolWidth(captions.assignPort),
                              metrics_.fieldHeight};
        top += metrics_.fieldHeight + gap();
        layout_.portAdvice = {left, top, inside, kAdviceLines * metrics_.line};
    }

    void putReset(const Control& control, double right, double top)
    {
        layout_.resets[&control] = {right - resetSize(), top, resetSize(), resetSize()};
    }

    void placeRows(const std::vector<Row>& rows, double left, double top, double inside)
    {
        const double label = labelColumn(rows);
        for (const Row& row : rows) {
            putLabel(*row.label, left, top, label);
            double width = inside - label;
            if (row.behind) {
                const double button = buttonWidth(*row.behind);
                put(*row.behind, {left + inside - button, top, button, metrics_.fieldHeight});
                if (row.behind->Visible())
                    width -= button + gap();
            } else {
                putReset(*row.field, left + inside, top);
                width -= resetRoom();
            }
            put(*row.field, {left + label, top, width, metrics_.fieldHeight});
            if (row.label->Visible() || row.field->Visible())
                top += pitch();
        }
    }

    void placeButtons(double top)
    {
        layout_.bottomLine = top;
        top += metrics_.line * 1.2;
        const double width = decisionWidth();
        const double right = layout_.width - metrics_.line;
        put(form_.cmdDefaults, {metrics_.line, top, buttonWidth(form_.cmdDefaults), buttonHeight()});
        put(form_.cmdOK, {right - 2 * width - gap(), top, width, buttonHeight()});
        put(form_.cmdCancel, {right - width, top, width, buttonHeight()});
        const double left = 2 * metrics_.line + buttonWidth(form_.cmdDefaults);
        const double test = right - 2 * width - 2 * gap() - testWidth();
        layout_.testReader = {test, top, testWidth(), buttonHeight()};
        layout_.notice = {left, layout_.bottomLine + metrics_.line * 0.1, test - gap() - left,
                          kNoticeLines * metrics_.line};
        layout_.height = top + buttonHeight() + metrics_.line * 1.2;
    }

    frmOptions& form_;
    const DialogMetrics& metrics_;
    DialogLayout layout_;
};

} // namespace

DialogLayout dialogLayout(frmOptions& form, const DialogMetrics& metrics)
{
    return LayoutWork(form, metrics).run();
}

} // namespace kel
