// Reads a batch of sheets from a reader on serial port 1 and prints the marks of each.
// Usage: read_batch MODEL-NUMBER [SHEETS]

#include "reader/clsKELReader.h"
#include "startup/Main.h"

#include <cstdlib>
#include <iostream>

namespace
{

class PrintMarks final : public kel::ReaderEvents
{
public:
    void ReadSheet(kel::MarkArray& iSide1Array, kel::MarkArray&, kel::TextArray& sBarcodeArray, kel::Boolean&) override
    {
        std::cout << "Sheet " << ++sheets_;
        for (const std::string& barcode : sBarcodeArray.elements())
            std::cout << (barcode.empty() ? "" : ", barcode ") << barcode;
        std::cout << '\n';
        for (kel::Int32 row = 1; row <= iSide1Array.rows(); ++row) {
            for (kel::Int32 column = 1; column <= iSide1Array.columns(); ++column) {
                if (const kel::Int16 mark = iSide1Array(row, column))
                    std::cout << "  row " << row << ", column " << column << ": " << mark << '\n';
            }
        }
    }

private:
    int sheets_ = 0;
};

class PrintFailures final : public kel::ErrorObject
{
public:
    kel::Int32 RaiseError(const kel::ErrorReport& report) override
    {
        std::cerr << report.ErrorTitle << ": " << report.ErrorDescription << " (" << report.ErrorSource << ")\n";
        return 0;
    }
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::cerr << "usage: read_batch MODEL-NUMBER [SHEETS]\n";
        return 2;
    }
    kel::clsKELReader reader;
    reader.SetError(std::make_shared<PrintFailures>());
    reader.LoadDefaults(static_cast<kel::kelReaderType>(std::atoi(argv[1])));
    reader.Port(1);
    reader.RecognitionMode(kel::kelRecognitionTypePage);
    reader.Advise(std::make_shared<PrintMarks>());

    kel::Int32 sheets = 0;
    const kel::Boolean ran = reader.ReadBatch(kel::False, argc > 2 ? std::atoi(argv[2]) : -1, sheets);
    return ran ? 0 : 1;
}
