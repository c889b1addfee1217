// SPDX-License-Identifier: MIT
#include "profiles/Catalogue.h"

#include <array>
#include <cstddef>

namespace kel {

namespace {

// clang-format off

// ---- Links: what a line starts from is the user's to change, unless a link says otherwise.

constexpr ModelLink line(kelReaderBaudRate speed, int dataBits, const char* parity, float stopBits,
                         kelReaderFlowControl handshake = kelReaderFlowControlNone)
{
    return {.Defaults = LineDefaults{speed, dataBits, parity, stopBits, handshake}};
}

constexpr ModelLink k9600_7E1   = line(kelReaderBaudRate9600,  7, "E", 1);
constexpr ModelLink k9600_8N1   = line(kelReaderBaudRate9600,  8, "N", 1);
constexpr ModelLink k9600_8N2   = line(kelReaderBaudRate9600,  8, "N", 2);
constexpr ModelLink k19200_8N1  = line(kelReaderBaudRate19200, 8, "N", 1);
constexpr ModelLink k19200_8N2  = line(kelReaderBaudRate19200, 8, "N", 2);
constexpr ModelLink k38400_8N1  = line(kelReaderBaudRate38400, 8, "N", 1);

constexpr ModelLink k9600_7N2H  = line(kelReaderBaudRate9600,  7, "N", 2, kelReaderFlowControlHardware);
constexpr ModelLink k38400_7N2H = line(kelReaderBaudRate38400, 7, "N", 2, kelReaderFlowControlHardware);
constexpr ModelLink k38400_7O2H = line(kelReaderBaudRate38400, 7, "O", 2, kelReaderFlowControlHardware);

// A reader that knows one speed only: nothing of the link is the user's business, nor is the pace of the dialogue.
constexpr ModelLink kFixed      = {.Defaults = k9600_7E1.Defaults,
                                   .LineSettings = UserMay::SeeNothing,
                                   .PauseAndTimeout = UserMay::SeeNothing};

// No line at all: the dialog shows the line's settings greyed out.
constexpr ModelLink kUsb        = {.InterfaceType = kelReaderInterfaceTypeUSB, .LineSettings = UserMay::See};

constexpr ModelLink kNoLink     = {};

// ---- Thresholds, each on its maker's scale of darkness

constexpr UserMay Hidden = UserMay::SeeNothing;
constexpr UserMay Locked = UserMay::See;
constexpr UserMay Free   = UserMay::Change;

//                                     cut-off  discrimination     threshold       from   to
constexpr ModelThresholds kScaleNone     = {  0,      0,   Locked,      0, Locked,      0,   0};
constexpr ModelThresholds kScaleFixed    = {  0,      0,   Locked,      1, Locked,      0,   0};
constexpr ModelThresholds kScaleAllFixed = {  1,      1,   Locked,      1, Locked,      0,   0};
constexpr ModelThresholds kScaleLink     = { 20,     10,   Free,       15, Free,        0,  31};
constexpr ModelThresholds kScaleACF100   = {  4,      9,   Hidden,      8, Free,        0,   9};
constexpr ModelThresholds kScaleEZData   = {  4,      9,   Hidden,      4, Free,        0,   9};
constexpr ModelThresholds kScalePDI      = {250,      5,   Free,      240, Free,      192, 254}; // raw grey levels
constexpr ModelThresholds kScale8000     = { 65,     10,   Free,       35, Free,        0,  99};
constexpr ModelThresholds kScaleScantron = { 10,      3,   Free,        7, Free,        0,  15};
constexpr ModelThresholds kScaleSekonic  = { 10,      2,   Free,        5, Free,        0,  15};
constexpr ModelThresholds kScaleSR410    = {  6,      3,   Free,        1, Free,        1,   8};
constexpr ModelThresholds kScaleSR430    = {  6,      3,   Free,        1, Free,        1,  16};

// ---- Models: link, options (the signs are told at ModelOptions), thresholds, columns.
//
//                                                         ReaderGrade
//                                                         |   Barcode
//                                                         |   |   Duplex
//                                                         |   |   |   Feeder
//                                                         |   |   |   |   Rejecter
//                                                         |   |   |   |   |   Printer
//                                                         |   |   |   |   |   |   Windowing
//                                                         |   |   |   |   |   |   |   Locate
//                                                         |   |   |   |   |   |   |   |   Firmware

constexpr CatalogueModel kNone =
    {kelReaderTypeNone,                      kNoLink,     " -   -   -   -   -   -   -   no  no",  kScaleNone,      0};

constexpr std::array kApperson = std::to_array<CatalogueModel>({
    {kelReaderTypeAppersonAdvantage1200,     k38400_8N1,  " o   +   +   -   -   -  (-)  no  no",  kScaleFixed,    12},
    {kelReaderTypeAppersonAdvantageLink,     k19200_8N1,  " o   +   -   -   -   -   -   no  no",  kScaleLink,     12},
    {kelReaderTypeAppersonBenchMark3000,     k38400_8N1,  " o   +   -   -   +   -  (-)  no  no",  kScaleFixed,    15},
    {kelReaderTypeAppersonGradeMaster,       k19200_8N1,  " -   -   -   -   -   -   -   no  no",  kScaleAllFixed, 12},
});

constexpr std::array kChatsworth = std::to_array<CatalogueModel>({
    {kelReaderTypeChatsworthACF100,          kFixed,      "(-) (-) (-) (-) (+) (-) (-)  yes yes", kScaleACF100,   12},
    {kelReaderTypeChatsworthACF200,          k9600_7E1,   " -   -   -   o   -   -   -   no  yes", kScaleAllFixed, 12},
    {kelReaderTypeChatsworthACP200,          k9600_7E1,   " -   -   -   -   -   -   -   no  yes", kScaleAllFixed, 12},
    {kelReaderTypeChatsworthALSAccelScanOMR, k9600_7E1,   " -   -   -   -   x   -   -   yes yes", kScaleAllFixed, 12},
    {kelReaderTypeChatsworthOMR1100,         k9600_7E1,   " -   -   -   -   -   -   -   yes yes", kScaleAllFixed, 12},
    {kelReaderTypeChatsworthOMR2000,         k9600_7E1,   " -   -   -   +   -   -   -   yes yes", kScaleAllFixed, 12},
});

constexpr std::array kPeripheralDynamics = std::to_array<CatalogueModel>({
    {kelReaderTypePDIVMR138,                 k9600_8N1,   " -   -   -   -   x   -   -   no  no",  kScalePDI,      14},
});

constexpr std::array kScantron = std::to_array<CatalogueModel>({
    {kelReaderTypeScantron8000,              k9600_8N2,   " -   -   x   x   -   -   -   no  no",  kScale8000,     48},
    {kelReaderTypeScantron8400,              k9600_8N2,   " -   -   x   x   -   -   -   no  no",  kScale8000,     48},
    {kelReaderTypeNCSEZData,                 kFixed,      "(-) (-) (-) (-) (+) (-) (-)  yes yes", kScaleEZData,   12},
    {kelReaderTypeNCSOpScan2,                k38400_7O2H, " o   o   o   -   -   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScaniNSIGHT2,         k38400_7O2H, " o   o   o   -   -   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan3,                k38400_7O2H, " o   o   o   +   o   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan4,                k38400_7O2H, " o   o   o   +   o   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScaniNSIGHT4,         k38400_7O2H, " o   o   o   +   o   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan5,                k38400_7O2H, " -   o   o   +   -   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan6,                k38400_7O2H, " -   o   o   +   -   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan7,                k38400_7O2H, " -   o   o   +   +   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeNCSOpScan8,                k38400_7O2H, " -   o   o   +   +   o  (-)  no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMark2000,      k19200_8N2,  " -   -   -   -   -   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMark2250,      k19200_8N2,  " -   -   +   -   -   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMark2500,      k19200_8N2,  " -   -   x   +   o   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMark4000,      k19200_8N2,  " -   -   +   +   x   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMark5500,      k19200_8N2,  " -   -   +   +   x   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMarkES2010,    k19200_8N2,  " -   -   -   -   -   o   x   no  no",  kScaleScantron, 48},
    {kelReaderTypeScantronScanMarkES2260,    k19200_8N2,  " -   -   +   x   -   o   x   no  no",  kScaleScantron, 48},
    // Slower than its neighbours, and meant so.
    {kelReaderTypeScantronScanMarkES2800,    k9600_8N2,   " -   -   x   +   o   o   x   no  no",  kScaleScantron, 48},
});

constexpr std::array kSekonic = std::to_array<CatalogueModel>({
    {kelReaderTypeScanningSystemsSR410,      k9600_7N2H,  " -   -   -   +   -   -   -   no  no",  kScaleSR410,    12},
    {kelReaderTypeSekonicSR430,              k38400_7N2H, " -   -   -   +   -   -   -   no  no",  kScaleSR430,    12},
    {kelReaderTypeScanningSystemsSR601,      k9600_7N2H,  " -   o   -   +   o   o   x   no  no",  kScaleSekonic,  48},
    {kelReaderTypeScanningSystemsSR607,      k9600_7N2H,  " -   o   +   +   o   o   x   no  no",  kScaleSekonic,  48},
    {kelReaderTypeScanningSystemsSR700351,   k9600_7N2H,  " -   o   -   +   o   o   x   no  no",  kScaleSekonic,  48},
    {kelReaderTypeScanningSystemsSR700352,   k9600_7N2H,  " -   o   +   +   o   o   x   no  no",  kScaleSekonic,  48},
    {kelReaderTypeSekonicSR1800,             kUsb,        " -   o   o   +   -   o   -   no  no",  kScaleSekonic,  48},
    {kelReaderTypeSekonicSR2300,             kUsb,        " -   o   x   +   o   o   -   no  no",  kScaleSekonic,  48},
    {kelReaderTypeSekonicSR3500,             kUsb,        " -   o   x   +   o   o   -   no  no",  kScaleSekonic,  48},
    {kelReaderTypeSekonicSR6500,             kUsb,        " -   o   x   +   o   o   -   no  no",  kScaleSekonic,  48},
});

// clang-format on

constexpr std::array<CatalogueGroup, 5> kCatalogue = {{
    {kelProfileTypeAP, kApperson},
    {kelProfileTypeCT, kChatsworth},
    {kelProfileTypePDI, kPeripheralDynamics},
    {kelProfileTypeScantron, kScantron},
    {kelProfileTypeSekonic, kSekonic},
}};

/// The number of the first model that does not stand in the catalogue once; 0, "no reader", is not to stand there. -1
/// when all is well.
consteval std::int32_t misplacedModel()
{
    std::array<int, kReaderTypeCount> found{};
    for (const CatalogueGroup& group : kCatalogue)
        for (const CatalogueModel& model : group.Models)
            ++found.at(static_cast<std::size_t>(model.ReaderType));
    for (std::int32_t model = 0; model < kReaderTypeCount; ++model)
        if (found[static_cast<std::size_t>(model)] != (model == kelReaderTypeNone ? 0 : 1))
            return model;
    return -1;
}

static_assert(misplacedModel() == -1, "the model of this number needs one row in the array of its maker");

} // namespace

std::span<const CatalogueGroup> catalogue()
{
    return kCatalogue;
}

const CatalogueModel& noReader()
{
    return kNone;
}

} // namespace kel
