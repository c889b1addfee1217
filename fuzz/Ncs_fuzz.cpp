// SPDX-License-Identifier: MIT
#include "drivers/ncs/PageDecoder.h"
#include "fuzz/Session.h"

#include <cstddef>

using namespace kel;

// The first byte says whether a session follows, or the reply to one sheet, and then whether it is read on two sides.

namespace {

constexpr kelReaderType kNcsModels[] = {kelReaderTypeNCSOpScan2, kelReaderTypeNCSOpScan5, kelReaderTypeNCSOpScan8,
                                        kelReaderTypeNCSOpScaniNSIGHT2};
constexpr Int32 kMostRows = 150;
constexpr Int32 kColumns = 48;

void demandMarks(const MarkArray& marks)
{
    demand(!marks.isDimensioned() || (marks.rows() == kMostRows && marks.columns() == kColumns),
           "the arrays stay as large as they are");
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column)
            demand(marks(row, column) >= 0 && marks(row, column) <= 255 - 'A' + 10, "a mark is a character's value");
    }
}

void fuzzReply(bool bTwoSides, std::span<const Byte> bytes)
{
    PageDecoderNCS page([&] { return bTwoSides; });
    try {
        for (const Byte byte : bytes) {
            if (page.isDone())
                break;
            const auto fault = page.take(byte);
            demand(!fault || fault->side == 1 || fault->side == 2, "a sheet has two sides");
        }
    } catch (const RuntimeFailure& failure) {
        demand(failure.code() == FailureCode::SubscriptOutOfRange || failure.code() == FailureCode::Overflow,
               "the failure is meant");
    }
    demand(page.barcodes().LBound() == 1 && page.barcodes().UBound() >= 1, "there is a barcode, read or not");
    demandMarks(page.side1());
    demandMarks(page.side2());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Input input(data + 1, size - 1);
    if ((data[0] & 2) != 0)
        fuzzSerialSession(kNcsModels, input);
    else
        fuzzReply((data[0] & 1) != 0, input.rest());
    return 0;
}
