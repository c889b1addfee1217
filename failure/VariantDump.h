// SPDX-License-Identifier: MIT
#pragma once

#include "failure/Variant.h"

#include <string>
#include <string_view>

namespace kel {

/// A line of a dump: blanks, the tag, the value, the end of the tag, a line end. The tag is `sName` up to its first
/// blank; what follows that is an attribute, which only the opening tag holds.
[[nodiscard]] std::string dumpLine(std::string_view sName, std::string_view value, Int32 lIndent);

/// The lines of a variable:
///
///     <sBarcodeArr>
///       <sBarcodeArr Index="0">12345</sBarcodeArr>
///     </sBarcodeArr>
///
/// `lIndent` is the number of blanks in front, `lDepth` counts the levels of arrays down and limits nothing. A value
/// without a text is shown as the number of its failure; the dump itself never fails.
[[nodiscard]] std::string dumpOfValue(std::string_view sName, const Variant& vValue, Int32 lDepth = 99,
                                      Int32 lIndent = 4);

} // namespace kel
