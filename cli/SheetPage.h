// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "pictures/BatchPage.h"

#include <functional>
#include <string>

namespace kel {

/// The scan as a page for a browser. It shows failures with the advice of the operators' pages; they also go to `tell`.
class SheetPage final : public host::Events {
public:
    using Write = std::function<void(const std::string& text)>;

    SheetPage(Write write, Write tell, const std::string& title, PictureForm form)
        : page_(std::move(write), title, std::move(form)), tell_(std::move(tell))
    {
    }

    void sheet(const host::Sheet& event) override;
    void failure(const host::Failure& event) override;
    void end(const host::BatchEnd& event) override;

private:
    BatchPage page_;
    Write tell_;
};

} // namespace kel
