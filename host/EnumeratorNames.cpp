// SPDX-License-Identifier: MIT
#include "host/EnumeratorNames.h"

#include "types/ModelRows.h"
#include "types/Text.h"

#include <algorithm>

namespace kel::host {

namespace {

#define KEL_ENUMERATOR(name)                                                                                           \
    {                                                                                                                  \
#name, name                                                                                                    \
    }

constexpr Enumerator kReaderTypes[] = {
    KEL_ENUMERATOR(kelReaderTypeNone),
    KEL_ENUMERATOR(kelReaderTypeAppersonAdvantageLink),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan2),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan3),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan4),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan5),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan7),
    KEL_ENUMERATOR(kelReaderTypeScanningSystemsSR601),
    KEL_ENUMERATOR(kelReaderTypeScanningSystemsSR607),
    KEL_ENUMERATOR(kelReaderTypeScanningSystemsSR700351),
    KEL_ENUMERATOR(kelReaderTypeScanningSystemsSR700352),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMark2000),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMark2250),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMark2500),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMark4000),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMark5500),
    KEL_ENUMERATOR(kelReaderTypeScantron8000),
    KEL_ENUMERATOR(kelReaderTypeScantron8400),
    KEL_ENUMERATOR(kelReaderTypeAppersonGradeMaster),
    KEL_ENUMERATOR(kelReaderTypeScanningSystemsSR410),
    KEL_ENUMERATOR(kelReaderTypeChatsworthOMR1100),
    KEL_ENUMERATOR(kelReaderTypeChatsworthOMR2000),
    KEL_ENUMERATOR(kelReaderTypeChatsworthALSAccelScanOMR),
    KEL_ENUMERATOR(kelReaderTypeNCSEZData),
    KEL_ENUMERATOR(kelReaderTypePDIVMR138),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan6),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScan8),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMarkES2010),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMarkES2260),
    KEL_ENUMERATOR(kelReaderTypeScantronScanMarkES2800),
    KEL_ENUMERATOR(kelReaderTypeSekonicSR2300),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScaniNSIGHT4),
    KEL_ENUMERATOR(kelReaderTypeNCSOpScaniNSIGHT2),
    KEL_ENUMERATOR(kelReaderTypeSekonicSR3500),
    KEL_ENUMERATOR(kelReaderTypeSekonicSR6500),
    KEL_ENUMERATOR(kelReaderTypeChatsworthACF200),
    KEL_ENUMERATOR(kelReaderTypeSekonicSR1800),
    KEL_ENUMERATOR(kelReaderTypeChatsworthACF100),
    KEL_ENUMERATOR(kelReaderTypeSekonicSR430),
    KEL_ENUMERATOR(kelReaderTypeAppersonBenchMark3000),
    KEL_ENUMERATOR(kelReaderTypeAppersonAdvantage1200),
    KEL_ENUMERATOR(kelReaderTypeChatsworthACP200),
};
static_assert(modelWithoutRow(kReaderTypes, &Enumerator::value) == 0,
              "the model of this number needs its KEL_ENUMERATOR in kReaderTypes");

constexpr Enumerator kBaudRates[] = {
    KEL_ENUMERATOR(kelReaderBaudRate110),    KEL_ENUMERATOR(kelReaderBaudRate300),
    KEL_ENUMERATOR(kelReaderBaudRate600),    KEL_ENUMERATOR(kelReaderBaudRate1200),
    KEL_ENUMERATOR(kelReaderBaudRate2400),   KEL_ENUMERATOR(kelReaderBaudRate9600),
    KEL_ENUMERATOR(kelReaderBaudRate14400),  KEL_ENUMERATOR(kelReaderBaudRate19200),
    KEL_ENUMERATOR(kelReaderBaudRate28800),  KEL_ENUMERATOR(kelReaderBaudRate38400),
    KEL_ENUMERATOR(kelReaderBaudRate56000),  KEL_ENUMERATOR(kelReaderBaudRate128000),
    KEL_ENUMERATOR(kelReaderBaudRate256000),
};

constexpr Enumerator kDataBits[] = {
    KEL_ENUMERATOR(kelReaderDataBits4), KEL_ENUMERATOR(kelReaderDataBits5), KEL_ENUMERATOR(kelReaderDataBits6),
    KEL_ENUMERATOR(kelReaderDataBits7), KEL_ENUMERATOR(kelReaderDataBits8),
};

constexpr Enumerator kFlowControls[] = {
    KEL_ENUMERATOR(kelReaderFlowControlNone),
    KEL_ENUMERATOR(kelReaderFlowControlXonXoff),
    KEL_ENUMERATOR(kelReaderFlowControlHardware),
    KEL_ENUMERATOR(kelReaderFlowControlBoth),
};

constexpr Enumerator kRecognitionTypes[] = {
    KEL_ENUMERATOR(kelRecognitionTypePage),
    KEL_ENUMERATOR(kelRecognitionTypeWindow),
};

#undef KEL_ENUMERATOR

} // namespace

const Enumeration& readerTypes()
{
    static constexpr Enumeration enumeration{"kelReaderType", kReaderTypes};
    return enumeration;
}

const Enumeration& baudRates()
{
    static constexpr Enumeration enumeration{"kelReaderBaudRate", kBaudRates};
    return enumeration;
}

const Enumeration& dataBits()
{
    static constexpr Enumeration enumeration{"kelReaderDataBits", kDataBits};
    return enumeration;
}

const Enumeration& flowControls()
{
    static constexpr Enumeration enumeration{"kelReaderFlowControl", kFlowControls};
    return enumeration;
}

const Enumeration& recognitionTypes()
{
    static constexpr Enumeration enumeration{"kelRecognitionType", kRecognitionTypes};
    return enumeration;
}

std::optional<Int32> Enumeration::valueOf(std::string_view wanted) const
{
    const auto found = std::find_if(members.begin(), members.end(), [&](const Enumerator& member) {
        return equalNoCase(member.name, wanted) || equalNoCase(shortName(member), wanted);
    });
    return found == members.end() ? std::nullopt : std::optional(found->value);
}

std::vector<std::string> Enumeration::names() const
{
    std::vector<std::string> result;
    for (const Enumerator& member : members)
        result.emplace_back(member.name);
    return result;
}

} // namespace kel::host
