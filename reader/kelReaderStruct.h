// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

/// The settings and the scan state of one reader. A field bears the name of the property that exposes it.
struct kelReaderStruct {
    Boolean ReaderGrade;
    kelReaderBaudRate BaudRate{};
    Boolean CancelScan = True; ///< stop request; the only field that is not zero on a new object
    kelReaderDataBits DataBits{};
    Boolean Duplex;
    Boolean DuplexForm;
    Boolean Barcode;
    Boolean Feeder;
    kelReaderFlowControl FlowControl{};
    Int16 MarkDiscrimination = 0;
    Int16 MarkCutOff = 0;
    std::string Parity;
    Int16 Port = 0;
    kelReaderType ReaderType{};
    Int16 RecognitionThreshold = 0;
    Boolean Rejecter;
    float StopBits = 0;
    Int32 SleepTime = 0;
    Int32 TimeOut = 0;
    kelRecognitionType RecognitionMode{};
    Boolean Windowing;
};

} // namespace kel
