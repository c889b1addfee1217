// SPDX-License-Identifier: MIT
#include "profiles/ReaderModels.h"

#include "failure/guarded.h"
#include "strings/VBLMRTSModule.h"

#include <algorithm>
#include <array>

namespace kel {

namespace {

// By model number. Some names differ from the enumerators on purpose: the makers were sold and renamed.
constexpr std::array<const char*, kReaderTypeCount> kReaderNames = {
    nullptr,                             // kelReaderTypeNone: from the language database
    "Apperson Advantage Link",           // 1 kelReaderTypeAppersonAdvantageLink
    "Scantron OpScan 2",                 // 2 kelReaderTypeNCSOpScan2
    "Scantron OpScan 3",                 // 3 kelReaderTypeNCSOpScan3
    "Scantron OpScan 4/4U",              // 4 kelReaderTypeNCSOpScan4
    "Scantron OpScan 5",                 // 5 kelReaderTypeNCSOpScan5
    "Scantron OpScan 7",                 // 6 kelReaderTypeNCSOpScan7
    "Sekonic SR-601",                    // 7 kelReaderTypeScanningSystemsSR601
    "Sekonic SR-607",                    // 8 kelReaderTypeScanningSystemsSR607
    "Sekonic SR-700-351",                // 9 kelReaderTypeScanningSystemsSR700351
    "Sekonic SR-700-352",                // 10 kelReaderTypeScanningSystemsSR700352
    "Scantron Scanmark 2000",            // 11 kelReaderTypeScantronScanMark2000
    "Scantron Scanmark 2250",            // 12 kelReaderTypeScantronScanMark2250
    "Scantron Scanmark 2500",            // 13 kelReaderTypeScantronScanMark2500
    "Scantron Scanmark 4000",            // 14 kelReaderTypeScantronScanMark4000
    "Scantron Scanmark 5500",            // 15 kelReaderTypeScantronScanMark5500
    "Scantron 8000",                     // 16 kelReaderTypeScantron8000
    "Scantron 8400",                     // 17 kelReaderTypeScantron8400
    "Apperson GradeMaster",              // 18 kelReaderTypeAppersonGradeMaster
    "Sekonic SR-410",                    // 19 kelReaderTypeScanningSystemsSR410
    "Chatsworth Data OMR1100",           // 20 kelReaderTypeChatsworthOMR1100
    "Chatsworth Data OMR2000",           // 21 kelReaderTypeChatsworthOMR2000
    "Chatsworth Data ALS AccelScan OMR", // 22 kelReaderTypeChatsworthALSAccelScanOMR
    "Scantron EZData",                   // 23 kelReaderTypeNCSEZData
    "Peripheral Dynamics Inc. VMR138",   // 24 kelReaderTypePDIVMR138
    "Scantron OpScan 6",                 // 25 kelReaderTypeNCSOpScan6
    "Scantron OpScan 8",                 // 26 kelReaderTypeNCSOpScan8
    "Scantron Scanmark ES 2010",         // 27 kelReaderTypeScantronScanMarkES2010
    "Scantron Scanmark ES 2260",         // 28 kelReaderTypeScantronScanMarkES2260
    "Scantron Scanmark ES 2800",         // 29 kelReaderTypeScantronScanMarkES2800
    "Sekonic SR2300 (USB)",              // 30 kelReaderTypeSekonicSR2300
    "Scantron iNSIGHT 4 (OMR)",          // 31 kelReaderTypeNCSOpScaniNSIGHT4
    "Scantron iNSIGHT 2 (OMR)",          // 32 kelReaderTypeNCSOpScaniNSIGHT2
    "Sekonic SR3500 (USB)",              // 33 kelReaderTypeSekonicSR3500
    "Sekonic SR6500 (USB)",              // 34 kelReaderTypeSekonicSR6500
    "Chatsworth Data ACF-200",           // 35 kelReaderTypeChatsworthACF200
    "Sekonic SR1800 (USB)",              // 36 kelReaderTypeSekonicSR1800
    "Chatsworth Data ACP-100",           // 37 kelReaderTypeChatsworthACF100
    "Sekonic SR-430",                    // 38 kelReaderTypeSekonicSR430
    "Apperson BenchMark 3000",           // 39 kelReaderTypeAppersonBenchMark3000
    "Apperson Advantage 1200",           // 40 kelReaderTypeAppersonAdvantage1200
    "Chatsworth Data ACP-200",           // 41 kelReaderTypeChatsworthACP200
};

static_assert(std::find(kReaderNames.begin() + 1, kReaderNames.end(), nullptr) - kReaderNames.begin() ==
                  kReaderTypeCount,
              "the model of this number needs its name in kReaderNames");

} // namespace

std::string ReturnReaderName(kelReaderType eReaderType)
{
    std::string sName;
    guarded("KELReader81 - basRead.ReturnReaderName", KEL_PARAMETERS(eReaderType), [&] {
        if (eReaderType == kelReaderTypeNone)
            sName = VBLM_RTString(text::kNoReader);
        else if (eReaderType > 0 && eReaderType < static_cast<Int32>(kReaderNames.size()))
            sName = kReaderNames[static_cast<std::size_t>(eReaderType)];
    });
    return sName;
}

} // namespace kel
