#pragma once

#include "contract/clsKELReaderWindow.h"
#include "types/Arrays.h"
#include "types/Reference.h"

#include <string_view>
#include <vector>

namespace kel {

/// Puts the reply of the windows of one page into their cells. The reply has a field for each row of each window:
///
///   column value column value ... ","       a row with marks; column "1" is the window's first
///   " " any ","                             a row without a mark
///
/// with any number of CR and "," between two windows. The windows come in their order: those of lower pages are
/// skipped, and the first of another page ends the reply.
///
/// A reply that ends within a field is failure 5, a mark outside the array 9, a reply or a sum above 16 bits 6, and a
/// window that is not there 91. What was stored before the failure stays.
void placeWindowReplySS(std::string_view sOutput, const std::vector<Reference<clsKELReaderWindow>>& windows,
                        Int16 iPage, MarkArray& iPageArr);

} // namespace kel
