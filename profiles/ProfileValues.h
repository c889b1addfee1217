// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

/// What one model can do, and its defaults. An option's plain field is its default, `...Enabled` says whether
/// the user may change it, `...Visible` whether the options dialog shows it. The values here are those of a new
/// record; the catalogue states only what differs from them.
struct ProfileValues {
    Boolean ReaderGrade; ///< grading in the reader
    Boolean ReaderGradeEnabled;
    Boolean ReaderGradeVisible = True;
    Boolean Barcode; ///< reading barcodes
    Boolean BarcodeEnabled;
    Boolean BarcodeVisible = True;
    Boolean Duplex; ///< reading both sides
    Boolean DuplexEnabled;
    Boolean DuplexVisible = True;
    Boolean Feeder; ///< the sheet feeder
    Boolean FeederEnabled;
    Boolean FeederVisible = True;
    Boolean PortEnabled = True; ///< the port has no default of its own: it is the user's to choose
    Boolean PortVisible = True;
    Boolean Printer; ///< the imprinter
    Boolean PrinterEnabled;
    Boolean PrinterVisible = True;
    Boolean Rejecter; ///< the reject hopper
    Boolean RejecterEnabled;
    Boolean RejecterVisible = True;
    Boolean Windowing; ///< read windows
    Boolean WindowingEnabled;
    Boolean WindowingVisible = True;

    Int16 MarkCutOff = 0;         ///< goes by the flags of the mark discrimination, and by the bounds of the threshold
    Int16 MarkDiscrimination = 0; ///< 0 to `RecognitionThresholdMaximum`
    Boolean MarkDiscriminationEnabled;
    Boolean MarkDiscriminationVisible = True;
    Int16 RecognitionThreshold = 0; ///< on the model's own scale of darkness
    Boolean RecognitionThresholdEnabled;
    Boolean RecognitionThresholdVisible = True;
    Int16 RecognitionThresholdMinimum = 0; ///< bounds of 0 and 0: the model has no adjustable threshold
    Int16 RecognitionThresholdMaximum = 0;
    Int16 MaxCols = 0; ///< timing track columns that the model can read across a sheet; for the host

    kelReaderInterfaceType InterfaceType = kelReaderInterfaceTypeSerial; ///< serial or USB
    kelReaderBaudRate BaudRate = kelReaderBaudRate9600;                  ///< the speed of the line
    Boolean BaudRateEnabled = True;
    Boolean BaudRateVisible = True;
    kelReaderDataBits DataBits{}; ///< 0: not applicable
    Boolean DataBitsEnabled = True;
    Boolean DataBitsVisible = True;
    kelReaderFlowControl FlowControl = kelReaderFlowControlNone;
    Boolean FlowControlEnabled = True;
    Boolean FlowControlVisible = True;
    float StopBits = 0; ///< 1, 1.5 or 2; 0: not applicable
    Boolean StopBitsEnabled = True;
    Boolean StopBitsVisible = True;
    kelReaderType ReaderType = kelReaderTypeNone; ///< the model itself
    std::string Parity;                           ///< "N", "O", "E" or "M"; empty: not applicable
    Boolean ParityEnabled = True;
    Boolean ParityVisible = True;
    Int32 SleepTime = 50; ///< pause between polls, in milliseconds
    Boolean SleepTimeEnabled = True;
    Boolean SleepTimeVisible = True;
    Int32 Timeout = 10; ///< how long a reply of the reader may take, in seconds
    Boolean TimeOutEnabled = True;
    Boolean TimeOutVisible = True;

    Boolean LocateEnabled;   ///< the model can be searched for on the serial ports
    Boolean FirmwareEnabled; ///< the model reports the version of its firmware
};

} // namespace kel
