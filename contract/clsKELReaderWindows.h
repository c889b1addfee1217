// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderWindow.h"
#include "types/Boolean.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Reference.h"

#include <optional>

namespace kel {

/// The read windows of a form in their order, addressed by position from 1.
class KEL_PUBLIC clsKELReaderWindows {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderWindows";

    clsKELReaderWindows();
    clsKELReaderWindows(const clsKELReaderWindows& other);
    clsKELReaderWindows& operator=(const clsKELReaderWindows& other);
    ~clsKELReaderWindows();

    /// Number of windows.
    [[nodiscard]] Int32 Count() const;

    /// Adds a window before or after a position, or at the end. A position that does not exist is reported, and the
    /// collection does not change.
    void Add(Reference<clsKELReaderWindow> Item, std::optional<Int32> Before = {}, std::optional<Int32> After = {});

    /// Removes the window at a position; one that does not exist is reported.
    void Remove(Int32 Position);

    /// Removes all windows.
    void RemoveAll();

    /// The window at a position; a null reference, without a report, if there is none.
    [[nodiscard]] Reference<clsKELReaderWindow> Item(Int32 Position) const;

    /// Whether there is a window at a position.
    [[nodiscard]] Boolean Exists(Int32 Position) const;

private:
    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
