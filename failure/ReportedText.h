// SPDX-License-Identifier: MIT
#pragma once

#include "strings/TextNumber.h"
#include "types/Export.h"
#include "types/Numbers.h"

namespace kel {

/// Which text of the language file the report says that is on its way on the calling thread, for as long as this lives:
/// `ErrorReport`, the published record, has the words alone, in the user's language. Of a text that is put together
/// from several it is the first.
class KEL_INTERNAL ReportedText {
public:
    explicit ReportedText(TextNumber text) noexcept;
    ~ReportedText();
    ReportedText(const ReportedText&) = delete;
    ReportedText& operator=(const ReportedText&) = delete;

    /// The number of the text; 0 if nothing is on its way, or words that have none.
    [[nodiscard]] static Int32 number() noexcept;

private:
    Int32 before_;
};

} // namespace kel
