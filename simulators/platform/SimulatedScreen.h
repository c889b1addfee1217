// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screen.h"

#include <deque>
#include <vector>

namespace kel {

/// A box that was shown.
struct ShownBox {
    std::string text;
    BoxIcon icon{};
    BoxButtons buttons{};
    std::string title;

    friend bool operator==(const ShownBox&, const ShownBox&) = default;
};

/// A screen that remembers. Boxes are answered as scripted, and without a script Ok, or Abort where that is offered.
class SimulatedScreen final : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override
    {
        boxes_.push_back({text, icon, buttons, title});
        if (answers_.empty())
            return buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Abort;
        const BoxAnswer answer = answers_.front();
        answers_.pop_front();
        return answer;
    }

    void Beep() override { ++beeps_; }

    [[nodiscard]] Int32 MousePointer() const override
    {
        return pointers_.empty() ? kMousePointerDefault : pointers_.back();
    }
    void MousePointer(Int32 shape) override { pointers_.push_back(shape); }

    /// The answer to the next box that has none yet.
    void answer(BoxAnswer answer) { answers_.push_back(answer); }

    [[nodiscard]] const std::vector<ShownBox>& boxes() const noexcept { return boxes_; }
    [[nodiscard]] int beeps() const noexcept { return beeps_; }

    /// The shapes that the pointer was given, in order.
    [[nodiscard]] const std::vector<Int32>& pointers() const noexcept { return pointers_; }

private:
    std::vector<ShownBox> boxes_;
    std::deque<BoxAnswer> answers_;
    int beeps_ = 0;
    std::vector<Int32> pointers_;
};

} // namespace kel
