// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderWindow.h"
#include "failure/TellsVariables.h"
#include "types/Arrays.h"
#include "types/Reference.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// How far a reply has been taken apart.
struct WindowPlacingSS {
    Int16 iOutputLen = 0;
    Int16 iCurrentPosition = 1; ///< in the reply, counted from 1
    Int16 iTotalFields = 0;     ///< the number of windows
    Int16 iField = 1;           ///< the window under way, counted from 1
    Reference<clsKELReaderWindow> cWindow;
    Int16 iRowIndex = 0;   ///< within the window
    Int16 iCurrentRow = 0; ///< on the sheet
    Int16 iStartCol = 0;
    Int16 iFilledCol = 0; ///< from the start
    std::string sChar;
    Int16 iValue = 0;

    KEL_TELLS(iOutputLen, iCurrentPosition, iTotalFields, iField, cWindow, iRowIndex, iCurrentRow, iStartCol,
              iFilledCol, sChar, iValue)
};

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
                        Int16 iPage, MarkArray& iPageArr, WindowPlacingSS& at);

} // namespace kel
