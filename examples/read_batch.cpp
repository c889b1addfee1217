// SPDX-License-Identifier: MIT
// Reads a batch of sheets from a reader at port 1 and prints the marks of each.
// Usage: read_batch MODEL-NUMBER [SHEETS]; "kelreader ports set 1 DEVICE" says which device port 1 is.

#include <KELReader81U/clsKELReader.h>

#include <cstdlib>
#include <iostream>

namespace {

class PrintSheets final : public kel::ReaderEvents {
    void ReadSheet(kel::MarkArray& side1, kel::MarkArray&, kel::TextArray& barcodes, kel::Boolean&) override
    {
        std::cout << "Sheet " << ++sheets_;
        for (const std::string& barcode : barcodes.elements())
            std::cout << ' ' << barcode;
        std::cout << '\n';
        for (kel::Int32 row = 1; row <= side1.rows(); ++row)
            for (kel::Int32 column = 1; column <= side1.columns(); ++column)
                if (side1(row, column) != 0)
                    std::cout << "  row " << row << ", column " << column << ": " << side1(row, column) << '\n';
    }

    int sheets_ = 0;
};

class PrintFailures final : public kel::ErrorObject {
    kel::Int32 RaiseError(const kel::ErrorReport& report) override
    {
        std::cerr << report.ErrorTitle << ": " << report.ErrorDescription << " (" << report.ErrorSource << ")\n";
        return 0;
    }
};

} // namespace

int main(int argc, char** argv)
{
    kel::clsKELReader reader;
    reader.SetError(std::make_shared<PrintFailures>());
    reader.LoadDefaults(static_cast<kel::kelReaderType>(argc > 1 ? std::atoi(argv[1]) : 0));
    reader.RecognitionMode(kel::kelRecognitionTypePage);
    reader.Port(1);
    reader.Advise(std::make_shared<PrintSheets>());

    kel::Int32 sheets = 0;
    const kel::Boolean ran = reader.ReadBatch(kel::False, argc > 2 ? std::atoi(argv[2]) : -1, sheets);
    return ran ? EXIT_SUCCESS : EXIT_FAILURE;
}
