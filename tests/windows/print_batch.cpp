// SPDX-License-Identifier: MIT
// Reads a batch of sheets from a reader and prints what comes of it.
// Usage: print_batch PORT MODEL-NUMBER SHEETS ROWS COLUMNS

#include "reader/clsKELReader.h"
#include "startup/Main.h"

#include <cstdlib>
#include <iostream>

namespace {

class PrintSheets final : public kel::ReaderEvents {
    void ReadSheet(kel::MarkArray& side1, kel::MarkArray& side2, kel::TextArray& barcodes, kel::Boolean&) override
    {
        std::cout << "sheet " << ++sheets_ << '\n';
        print(side1);
        print(side2);
        for (const std::string& barcode : barcodes.elements())
            std::cout << "barcode [" << barcode << "]\n";
    }

    static void print(const kel::MarkArray& side)
    {
        std::cout << side.rows() << " rows\n";
        for (kel::Int32 row = 1; row <= side.rows(); ++row) {
            for (kel::Int32 column = 1; column <= side.columns(); ++column)
                std::cout << ' ' << side(row, column);
            std::cout << '\n';
        }
    }

    int sheets_ = 0;
};

/// A form of one page.
kel::PageArray onePage(const char* size)
{
    return kel::PageArray::of(1, {static_cast<kel::Int16>(std::atoi(size))});
}

class PrintFailures final : public kel::ErrorObject {
    kel::Int32 RaiseError(const kel::ErrorReport& report) override
    {
        std::cout << report.ErrorNumber << ": " << report.ErrorDescription << " (" << report.ErrorSource << ")\n";
        return 0;
    }
};

} // namespace

int main(int argc, char** argv)
{
    kel::Main();
    if (argc != 6)
        return 2;
    kel::clsKELReader reader;
    reader.SetError(std::make_shared<PrintFailures>());
    reader.LoadDefaults(static_cast<kel::kelReaderType>(std::atoi(argv[2])));
    reader.Timeout(600); // however busy the machine is
    reader.RecognitionMode(kel::kelRecognitionTypePage);
    reader.Side1Rows(onePage(argv[4]));
    reader.Side1Cols(onePage(argv[5]));
    reader.Port(static_cast<kel::Int16>(std::atoi(argv[1])));
    reader.Advise(std::make_shared<PrintSheets>());

    kel::Int32 sheets = 0;
    const kel::Boolean ran = reader.ReadBatch(kel::False, std::atoi(argv[3]), sheets);
    return ran ? EXIT_SUCCESS : EXIT_FAILURE;
}
