// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kel {

/// The reader models. The numbers are part of the interface and of saved settings.
enum kelReaderType : std::int32_t {
    kelReaderTypeNone = 0,
    kelReaderTypeAppersonAdvantageLink = 1,
    kelReaderTypeNCSOpScan2 = 2,
    kelReaderTypeNCSOpScan3 = 3,
    kelReaderTypeNCSOpScan4 = 4,
    kelReaderTypeNCSOpScan5 = 5,
    kelReaderTypeNCSOpScan7 = 6,
    kelReaderTypeScanningSystemsSR601 = 7,
    kelReaderTypeScanningSystemsSR607 = 8,
    kelReaderTypeScanningSystemsSR700351 = 9,
    kelReaderTypeScanningSystemsSR700352 = 10,
    kelReaderTypeScantronScanMark2000 = 11,
    kelReaderTypeScantronScanMark2250 = 12,
    kelReaderTypeScantronScanMark2500 = 13,
    kelReaderTypeScantronScanMark4000 = 14,
    kelReaderTypeScantronScanMark5500 = 15,
    kelReaderTypeScantron8000 = 16,
    kelReaderTypeScantron8400 = 17,
    kelReaderTypeAppersonGradeMaster = 18,
    kelReaderTypeScanningSystemsSR410 = 19,
    kelReaderTypeChatsworthOMR1100 = 20,
    kelReaderTypeChatsworthOMR2000 = 21,
    kelReaderTypeChatsworthALSAccelScanOMR = 22,
    kelReaderTypeNCSEZData = 23,
    kelReaderTypePDIVMR138 = 24,
    kelReaderTypeNCSOpScan6 = 25,
    kelReaderTypeNCSOpScan8 = 26,
    kelReaderTypeScantronScanMarkES2010 = 27,
    kelReaderTypeScantronScanMarkES2260 = 28,
    kelReaderTypeScantronScanMarkES2800 = 29,
    kelReaderTypeSekonicSR2300 = 30,
    kelReaderTypeNCSOpScaniNSIGHT4 = 31,
    kelReaderTypeNCSOpScaniNSIGHT2 = 32,
    kelReaderTypeSekonicSR3500 = 33,
    kelReaderTypeSekonicSR6500 = 34,
    kelReaderTypeChatsworthACF200 = 35,
    kelReaderTypeSekonicSR1800 = 36,
    kelReaderTypeChatsworthACF100 = 37,
    kelReaderTypeSekonicSR430 = 38,
    kelReaderTypeAppersonBenchMark3000 = 39,
    kelReaderTypeAppersonAdvantage1200 = 40,
    kelReaderTypeChatsworthACP200 = 41,
};

/// How many reader models there are, `kelReaderTypeNone` counted: one more than the last of them. The tables of models
/// do not compile with another number of rows.
inline constexpr std::int32_t kReaderTypeCount = kelReaderTypeChatsworthACP200 + 1;

/// Makers, as bit flags: the filter of the model catalogue.
enum kelProfileType : std::int32_t {
    kelProfileTypeNone = 0,
    kelProfileTypeAP = 1,
    kelProfileTypeSekonic = 2,
    kelProfileTypeScantron = 4,
    kelProfileTypeCT = 8,
    kelProfileTypePDI = 16,
    kelProfileTypeAll = 31,
};

/// Places of the help context numbers that a host can set.
enum kelReaderHelpID : std::int32_t {
    kelReaderHelpIDProperties = 0,
};

/// Barcode symbologies, as bit flags.
enum kelBarcodeType : std::int32_t {
    kelBarcodeTypeUnknown = 0,
    kelBarcodeTypeCode39 = 1,
    kelBarcodeTypeITF = 2,
    kelBarcodeTypeNW7 = 4,
    kelBarcodeTypeJANEANUPC = 8,
    kelBarcodeTypeCode128 = 16,
    kelBarcodeTypeIndustrial2of5 = 32,
    kelBarcodeTypeCoop2of5 = 64,
    kelBarcodeTypeCode93 = 128,
};

/// Direction of the bars of a barcode.
enum kelBarcodeOrientation : std::int32_t {
    kelBarcodeOrientationUnknown = 0,
    kelBarcodeOrientationVertical = 1,
    kelBarcodeOrientationHorizontal = 2,
};

/// The predefined handles of the registry's hives.
enum kelReaderRegistryKey : std::uint32_t {
    kelReaderRegistryKeyClassesRoot = 0x80000000U,
    kelReaderRegistryKeyCurrentUser = 0x80000001U,
    kelReaderRegistryKeyLocalMachine = 0x80000002U,
    kelReaderRegistryKeyUsers = 0x80000003U,
    kelReaderRegistryKeyPerformanceData = 0x80000004U,
    kelReaderRegistryKeyCurrentConfig = 0x80000005U,
};

/// What is read of a sheet: the whole page, or the read windows.
enum kelRecognitionType : std::int32_t {
    kelRecognitionTypePage = 1,
    kelRecognitionTypeWindow = 2,
};

/// How a model is connected.
enum kelReaderInterfaceType : std::int32_t {
    kelReaderInterfaceTypeSerial = 1,
    kelReaderInterfaceTypeUSB = 2,
};

/// Line speeds; each value is the speed itself.
enum kelReaderBaudRate : std::int32_t {
    kelReaderBaudRate110 = 110,
    kelReaderBaudRate300 = 300,
    kelReaderBaudRate600 = 600,
    kelReaderBaudRate1200 = 1200,
    kelReaderBaudRate2400 = 2400,
    kelReaderBaudRate9600 = 9600,
    kelReaderBaudRate14400 = 14400,
    kelReaderBaudRate19200 = 19200,
    kelReaderBaudRate28800 = 28800,
    kelReaderBaudRate38400 = 38400,
    kelReaderBaudRate56000 = 56000,
    kelReaderBaudRate128000 = 128000,
    kelReaderBaudRate256000 = 256000,
};

/// Data bits of the line; each value is the number itself.
enum kelReaderDataBits : std::int32_t {
    kelReaderDataBits4 = 4,
    kelReaderDataBits5 = 5,
    kelReaderDataBits6 = 6,
    kelReaderDataBits7 = 7,
    kelReaderDataBits8 = 8,
};

/// Handshaking of the line.
enum kelReaderFlowControl : std::int32_t {
    kelReaderFlowControlNone = 0,
    kelReaderFlowControlXonXoff = 1,
    kelReaderFlowControlHardware = 2,
    kelReaderFlowControlBoth = 3,
};

} // namespace kel
