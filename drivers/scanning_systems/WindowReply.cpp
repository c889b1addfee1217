#include "drivers/scanning_systems/WindowReply.h"

namespace kel {

namespace {

constexpr Int16 kZero = '0';

/// A place in the reply, counted from 1 in 16 bits.
class ReplyCursor {
public:
    explicit ReplyCursor(std::string_view sOutput) : sOutput_(sOutput), iOutputLen_(CInt(sOutput.size())) {}

    /// Whether more than the last character is left.
    [[nodiscard]] bool hasMore() const { return iCurrentPosition_ < iOutputLen_; }

    [[nodiscard]] bool isAt(char character) const { return holds(iCurrentPosition_, character); }
    [[nodiscard]] bool isBefore(char character) const { return holds(checkedAdd(iCurrentPosition_, 1), character); }

    void advance(Int16 characters) { iCurrentPosition_ = checkedAdd(iCurrentPosition_, characters); }

    /// The character here as its distance from "0"; failure 5 behind the end.
    [[nodiscard]] Int16 number() const
    {
        if (iCurrentPosition_ > iOutputLen_)
            throw RuntimeFailure(FailureCode::InvalidProcedureCall);
        return static_cast<Int16>(static_cast<Byte>(at(iCurrentPosition_)) - kZero);
    }

private:
    [[nodiscard]] char at(Int16 iPosition) const { return sOutput_[static_cast<std::size_t>(iPosition - 1)]; }
    [[nodiscard]] bool holds(Int16 iPosition, char character) const
    {
        return iPosition <= iOutputLen_ && at(iPosition) == character;
    }

    std::string_view sOutput_;
    Int16 iOutputLen_;
    Int16 iCurrentPosition_ = 1;
};

/// Takes the pair at the cursor, which stays on its second character.
void placePair(const clsKELReaderWindow& cWindow, Int16 iCurrentRow, ReplyCursor& reply, MarkArray& iPageArr)
{
    const auto iColumn = static_cast<Int16>(reply.number() - 1);
    const Int16 iFilledCol = checkedMultiply(iColumn, cWindow.ColGap());
    reply.advance(1);
    const Int16 iValue = reply.number();
    iPageArr(iCurrentRow, checkedAdd(cWindow.StartCol(), iFilledCol)) = iValue;
}

void placeWindow(const clsKELReaderWindow& cWindow, ReplyCursor& reply, MarkArray& iPageArr)
{
    Int16 iCurrentRow = cWindow.StartRow();
    for (Int16 iRowIndex = 1; iRowIndex <= cWindow.NumRows(); iRowIndex = checkedAdd(iRowIndex, 1)) {
        if (reply.isAt(' ')) {
            reply.advance(2);
        } else {
            placePair(cWindow, iCurrentRow, reply, iPageArr);
            while (!reply.isBefore(',')) {
                reply.advance(1);
                placePair(cWindow, iCurrentRow, reply, iPageArr);
            }
            reply.advance(1);
        }
        // Now on the field's comma, or on what stands in its place.
        reply.advance(1);
        iCurrentRow = checkedAdd(iCurrentRow, cWindow.RowGap());
    }
}

} // namespace

void placeWindowReplySS(std::string_view sOutput, const std::vector<Reference<clsKELReaderWindow>>& windows,
                        Int16 iPage, MarkArray& iPageArr)
{
    const Int16 iTotalFields = CInt(windows.size());
    const auto window = [&](Int16 iPosition) {
        return iPosition <= iTotalFields ? windows[static_cast<std::size_t>(iPosition - 1)] : nullptr;
    };
    ReplyCursor reply(sOutput);

    Int16 iField = 1;
    while (window(iField)->Page() < iPage && iField < iTotalFields)
        ++iField;
    while (window(iField)->Page() == iPage && reply.hasMore()) {
        placeWindow(*window(iField), reply, iPageArr);
        while (reply.hasMore() && (reply.isAt('\r') || reply.isAt(',')))
            reply.advance(1);
        iField = checkedAdd(iField, 1);
        if (iField > iTotalFields)
            return;
    }
}

} // namespace kel
