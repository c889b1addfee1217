// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"

#include <array>
#include <string_view>

namespace kel {

enum class Imprinter {
    None,         ///< the model has none: it cannot be enabled
    Optional,     ///< the model may have one
    NotConcerned, ///< the setting is not this model's
};

/// What a model prints on a sheet; -1 where that is not known.
struct ModelPrinter {
    std::int16_t lines = 0;
    std::int32_t minPosition = -1;
    std::int32_t maxPosition = -1;
    std::int32_t maxCharacters = -1;
    Imprinter imprinter = Imprinter::Optional;
};

/// All that is known of one model. The lower rooms know none of the things that a text names here: each room looks up
/// what a row names in a table of its own, and does not compile with a name that is not there.
struct ModelRow {
    std::int32_t number;         ///< in the interface and in saved settings: never changed, never used twice
    std::string_view enumerator; ///< "kelReaderTypeScantronScanMark2500"
    const char* name;            ///< that users see
    std::string_view driver;     ///< the entry of dispatch/DriverFamilies.cpp that drives it
    std::string_view wire;       ///< what it is on its wire: each table named kWires has it
    kelProfileType maker;
    std::string_view line;  ///< from which its line starts: profiles/ModelLine.h
    const char* options;    ///< one row of signs: profiles/CatalogueModel.h
    std::string_view scale; ///< its scale of darkness: profiles/Catalogue.cpp
    std::int16_t columns;   ///< the most that it reads
    ModelPrinter printer;
};

/// What stands on the wire of a model that has no line: the library of the USB readers' maker.
inline constexpr std::string_view kNoWire = "OMRAPI";

/// The models, those of a maker together, in the order in which users see them. scripts/generate_models.py makes the
/// enumerations of the published interface from these rows.
inline constexpr auto kModels = [] {
    // clang-format off
    constexpr auto AP       = kelProfileTypeAP;
    constexpr auto CT       = kelProfileTypeCT;
    constexpr auto PDI      = kelProfileTypePDI;
    constexpr auto Scantron = kelProfileTypeScantron;
    constexpr auto Sekonic  = kelProfileTypeSekonic;

    constexpr ModelPrinter NoPrinter    = {.imprinter = Imprinter::None};
    constexpr ModelPrinter NotConcerned = {.imprinter = Imprinter::NotConcerned};

    return std::to_array<ModelRow>({
    // number, enumerator, name that users see, driver, wire
    // maker   line                      ReaderGrade                           scale       columns
    //                                   |   Barcode                                       |   printer: lines,
    //                                   |   |   Duplex                                    |   |   first and last position,
    //                                   |   |   |   Feeder                                |   |   characters
    //                                   |   |   |   |   Rejecter                          |   |
    //                                   |   |   |   |   |   Printer                       |   |
    //                                   |   |   |   |   |   |   Windowing                 |   |
    //                                   |   |   |   |   |   |   |   Locate                |   |
    //                                   |   |   |   |   |   |   |   |   Firmware          |   |

    {40, "kelReaderTypeAppersonAdvantage1200", "Apperson Advantage 1200", "Apperson", "Advantage1200",
     AP,       "38400,N,8,1",          " o   +   +   -   -   -  (-)  no  no",  "Fixed",    12, NotConcerned},
    {1, "kelReaderTypeAppersonAdvantageLink", "Apperson Advantage Link", "Apperson", "AdvantageLink",
     AP,       "19200,N,8,1",          " o   +   -   -   -   -   -   no  no",  "Link",     12, NoPrinter},
    {39, "kelReaderTypeAppersonBenchMark3000", "Apperson BenchMark 3000", "Apperson", "BenchMark3000",
     AP,       "38400,N,8,1",          " o   +   -   -   +   -  (-)  no  no",  "Fixed",    15, NotConcerned},
    {18, "kelReaderTypeAppersonGradeMaster", "Apperson GradeMaster", "Apperson", "GradeMaster",
     AP,       "19200,N,8,1",          " -   -   -   -   -   -   -   no  no",  "AllFixed", 12, NoPrinter},

    {37, "kelReaderTypeChatsworthACF100", "Chatsworth Data ACP-100", "EzData", "EZData",
     CT,       "9600,E,7,1 fixed",     "(-) (-) (-) (-) (+) (-) (-)  yes yes", "ACF100",   12, NoPrinter},
    {35, "kelReaderTypeChatsworthACF200", "Chatsworth Data ACF-200", "Chatsworth", "Chatsworth",
     CT,       "9600,E,7,1",           " -   -   -   o   -   -   -   no  yes", "AllFixed", 12, NoPrinter},
    {41, "kelReaderTypeChatsworthACP200", "Chatsworth Data ACP-200", "Chatsworth", "Chatsworth",
     CT,       "9600,E,7,1",           " -   -   -   -   -   -   -   no  yes", "AllFixed", 12, NoPrinter},
    {22, "kelReaderTypeChatsworthALSAccelScanOMR", "Chatsworth Data ALS AccelScan OMR", "ChatsworthAls", "Chatsworth",
     CT,       "9600,E,7,1",           " -   -   -   -   x   -   -   yes yes", "AllFixed", 12, NoPrinter},
    {20, "kelReaderTypeChatsworthOMR1100", "Chatsworth Data OMR1100", "Chatsworth", "Chatsworth",
     CT,       "9600,E,7,1",           " -   -   -   -   -   -   -   yes yes", "AllFixed", 12, NoPrinter},
    {21, "kelReaderTypeChatsworthOMR2000", "Chatsworth Data OMR2000", "Chatsworth", "Chatsworth",
     CT,       "9600,E,7,1",           " -   -   -   +   -   -   -   yes yes", "AllFixed", 12, NoPrinter},

    {24, "kelReaderTypePDIVMR138", "Peripheral Dynamics Inc. VMR138", "PeripheralDynamics", "VMR138",
     PDI,      "9600,N,8,1",           " -   -   -   -   x   -   -   no  no",  "PDI",      14, NotConcerned},

    {16, "kelReaderTypeScantron8000", "Scantron 8000", "ScantronStraight", "ScanmarkRaw",
     Scantron, "9600,N,8,2",           " -   -   x   x   -   -   -   no  no",  "8000",     48, {1, 0, 135, 135}},
    {17, "kelReaderTypeScantron8400", "Scantron 8400", "ScantronStraight", "ScanmarkRaw",
     Scantron, "9600,N,8,2",           " -   -   x   x   -   -   -   no  no",  "8000",     48, {1, 0, 135, 135}},
    {23, "kelReaderTypeNCSEZData", "Scantron EZData", "EzData", "EZData",
     Scantron, "9600,E,7,1 fixed",     "(-) (-) (-) (-) (+) (-) (-)  yes yes", "EZData",   12, NoPrinter},
    {2, "kelReaderTypeNCSOpScan2", "Scantron OpScan 2", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " o   o   o   -   -   o  (-)  no  no",  "Scantron", 48, {1, 0, 24, 24}},
    {32, "kelReaderTypeNCSOpScaniNSIGHT2", "Scantron iNSIGHT 2 (OMR)", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " o   o   o   -   -   o  (-)  no  no",  "Scantron", 48, {1, 0, 24, 24}},
    {3, "kelReaderTypeNCSOpScan3", "Scantron OpScan 3", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " o   o   o   +   o   o  (-)  no  no",  "Scantron", 48, {1, 0, 24, 24}},
    {4, "kelReaderTypeNCSOpScan4", "Scantron OpScan 4/4U", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " o   o   o   +   o   o  (-)  no  no",  "Scantron", 48, {1, 0, 24, 24}},
    {31, "kelReaderTypeNCSOpScaniNSIGHT4", "Scantron iNSIGHT 4 (OMR)", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " o   o   o   +   o   o  (-)  no  no",  "Scantron", 48, {1, 0, 24, 24}},
    {5, "kelReaderTypeNCSOpScan5", "Scantron OpScan 5", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " -   o   o   +   -   o  (-)  no  no",  "Scantron", 48, {1, 0, 40, 40}},
    {25, "kelReaderTypeNCSOpScan6", "Scantron OpScan 6", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " -   o   o   +   -   o  (-)  no  no",  "Scantron", 48, {1, 0, 25, 25}},
    {6, "kelReaderTypeNCSOpScan7", "Scantron OpScan 7", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " -   o   o   +   +   o  (-)  no  no",  "Scantron", 48, {1, 10, 25, 25}},
    {26, "kelReaderTypeNCSOpScan8", "Scantron OpScan 8", "Ncs", "OpScan",
     Scantron, "38400,O,7,2 hardware", " -   o   o   +   +   o  (-)  no  no",  "Scantron", 48, {1, 10, 54, 54}},
    {11, "kelReaderTypeScantronScanMark2000", "Scantron Scanmark 2000", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   -   -   -   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {12, "kelReaderTypeScantronScanMark2250", "Scantron Scanmark 2250", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   +   -   -   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {13, "kelReaderTypeScantronScanMark2500", "Scantron Scanmark 2500", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   x   +   o   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {14, "kelReaderTypeScantronScanMark4000", "Scantron Scanmark 4000", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   +   +   x   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {15, "kelReaderTypeScantronScanMark5500", "Scantron Scanmark 5500", "Scantron", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   +   +   x   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {27, "kelReaderTypeScantronScanMarkES2010", "Scantron Scanmark ES 2010", "ScantronStraight", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   -   -   -   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    {28, "kelReaderTypeScantronScanMarkES2260", "Scantron Scanmark ES 2260", "ScantronStraight", "Scanmark",
     Scantron, "19200,N,8,2",          " -   -   +   x   -   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},
    // Slower than its neighbours, and meant so.
    {29, "kelReaderTypeScantronScanMarkES2800", "Scantron Scanmark ES 2800", "Scantron", "Scanmark",
     Scantron, "9600,N,8,2",           " -   -   x   +   o   o   x   no  no",  "Scantron", 48, {1, 0, 135, 135}},

    {19, "kelReaderTypeScanningSystemsSR410", "Sekonic SR-410", "ScanningSystemsReadOnly", "SekonicSmall",
     Sekonic,  "9600,N,7,2 hardware",  " -   -   -   +   -   -   -   no  no",  "SR410",    12, NotConcerned},
    {38, "kelReaderTypeSekonicSR430", "Sekonic SR-430", "ScanningSystemsReadOnly", "SekonicSmall",
     Sekonic,  "38400,N,7,2 hardware", " -   -   -   +   -   -   -   no  no",  "SR430",    12, NotConcerned},
    {7, "kelReaderTypeScanningSystemsSR601", "Sekonic SR-601", "ScanningSystems", "SekonicLarge",
     Sekonic,  "9600,N,7,2 hardware",  " -   o   -   +   o   o   x   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {8, "kelReaderTypeScanningSystemsSR607", "Sekonic SR-607", "ScanningSystems", "SekonicLargeDuplex",
     Sekonic,  "9600,N,7,2 hardware",  " -   o   +   +   o   o   x   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {9, "kelReaderTypeScanningSystemsSR700351", "Sekonic SR-700-351", "ScanningSystems", "SekonicLarge",
     Sekonic,  "9600,N,7,2 hardware",  " -   o   -   +   o   o   x   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {10, "kelReaderTypeScanningSystemsSR700352", "Sekonic SR-700-352", "ScanningSystems", "SekonicLargeDuplex",
     Sekonic,  "9600,N,7,2 hardware",  " -   o   +   +   o   o   x   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {36, "kelReaderTypeSekonicSR1800", "Sekonic SR1800 (USB)", "SekonicUsb", "OMRAPI",
     Sekonic,  "USB",                  " -   o   o   +   -   o   -   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {30, "kelReaderTypeSekonicSR2300", "Sekonic SR2300 (USB)", "SekonicUsb", "OMRAPI",
     Sekonic,  "USB",                  " -   o   x   +   o   o   -   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {33, "kelReaderTypeSekonicSR3500", "Sekonic SR3500 (USB)", "SekonicUsb", "OMRAPI",
     Sekonic,  "USB",                  " -   o   x   +   o   o   -   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    {34, "kelReaderTypeSekonicSR6500", "Sekonic SR6500 (USB)", "SekonicUsb", "OMRAPI",
     Sekonic,  "USB",                  " -   o   x   +   o   o   -   no  no",  "Sekonic",  48, {3, 10, 245, 41}},
    });
    // clang-format on
}();

/// The row of a model; nullptr for `kelReaderTypeNone` and for a number that is no model.
[[nodiscard]] constexpr const ModelRow* modelRow(std::int32_t number)
{
    for (const ModelRow& row : kModels)
        if (row.number == number)
            return &row;
    return nullptr;
}

/// What some model is on its wire; a name that no row has does not compile.
class Wire {
public:
    consteval Wire(const char* name) : name_(name)
    {
        bool known = false;
        for (const ModelRow& row : kModels)
            known = known || row.wire == name_;
        if (!known)
            throw "no model is this on its wire";
    }

    [[nodiscard]] constexpr bool isOf(std::int32_t number) const
    {
        const ModelRow* row = modelRow(number);
        return row && row->wire == name_;
    }

private:
    std::string_view name_;
};

/// The entry of a table that bears a name; nullptr if none does.
template <class Entries>
[[nodiscard]] constexpr auto entryNamed(const Entries& entries, std::string_view name) -> decltype(&*entries.begin())
{
    for (const auto& entry : entries)
        if (entry.name == name)
            return &entry;
    return nullptr;
}

/// The number of the first model that names in a column what a table lacks, 0 when there is none. For a table in the
/// code:
///
///     static_assert(modelWithUnknown(&ModelRow::driver, kFamilies) == 0, "the model of this number ...");
///
/// which g++ reports with the number.
template <class Entries>
[[nodiscard]] consteval std::int32_t modelWithUnknown(std::string_view ModelRow::*column, const Entries& entries)
{
    for (const ModelRow& row : kModels)
        if (!entryNamed(entries, row.*column))
            return row.number;
    return 0;
}

/// The first number, of those that the enumeration has, without exactly one row; 0 when all have one.
[[nodiscard]] consteval std::int32_t modelWithoutRow()
{
    for (std::int32_t number = kelReaderTypeNone + 1; number < kReaderTypeCount; ++number) {
        int found = 0;
        for (const ModelRow& row : kModels)
            found += row.number == number ? 1 : 0;
        if (found != 1)
            return number;
    }
    return 0;
}
static_assert(modelWithoutRow() == 0 && kModels.size() + 1 == kReaderTypeCount,
              "types/Enumerations.h is not made from these rows: run scripts/generate_models.py");

} // namespace kel
