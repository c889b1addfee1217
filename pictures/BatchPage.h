// SPDX-License-Identifier: MIT
#pragma once

#include "pictures/Sheet.h"
#include "pictures/SheetLayout.h"

#include <functional>
#include <string>
#include <vector>

namespace kel {

/// A failure as a page shows it. Texts are UTF-8.
struct PageFailure {
    std::string title;
    std::string description;
    std::string source;
    std::string cause;  ///< empty where nothing is known
    std::string remedy; ///< what to do about it
};

/// A batch as one page of HTML that needs nothing else. It is written while the batch goes on, and opens wherever it
/// is cut off.
class BatchPage {
public:
    using Write = std::function<void(const std::string& text)>;

    /// Writes the page up to the first sheet. `title` is plain text.
    BatchPage(Write write, const std::string& title, PictureForm form);

    void sheet(const PictureSheet& sheet);
    void failure(const PageFailure& failure);
    void end(bool started);

private:
    std::size_t placeOf(const SheetLayout& layout);

    Write write_;
    PictureForm form_;
    std::vector<SheetLayout> layouts_;
    std::size_t sheets_ = 0;
};

} // namespace kel
