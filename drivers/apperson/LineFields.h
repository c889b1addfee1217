// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "types/Arrays.h"
#include "types/Boolean.h"
#include "types/Numbers.h"

#include <cstddef>
#include <span>
#include <string>

namespace kel {

/// What becomes of the text that has gathered up to the end of a field.
enum class FieldUseAP { Discard, Store, StoreTrimmed, StoreIfGraded, StoreUnlessZeros };

/// A field that ends with a certain byte of the line, counted from 1.
struct FieldEndAP {
    Int16 position;
    FieldUseAP use;
    const char* key;
};

/// Where the fields of a model's lines end.
struct LineLayoutAP {
    std::span<const FieldEndAP> fields; ///< in the order of their positions
    Int16 firstAnswer;                  ///< from this byte on each comma ends the answers to one question
    Int16 mostBytes;                    ///< one byte more is a failure
    bool keepsBytes;                    ///< whether the bytes of a line are kept, for dumps alone
};

extern const LineLayoutAP kLayoutBenchMark3000AP;
extern const LineLayoutAP kLayoutAdvantage1200AP;

/// Sorts the bytes of a line into fields and puts them into a dictionary: the named fields under their names, the
/// answers under the number of their question. A question without an answer has no entry. Commas are counted and
/// never kept. Line ends are bytes as all others; where a line ends is decided elsewhere.
class LineFieldsAP {
public:
    LineFieldsAP(const LineLayoutAP& layout, Dictionary& oDataDict) : layout_(layout), oDataDict_(oDataDict) {}

    /// Failure 9 for a byte beyond the layout's most, 6 for one that cannot be counted any more.
    void take(Byte byte, Boolean bReaderGrade);

    /// The bytes of the line so far, and the text that has gathered since the last field ended.
    [[nodiscard]] Int16 iCharCount() const { return iCharCount_; }
    [[nodiscard]] const std::string& sData() const { return sData_; }

    /// Counts the bytes from the beginning again. The gathered text stays, the numbering of the questions too.
    void countAnew();
    void dropText() { sData_.clear(); }
    void numberQuestionsAnew() { iDataLines_ = 1; }

    template <class Lines>
    void tellVariables(Lines& lines) const
    {
        lines.add("sData, sTempData, iCharCount, iDataLines, iCtr", sData_, sTempData_, iCharCount_, iDataLines_,
                  iCtr_);
        if (layout_.keepsBytes)
            lines.add("sdebugdataarr", keptBytes());
    }

private:
    void endField(const FieldEndAP& field, Boolean bReaderGrade);
    void endAnswer();
    void keep(Byte byte);
    [[nodiscard]] TextArray keptBytes() const;

    const LineLayoutAP& layout_;
    Dictionary& oDataDict_;
    std::string sData_;
    std::string sTempData_;
    std::string bytes_; // a further line is written over the one before
    std::size_t nextField_ = 0;
    Int16 iCharCount_ = 0;
    Int16 iDataLines_ = 1;
    Int32 iCtr_ = 0;
};

} // namespace kel
