// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/ProfileValues.h"

#include <optional>

namespace kel {

/// What the user may do with a setting in the options dialog.
enum class UserMay {
    SeeNothing,
    See,
    Change,
};

/// What a line starts from.
struct LineDefaults {
    kelReaderBaudRate BaudRate;
    int DataBits;
    const char* Parity;
    float StopBits;
    kelReaderFlowControl FlowControl = kelReaderFlowControlNone;
};

/// How a model is connected, and what of that is the user's.
struct ModelLink {
    kelReaderInterfaceType InterfaceType = kelReaderInterfaceTypeSerial;
    std::optional<LineDefaults> Defaults = {}; ///< none: the values of a new record
    UserMay LineSettings = UserMay::Change;    ///< speed, data bits, parity, stop bits, handshake
    UserMay PauseAndTimeout = UserMay::Change;
};

/// One option of a model.
struct ModelOption {
    bool On = false;
    UserMay User = UserMay::See;
};

/// The options of a model, written as one row of signs: the seven options in the order of the members, then "yes" or
/// "no" for the search on the ports and for the firmware's version. For instance "o  +  +  -  -  -  (-)   no no".
///
///     -  off  +  on    the user may not change it: the model lacks the thing, or always has it
///     o  off  x  on    the user may change it
///     (-) (+)          the dialog does not show it
///
/// A row that is written wrongly does not compile.
class ModelOptions {
public:
    consteval ModelOptions(const char* row)
    {
        for (ModelOption* option : {&ReaderGrade, &Barcode, &Duplex, &Feeder, &Rejecter, &Printer, &Windowing})
            *option = takeOption(row);
        Locate = takeYesOrNo(row);
        Firmware = takeYesOrNo(row);
        skipBlanks(row);
        if (*row != '\0')
            throw "more in the row than seven options, Locate and Firmware";
    }

    ModelOption ReaderGrade;
    ModelOption Barcode;
    ModelOption Duplex;
    ModelOption Feeder;
    ModelOption Rejecter;
    ModelOption Printer;
    ModelOption Windowing;
    bool Locate = false;
    bool Firmware = false;

private:
    static consteval void skipBlanks(const char*& row)
    {
        while (*row == ' ')
            ++row;
    }

    static consteval ModelOption takeOption(const char*& row)
    {
        skipBlanks(row);
        const bool hidden = *row == '(';
        if (hidden)
            ++row;
        ModelOption option;
        switch (*row++) {
        case '-': option = {false, UserMay::See}; break;
        case '+': option = {true, UserMay::See}; break;
        case 'o': option = {false, UserMay::Change}; break;
        case 'x': option = {true, UserMay::Change}; break;
        default: throw "an option is one of - + o x";
        }
        if (hidden) {
            if (option.User == UserMay::Change)
                throw "the user cannot change what is not shown";
            if (*row++ != ')')
                throw "a parenthesis is open";
            option.User = UserMay::SeeNothing;
        }
        return option;
    }

    static consteval bool takeYesOrNo(const char*& row)
    {
        skipBlanks(row);
        if (row[0] == 'n' && row[1] == 'o') {
            row += 2;
            return false;
        }
        if (row[0] == 'y' && row[1] == 'e' && row[2] == 's') {
            row += 3;
            return true;
        }
        throw "Locate and Firmware are yes or no";
    }
};

/// The scale of darkness on which a model distinguishes marks from dirt.
struct ModelThresholds {
    Int16 MarkCutOff = 0;
    Int16 MarkDiscrimination = 0;
    UserMay UserMarks = UserMay::See; ///< cut-off and discrimination
    Int16 RecognitionThreshold = 0;
    UserMay UserThreshold = UserMay::See;
    Int16 RecognitionThresholdMinimum = 0;
    Int16 RecognitionThresholdMaximum = 0;
};

/// One model of the catalogue.
struct CatalogueModel {
    kelReaderType ReaderType;
    ModelLink Link;
    ModelOptions Options;
    ModelThresholds Thresholds;
    Int16 MaxCols;
};

/// The values of a new record with what the catalogue says of a model.
[[nodiscard]] ProfileValues profileValues(const CatalogueModel& model);

} // namespace kel
