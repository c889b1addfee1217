// SPDX-License-Identifier: MIT
#include "cli/ModelTable.h"

#include "cli/ProfileRecord.h"
#include "formats/Columns.h"
#include "store/SheetRows.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

std::string lineSettings(const clsKELReaderProfile& profile)
{
    if (profile.InterfaceType() == kelReaderInterfaceTypeUSB)
        return "USB";
    return CStr(profile.BaudRate()) + "," + profile.Parity() + "," + CStr(profile.DataBits()) + "," +
           CStr(profile.StopBits());
}

std::string thresholdRange(const clsKELReaderProfile& profile)
{
    if (profile.RecognitionThresholdMaximum() == 0)
        return "fixed";
    return CStr(profile.RecognitionThresholdMinimum()) + "-" + CStr(profile.RecognitionThresholdMaximum());
}

/// The options of a model by name, those that it can do or always does.
std::string options(const clsKELReaderProfile& profile)
{
    struct Option {
        const char* name;
        Boolean on;
        Boolean changeable;
    };
    const Option all[] = {
        {"grading", profile.ReaderGrade(), profile.ReaderGradeEnabled()},
        {"barcodes", profile.Barcode(), profile.BarcodeEnabled()},
        {"duplex", profile.Duplex(), profile.DuplexEnabled()},
        {"feeder", profile.Feeder(), profile.FeederEnabled()},
        {"rejecter", profile.Rejecter(), profile.RejecterEnabled()},
        {"printer", profile.Printer(), profile.PrinterEnabled()},
        {"windows", profile.Windowing(), profile.WindowingEnabled()},
    };
    std::string text;
    for (const Option& option : all) {
        if (option.on || option.changeable)
            text += (text.empty() ? "" : " ") + std::string(option.name);
    }
    return text;
}

std::string plainText(const Json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

} // namespace

std::string modelsAsTable(const ProfileList& profiles)
{
    std::size_t nameWidth = 4;
    for (const auto& profile : profiles)
        nameWidth = std::max(nameWidth, profile->ReaderName().size());

    std::string text = "Type  " + padded("Name", nameWidth) + "  Line         Threshold  Columns  Options\n";
    for (const auto& profile : profiles) {
        const bool none = profile->ReaderType() == kelReaderTypeNone;
        const std::string number = CStr(profile->ReaderType());
        std::string line =
            std::string(4 - number.size(), ' ') + number + "  " + padded(profile->ReaderName(), nameWidth) + "  " +
            padded(none ? "" : lineSettings(*profile), 11) + "  " + padded(none ? "" : thresholdRange(*profile), 9) +
            "  " + padded(none ? "" : CStr(profile->MaxCols()), 7) + "  " + options(*profile);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string modelAsTable(const clsKELReaderProfile& profile)
{
    const Json record = jsonRecord(profile);
    std::size_t width = 0;
    for (const auto& entry : record.items())
        width = std::max(width, entry.key().size());
    std::string text;
    for (const auto& [name, value] : record.items()) {
        std::string line = padded(name, width) + "  " + plainText(value);
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

std::string modelsAsJson(const ProfileList& profiles)
{
    std::string text = "[";
    for (const auto& profile : profiles)
        text += (text.size() == 1 ? "\n" : ",\n") + jsonText(jsonRecord(*profile));
    return text + "\n]\n";
}

std::string modelsAsCsv(const ProfileList& profiles)
{
    std::string text;
    for (const auto& profile : profiles) {
        const Json record = jsonRecord(*profile);
        std::vector<std::string> names;
        std::vector<std::string> values;
        for (const auto& [name, value] : record.items()) {
            names.push_back(name);
            values.push_back(plainText(value));
        }
        if (text.empty())
            text = csvLine(names);
        text += csvLine(values);
    }
    return text;
}

} // namespace kel
