// SPDX-License-Identifier: MIT
#include "reader/SettingsStore.h"

#include "failure/guarded.h"
#include "platform/Platform.h"
#include "reader/ReaderSession.h"
#include "types/Text.h"

#include <utility>

namespace kel {

namespace {

/// What one value of the registry is to the reader.
struct SettingRow {
    const char* name;
    const char* whenMissing;
    void (*store)(ReaderSession& session, const std::string& text);
    std::string (*text)(ReaderSession& session);
};

// In the order of loading. The names are those of the saved form, which differ from the properties' here and there.
constexpr SettingRow kSettings[] = {
    {"ScannerType", "0",
     [](ReaderSession& session, const std::string& text) {
         session.ReaderType(static_cast<kelReaderType>(CInt(Val(text))));
     },
     [](ReaderSession& session) { return CStr(session.ReaderType()); }},
    {"ReaderGrade", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().ReaderGrade = CBool(text); },
     [](ReaderSession& session) { return CStr(session.ReaderGrade()); }},
    {"Barcode", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().Barcode = CBool(text); },
     [](ReaderSession& session) { return CStr(session.Barcode()); }},
    {"Duplex", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().Duplex = CBool(text); },
     [](ReaderSession& session) { return CStr(session.Duplex()); }},
    {"Feeder", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().Feeder = CBool(text); },
     [](ReaderSession& session) { return CStr(session.Feeder()); }},
    {"FlowControl", "0",
     [](ReaderSession& session, const std::string& text) {
         session.settings().FlowControl = static_cast<kelReaderFlowControl>(CInt(Val(text)));
     },
     [](ReaderSession& session) { return CStr(session.FlowControl()); }},
    {"MarkCutOff", "0",
     [](ReaderSession& session, const std::string& text) { session.settings().MarkCutOff = CInt(Val(text)); },
     [](ReaderSession& session) { return CStr(session.settings().MarkCutOff); }},
    {"MarkDiscrimination", "0",
     [](ReaderSession& session, const std::string& text) { session.settings().MarkDiscrimination = CInt(Val(text)); },
     [](ReaderSession& session) { return CStr(session.MarkDiscrimination()); }},
    {"Printer", "False",
     [](ReaderSession& session, const std::string& text) { session.Printer()->Enabled(CBool(text)); },
     [](ReaderSession& session) { return CStr(session.Printer()->Enabled()); }},
    {"RecognitionThreshold", "0",
     [](ReaderSession& session, const std::string& text) { session.settings().RecognitionThreshold = CInt(Val(text)); },
     [](ReaderSession& session) { return CStr(session.RecognitionThreshold()); }},
    {"Reject", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().Rejecter = CBool(text); },
     [](ReaderSession& session) { return CStr(session.Rejecter()); }},
    {"ScannerBaud", "9600",
     [](ReaderSession& session, const std::string& text) {
         session.settings().BaudRate = static_cast<kelReaderBaudRate>(CLng(Val(text)));
     },
     [](ReaderSession& session) { return CStr(session.BaudRate()); }},
    {"ScannerDataBits", "7",
     [](ReaderSession& session, const std::string& text) {
         session.settings().DataBits = static_cast<kelReaderDataBits>(CInt(Val(text)));
     },
     [](ReaderSession& session) { return CStr(session.DataBits()); }},
    {"ScannerParity", "N", [](ReaderSession& session, const std::string& text) { session.settings().Parity = text; },
     [](ReaderSession& session) { return session.Parity(); }},
    {"ScannerPort", "1", [](ReaderSession& session, const std::string& text) { session.Port(CInt(Val(text))); },
     [](ReaderSession& session) { return CStr(session.Port()); }},
    {"ScannerStopBits", "1",
     [](ReaderSession& session, const std::string& text) { session.settings().StopBits = CSng(text); },
     [](ReaderSession& session) { return CStr(session.StopBits()); }},
    {"SleepTime", "50", [](ReaderSession& session, const std::string& text) { session.SleepTime(CLng(Val(text))); },
     [](ReaderSession& session) { return CStr(session.SleepTime()); }},
    {"TimeOut", "10", [](ReaderSession& session, const std::string& text) { session.Timeout(CLng(Val(text))); },
     [](ReaderSession& session) { return CStr(session.Timeout()); }},
    {"Windowing", "False",
     [](ReaderSession& session, const std::string& text) { session.settings().Windowing = CBool(text); },
     [](ReaderSession& session) { return CStr(session.settings().Windowing); }},
};

// The order of saving differs in one place: the model comes after the printer.
constexpr std::size_t kModelRow = 0;
constexpr std::size_t kPrinterRow = 8;

// What one look-up of the registry takes at most, in characters.
constexpr std::size_t kLongestValue = 1024;

std::string hexadecimal(Byte bByte)
{
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string sDigits;
    if (bByte >= 16)
        sDigits += kDigits[bByte / 16];
    return sDigits + kDigits[bByte % 16];
}

} // namespace

SettingsStore::SettingsStore(kelReaderRegistryKey lRegistryKey, std::string sRegistrySubKey)
    : lRegistryKey_(lRegistryKey), sRegistrySubKey_(std::move(sRegistrySubKey))
{
}

Boolean SettingsStore::LoadSettings(ReaderSession& session) const
{
    Boolean bResult = False;
    const auto variables = KEL_PARAMETERS(lRegistryKey_, sRegistrySubKey_) + moduleOf(session);
    guarded("KELReader81 - clsKELReader.LoadSettings", variables, [&] {
        for (const SettingRow& row : kSettings)
            row.store(session, LoadValue(row.name, row.whenMissing));
        bResult = True;
    });
    return bResult;
}

Boolean SettingsStore::SaveSettings(ReaderSession& session) const
{
    Boolean bResult = False;
    const auto variables = KEL_PARAMETERS(lRegistryKey_, sRegistrySubKey_) + moduleOf(session);
    guarded("KELReader81 - clsKELReader.SaveSettings", variables, [&] {
        const auto saveRow = [&](const SettingRow& row) {
            std::string sValue = row.text(session);
            SaveValue(row.name, sValue);
        };
        for (std::size_t i = kModelRow + 1; i < std::size(kSettings); ++i) {
            saveRow(kSettings[i]);
            if (i == kPrinterRow)
                saveRow(kSettings[kModelRow]);
        }
        bResult = True;
    });
    return bResult;
}

std::string SettingsStore::LoadValue(std::string_view sValueName, const std::string& sDefaultValue) const
{
    std::string sResult;
    const auto variables = KEL_PARAMETERS(lRegistryKey_, sRegistrySubKey_, sValueName, sDefaultValue);
    guarded("KELReader81 - clsKELReader.LoadValue", variables, [&] {
        const auto value = platform().registry().read(lRegistryKey_, sRegistrySubKey_, sValueName);
        if (!value || platform().registry().lookUpLength(*value) > kLongestValue) {
            sResult = sDefaultValue;
            return;
        }
        const std::string sText = value->data.substr(0, value->data.find('\0'));
        switch (value->type) {
        case RegistryType::Text:
        case RegistryType::ExpandableText: sResult = sText; break;
        case RegistryType::Number:
            sResult = "&h";
            for (auto at = sText.rbegin(); at != sText.rend(); ++at)
                sResult += hexadecimal(static_cast<Byte>(*at));
            break;
        default: break;
        }
    });
    return sResult;
}

Boolean SettingsStore::SaveValue(std::string_view sValueName, std::string& sValue) const
{
    Boolean bResult = False;
    guarded("KELReader81 - clsKELReader.SaveValue", KEL_PARAMETERS(lRegistryKey_, sRegistrySubKey_, sValueName, sValue),
            [&] {
                if (!platform().registry().create(lRegistryKey_, sRegistrySubKey_))
                    return;
                if (sValue.empty())
                    sValue = " ";
                bResult = platform().registry().write(lRegistryKey_, sRegistrySubKey_, sValueName,
                                                      {RegistryType::Text, sValue});
            });
    return bResult;
}

} // namespace kel
