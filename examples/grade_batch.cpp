// SPDX-License-Identifier: MIT
// Reads a batch from an Apperson BenchMark 3000 (39) or Advantage 1200 (40) at port 1, which get an answer key and send
// a record a sheet: the host makes marks and barcodes of it.
// Usage: grade_batch MODEL-NUMBER SHEETS; "kelreader ports set 1 DEVICE" says which device port 1 is.

#include <KELReader81U/AnswerKey.h>
#include <KELReader81U/Dictionary.h>
#include <KELReader81U/clsKELReader.h>

#include <cstdlib>
#include <iostream>

namespace {

constexpr kel::Int16 kQuestions = 10;
constexpr kel::Int16 kChoices = 5;

class Grades final : public kel::ReaderEvents {
    /// The record's texts are named fields, its numbers are questions with their letters: "B", or "B", tab, "D".
    void TranslateData(kel::Dictionary& record, kel::MarkArray& side1, kel::MarkArray&, kel::TextArray& barcodes,
                       kel::Boolean&) override
    {
        barcodes.ReDim(1, 1);
        barcodes(1) = kel::itemText(record.Item("Student ID"));
        for (const kel::DictionaryKey& key : record.Keys()) {
            const auto* question = std::get_if<kel::Int32>(&key);
            if (!question || *question > side1.rows())
                continue;
            for (const char letter : kel::itemText(record.Item(key))) {
                const kel::Int32 choice = letter - 'A' + 1;
                if (choice >= 1 && choice <= side1.columns())
                    side1(*question, choice) = 1;
            }
        }
    }

    void ReadSheet(kel::MarkArray& side1, kel::MarkArray&, kel::TextArray& barcodes, kel::Boolean&) override
    {
        std::cout << barcodes(1) << ':';
        for (kel::Int32 question = 1; question <= side1.rows(); ++question) {
            std::cout << ' ';
            for (kel::Int32 choice = 1; choice <= side1.columns(); ++choice)
                if (side1(question, choice) != 0)
                    std::cout << static_cast<char>('A' + choice - 1);
        }
        std::cout << '\n';
    }

    /// Asked for while the key goes into the reader, on forms of two pages.
    void GetQuestionsOnPage(kel::Int16& page, kel::Int16& questions) override
    {
        questions = page == 1 ? kQuestions : kel::Int16{0};
    }
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: grade_batch MODEL-NUMBER SHEETS\n";
        return EXIT_FAILURE;
    }
    kel::clsKELReader reader;
    reader.LoadDefaults(static_cast<kel::kelReaderType>(std::atoi(argv[1])));
    reader.Port(1);
    reader.Side1Rows(kel::PageArray::of(1, {kQuestions}));
    reader.Side1Cols(kel::PageArray::of(1, {kChoices}));
    reader.Advise(std::make_shared<Grades>());

    // Every answer is B, but for question 2, where B and D are right.
    auto key = kel::makeReference<kel::AnswerKey>();
    key->FormIDs("0001");
    for (int question = 1; question <= kQuestions; ++question)
        key->AddQuestion("Question " + std::to_string(question), {"A", "B", "C", "D", "E"},
                         {question == 2 ? "B,D" : "B"});
    reader.AnswerKey(key); // EndReader clears it, so set it before each session

    kel::Int32 reads = 0;
    return reader.ReadBatch(kel::False, std::atoi(argv[2]), reads) ? EXIT_SUCCESS : EXIT_FAILURE;
}
