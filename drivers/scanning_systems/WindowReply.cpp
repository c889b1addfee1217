// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/WindowReply.h"

namespace kel {

namespace {

/// The reply at the place where it is being taken apart, in 16 bits.
class ReplyCursor {
public:
    ReplyCursor(std::string_view sOutput, WindowPlacingSS& at) : sOutput_(sOutput), at_(at)
    {
        at_.iOutputLen = CInt(sOutput.size());
    }

    /// Whether more than the last character is left.
    [[nodiscard]] bool hasMore() const { return at_.iCurrentPosition < at_.iOutputLen; }

    [[nodiscard]] bool isAt(char character) const { return holds(at_.iCurrentPosition, character); }
    [[nodiscard]] bool isBefore(char character) const { return holds(checkedAdd(at_.iCurrentPosition, 1), character); }

    void advance(Int16 characters) { at_.iCurrentPosition = checkedAdd(at_.iCurrentPosition, characters); }

    /// The character here as its distance from "0"; failure 5 after the end.
    [[nodiscard]] Int16 number() const
    {
        if (at_.iCurrentPosition > at_.iOutputLen)
            throw RuntimeFailure(FailureCode::InvalidProcedureCall);
        at_.sChar = character(at_.iCurrentPosition);
        return static_cast<Int16>(static_cast<Byte>(at_.sChar.front()) - '0');
    }

private:
    [[nodiscard]] char character(Int16 iPosition) const { return sOutput_[static_cast<std::size_t>(iPosition - 1)]; }
    [[nodiscard]] bool holds(Int16 iPosition, char wanted) const
    {
        return iPosition <= at_.iOutputLen && character(iPosition) == wanted;
    }

    std::string_view sOutput_;
    WindowPlacingSS& at_;
};

/// Takes the pair at the cursor, which stays on its second character.
void placePair(ReplyCursor& reply, MarkArray& iPageArr, WindowPlacingSS& at)
{
    const auto iColumn = static_cast<Int16>(reply.number() - 1);
    at.iFilledCol = checkedMultiply(iColumn, at.cWindow->ColGap());
    reply.advance(1);
    at.iValue = reply.number();
    iPageArr(at.iCurrentRow, checkedAdd(at.iStartCol, at.iFilledCol)) = at.iValue;
}

void placeWindow(ReplyCursor& reply, MarkArray& iPageArr, WindowPlacingSS& at)
{
    at.iCurrentRow = at.cWindow->StartRow();
    at.iStartCol = at.cWindow->StartCol();
    for (at.iRowIndex = 1; at.iRowIndex <= at.cWindow->NumRows(); at.iRowIndex = checkedAdd(at.iRowIndex, 1)) {
        if (reply.isAt(' ')) {
            reply.advance(2);
        } else {
            placePair(reply, iPageArr, at);
            while (!reply.isBefore(',')) {
                reply.advance(1);
                placePair(reply, iPageArr, at);
            }
            reply.advance(1);
        }
        // Now on the field's comma, or on what stands in its place.
        reply.advance(1);
        at.iCurrentRow = checkedAdd(at.iCurrentRow, at.cWindow->RowGap());
    }
}

} // namespace

void placeWindowReplySS(std::string_view sOutput, const std::vector<Reference<clsKELReaderWindow>>& windows,
                        Int16 iPage, MarkArray& iPageArr, WindowPlacingSS& at)
{
    at = {};
    at.iTotalFields = CInt(windows.size());
    const auto window = [&](Int16 iPosition) {
        return iPosition <= at.iTotalFields ? windows[static_cast<std::size_t>(iPosition - 1)] : nullptr;
    };
    ReplyCursor reply(sOutput, at);

    while (window(at.iField)->Page() < iPage && at.iField < at.iTotalFields)
        ++at.iField;
    while (window(at.iField)->Page() == iPage && reply.hasMore()) {
        at.cWindow = window(at.iField);
        placeWindow(reply, iPageArr, at);
        while (reply.hasMore() && (reply.isAt('\r') || reply.isAt(',')))
            reply.advance(1);
        at.iField = checkedAdd(at.iField, 1);
        if (at.iField > at.iTotalFields)
            return;
    }
}

} // namespace kel
