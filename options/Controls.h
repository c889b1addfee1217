// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Export.h"
#include "types/Numbers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The controls of a form as plain state: what a window shows and what its user does, without any toolkit.
///
/// A view reads the state, and passes on what the user did by calling the same operations that code calls: it selects a
/// row, sets a text, clicks a button. The form's handlers run within these calls, and afterwards the view shows what
/// the state has become. Everything is in this header, so that a view in a module of its own needs nothing else of the
/// component.
///
/// Positions and sizes are in twips, 1440 to the inch, relative to the container.
namespace kel {

class Control;

/// A typeface with its style.
struct Font {
    std::string Name = "Sans"; ///< the family
    Int16 Charset = 0;         ///< Windows' number of a character set
    Boolean Bold;              ///< heavy
    Boolean Italic;            ///< slanted
    double Size = 9;           ///< points
    Boolean Strikethrough;     ///< with a line through it
    Boolean Underline;         ///< with a line below it
    Int16 Weight = 400;        ///< 400 usual, 700 heavy

    friend bool operator==(const Font&, const Font&) = default;
};

/// What a control needs of the form that it is on.
class KEL_PUBLIC ControlHost {
public:
    virtual ~ControlHost() = default;

    /// All controls in the order in which they were put on the form, which is the tab order.
    [[nodiscard]] const std::vector<Control*>& Controls() const { return controls_; }

    /// The control that has the focus, or is to have it as soon as the form is shown; none at first.
    [[nodiscard]] Control* ActiveControl() const { return activeControl_; }

protected:
    ControlHost() = default;

private:
    friend class Control;
    std::vector<Control*> controls_;
    Control* activeControl_ = nullptr;
};

/// What all controls have.
class KEL_PUBLIC Control {
public:
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;
    virtual ~Control() = default;

    /// "txtMarkCutOff", and the kind: "Label", "CheckBox", "Frame", "PowerButton", "PowerCombo", "PowerEdit",
    /// "PictureBox", "Line".
    [[nodiscard]] std::string_view Name() const { return name_; }
    [[nodiscard]] std::string_view TypeName() const { return typeName_; }

    /// The text on it; "&" marks the access key and "&&" is an ampersand.
    [[nodiscard]] const std::string& Caption() const { return caption_; }
    void Caption(std::string value) { caption_ = std::move(value); }

    /// Whether the control itself can be used; it is greyed out if not.
    [[nodiscard]] Boolean Enabled() const { return enabled_; }
    void Enabled(Boolean value) { enabled_ = value; }

    /// Whether the control itself is visible. On a hidden frame the user does not see it even so.
    [[nodiscard]] Boolean Visible() const { return visible_; }
    void Visible(Boolean value) { visible_ = value; }

    /// The frame that it is on; null for a control on the form itself.
    [[nodiscard]] const Control* Container() const { return container_; }

    /// Whether a user sees it: it is visible, and so is its frame.
    [[nodiscard]] bool Seen() const { return static_cast<bool>(visible_) && (!container_ || container_->Seen()); }

    /// Whether a user can use it.
    [[nodiscard]] bool Usable() const
    {
        return Seen() && static_cast<bool>(enabled_) && (!container_ || static_cast<bool>(container_->Enabled()));
    }

    /// Position and size in twips.
    [[nodiscard]] double Left() const { return left_; }
    void Left(double value) { left_ = value; }
    [[nodiscard]] double Top() const { return top_; }
    void Top(double value) { top_ = value; }
    [[nodiscard]] double Width() const { return width_; }
    void Width(double value) { width_ = value; }
    [[nodiscard]] double Height() const { return height_; }
    void Height(double value) { height_ = value; }
    void Move(double left, double top, double width, double height)
    {
        left_ = left;
        top_ = top;
        width_ = width;
        height_ = height;
    }

    /// The typeface of the caption.
    [[nodiscard]] const kel::Font& Font() const { return font_; }
    void Font(kel::Font value) { font_ = std::move(value); }

    /// Makes it the form's active control.
    void SetFocus() { host_.activeControl_ = this; }

protected:
    /// Adds the control to a form, after the controls that are already there; to a frame of the form if `container` is
    /// one. The names must live as long as the control.
    Control(ControlHost& host, std::string_view typeName, std::string_view name, const Control* container)
        : host_(host), typeName_(typeName), name_(name), container_(container)
    {
        host.controls_.push_back(this);
    }

private:
    ControlHost& host_;
    std::string_view typeName_;
    std::string_view name_;
    const Control* container_;
    std::string caption_;
    Boolean enabled_ = True;
    Boolean visible_ = True;
    double left_ = 0;
    double top_ = 0;
    double width_ = 0;
    double height_ = 0;
    kel::Font font_;
};

/// A text.
class KEL_PUBLIC Label final : public Control {
public:
    /// Adds it to a form.
    Label(ControlHost& host, std::string_view name, const Control* container = nullptr)
        : Control(host, "Label", name, container)
    {
    }
};

/// A titled box around other controls.
class KEL_PUBLIC Frame final : public Control {
public:
    /// Adds it to a form.
    Frame(ControlHost& host, std::string_view name) : Control(host, "Frame", name, nullptr) {}
};

/// A decoration of the form: a band, a line.
class KEL_PUBLIC Ornament final : public Control {
public:
    /// Adds it to a form.
    Ornament(ControlHost& host, std::string_view typeName, std::string_view name)
        : Control(host, typeName, name, nullptr)
    {
    }
};

/// A box that is ticked or not.
class KEL_PUBLIC CheckBox final : public Control {
public:
    /// Adds it to a form.
    CheckBox(ControlHost& host, std::string_view name, const Control* container)
        : Control(host, "CheckBox", name, container)
    {
    }

    /// 1 ticked, 0 not. Every change is a click, whoever makes it.
    [[nodiscard]] Int16 Value() const { return value_; }
    void Value(Int16 value)
    {
        if (value == value_)
            return;
        value_ = value;
        if (onClick)
            onClick();
    }

    /// The user clicks: the tick changes, if the user can use the box.
    void Click()
    {
        if (Usable())
            Value(value_ == 1 ? Int16{0} : Int16{1});
    }

    /// The form's handler of a click.
    std::function<void()> onClick;

private:
    Int16 value_ = 0;
};

/// A button.
class KEL_PUBLIC PowerButton final : public Control {
public:
    /// Adds it to a form.
    PowerButton(ControlHost& host, std::string_view name, const Control* container = nullptr)
        : Control(host, "PowerButton", name, container)
    {
    }

    /// The user clicks; nothing happens while the user cannot use the button.
    void Click()
    {
        if (Usable() && onClick)
            onClick();
    }

    /// The form's handler of a click.
    std::function<void()> onClick;
};

/// A drop-down list with rows of one or two columns, of which the user sees column 0. Rows and columns count from 0;
/// -1 stands for no row.
class KEL_PUBLIC PowerCombo final : public Control {
public:
    /// Number of columns of each row.
    static constexpr Int32 kColumns = 2;

    /// Adds it to a form.
    PowerCombo(ControlHost& host, std::string_view name, const Control* container = nullptr)
        : Control(host, "PowerCombo", name, container)
    {
    }

    /// Deletes all rows, and clears the selection; no event.
    void ClearRows()
    {
        rows_.clear();
        aids_.clear();
        unavailable_.clear();
        currentRow_ = -1;
        topRow_ = 0;
    }

    /// Adds an empty row at the end.
    void AddRow()
    {
        rows_.emplace_back();
        aids_.emplace_back();
    }

    /// How many rows there are.
    [[nodiscard]] Int32 RowCount() const { return static_cast<Int32>(rows_.size()); }

    /// Sets a cell; failure 9 "Subscript out of range" for one that does not exist.
    void SetCell(Int32 row, Int32 column, std::string text)
    {
        if (!isCell(row, column))
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = std::move(text);
    }

    /// A cell's text; empty for one that does not exist.
    [[nodiscard]] std::string CellText(Int32 column, Int32 row) const
    {
        if (!isCell(row, column))
            return {};
        return rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
    }

    /// The first row from `startRow` whose cell is exactly `text`; -1 if there is none.
    [[nodiscard]] Int32 FindRow(std::string_view text, Int32 startRow, Int32 column) const
    {
        for (Int32 row = std::max(startRow, Int32{0}); row < RowCount(); ++row) {
            if (isCell(row, column) && rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] == text)
                return row;
        }
        return -1;
    }

    /// The selected row. A row that does not exist counts as -1. Every change calls `onSelChangeEx` with the previous
    /// and the current row, whoever makes it.
    [[nodiscard]] Int32 CurrentRow() const { return currentRow_; }
    void CurrentRow(Int32 row)
    {
        const Int32 wanted = row >= 0 && row < RowCount() ? row : -1;
        if (wanted == currentRow_)
            return;
        const Int32 previous = std::exchange(currentRow_, wanted);
        if (onSelChangeEx)
            onSelChangeEx(previous, wanted);
    }

    /// Brings a row into view without selecting it.
    void ScrollToRow(Int32 row) { topRow_ = row; }
    [[nodiscard]] Int32 TopRow() const { return topRow_; }

    /// Column 0 of the selected row, empty without one.
    [[nodiscard]] std::string Text() const { return CellText(0, currentRow_); }

    /// What a view shows after column 0 of a row, for people only: the device of a port. May be empty.
    [[nodiscard]] std::string Remark(Int32 row) const { return isCell(row, 0) ? aidOf(row).remark : std::string(); }
    void Remark(Int32 row, std::string text) { aid(row).remark = std::move(text); }

    /// The heading under which an open list shows the row: the maker of a model. May be empty.
    [[nodiscard]] std::string Group(Int32 row) const { return isCell(row, 0) ? aidOf(row).group : std::string(); }
    void Group(Int32 row, std::string text) { aid(row).group = std::move(text); }

    /// A line that is not a row and cannot be selected.
    struct Line {
        std::string text{};   ///< its text
        std::string reason{}; ///< why it cannot be chosen
        friend bool operator==(const Line&, const Line&) = default;
    };
    /// The lines that a view shows, greyed out, after the rows.
    [[nodiscard]] const std::vector<Line>& Unavailable() const { return unavailable_; }
    void Unavailable(std::vector<Line> lines) { unavailable_ = std::move(lines); }

    /// The text in the field while no row is selected.
    [[nodiscard]] const std::string& Prompt() const { return prompt_; }
    void Prompt(std::string value) { prompt_ = std::move(value); }

    /// The form's handler of a change of the row.
    std::function<void(Int32 PreviousRowNum, Int32 CurrentRowNum)> onSelChangeEx;

private:
    [[nodiscard]] bool isCell(Int32 row, Int32 column) const
    {
        return row >= 0 && row < RowCount() && column >= 0 && column < kColumns;
    }

    struct RowAid {
        std::string remark{};
        std::string group{};
    };
    [[nodiscard]] const RowAid& aidOf(Int32 row) const { return aids_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] RowAid& aid(Int32 row)
    {
        if (!isCell(row, 0))
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        return aids_[static_cast<std::size_t>(row)];
    }

    std::vector<std::array<std::string, kColumns>> rows_;
    std::vector<RowAid> aids_; // of each row
    std::vector<Line> unavailable_;
    Int32 currentRow_ = -1;
    Int32 topRow_ = 0;
    std::string prompt_;
};

/// A field for a number, with spin buttons of step 1. It does not check its text itself; the form does, in `Validate`.
class KEL_PUBLIC PowerEdit final : public Control {
public:
    /// Adds it to a form.
    PowerEdit(ControlHost& host, std::string_view name, const Control* container)
        : Control(host, "PowerEdit", name, container)
    {
    }

    /// The text in the field, as the user types it.
    [[nodiscard]] const std::string& Text() const { return text_; }
    void Text(std::string value) { text_ = std::move(value); }

    /// The text as a number, as the form reads it; nullopt if it is not a number.
    [[nodiscard]] std::optional<double> Number() const { return onNumber ? onNumber(text_) : std::optional<double>(); }

    /// One step up or down: the next whole number, and not beyond the bounds. A text that is not a number counts as the
    /// minimum.
    void StepUp() { step(1); }
    void StepDown() { step(-1); }

    /// The bounds of the number. A minimum above the maximum, whichever is written, is refused with 380 "Invalid
    /// property value".
    [[nodiscard]] Int32 Minimum() const { return minimum_; }
    void Minimum(Int32 value)
    {
        if (value > maximum_)
            throw RuntimeFailure(FailureCode::InvalidPropertyValue);
        minimum_ = value;
    }
    [[nodiscard]] Int32 Maximum() const { return maximum_; }
    void Maximum(Int32 value)
    {
        if (value < minimum_)
            throw RuntimeFailure(FailureCode::InvalidPropertyValue);
        maximum_ = value;
    }

    /// How many digits may follow the separator.
    [[nodiscard]] Int32 DecimalPlaces() const { return decimalPlaces_; }
    void DecimalPlaces(Int32 value) { decimalPlaces_ = value; }

    /// The separator between a whole number and its fraction.
    [[nodiscard]] const std::string& DecimalSeparator() const { return decimalSeparator_; }
    void DecimalSeparator(std::string value) { decimalSeparator_ = std::move(value); }

    /// Selects characters from `start`, which counts from 0; a length of -1 reaches to the end. The view shows the
    /// selection.
    void SelectRange(Int32 start, Int32 length)
    {
        selectionStart_ = start;
        selectionLength_ = length;
    }
    [[nodiscard]] Int32 SelectionStart() const { return selectionStart_; }
    [[nodiscard]] Int32 SelectionLength() const { return selectionLength_; }

    /// The user enters the field, and leaves it: a view calls `Validate` when the focus goes elsewhere in the form.
    /// `ValidationError` is for a view whose field itself finds that its text is not a number.
    void GotFocus()
    {
        SetFocus();
        if (onGotFocus)
            onGotFocus();
    }
    void Validate()
    {
        if (onValidate)
            onValidate();
    }
    void ValidationError()
    {
        if (onValidationError)
            onValidationError();
    }

    /// The user types a character: the result is the character that the field accepts, 0 for none.
    [[nodiscard]] Int16 KeyPress(Int16 KeyAscii)
    {
        if (onKeyPress)
            onKeyPress(KeyAscii);
        return KeyAscii;
    }

    /// The form's handlers.
    std::function<std::optional<double>(const std::string& text)> onNumber;
    std::function<void()> onGotFocus;
    std::function<void(Int16& KeyAscii)> onKeyPress;
    std::function<void()> onValidate;
    std::function<void()> onValidationError;

private:
    void step(int by)
    {
        const double from = std::trunc(Number().value_or(minimum_));
        const double wanted = std::clamp(from + by, static_cast<double>(minimum_), static_cast<double>(maximum_));
        text_ = std::to_string(static_cast<Int32>(wanted));
    }

    std::string text_ = "0";
    Int32 minimum_ = 0;
    Int32 maximum_ = 100;
    Int32 decimalPlaces_ = 0;
    std::string decimalSeparator_ = ".";
    Int32 selectionStart_ = 0;
    Int32 selectionLength_ = 0;
};

} // namespace kel
