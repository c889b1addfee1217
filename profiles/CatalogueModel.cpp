// SPDX-License-Identifier: MIT
#include "profiles/CatalogueModel.h"

namespace kel {

namespace {

void allow(UserMay user, Boolean& enabled, Boolean& visible)
{
    enabled = user == UserMay::Change;
    visible = user != UserMay::SeeNothing;
}

void takeLink(const ModelLink& link, ProfileValues& values)
{
    values.InterfaceType = link.InterfaceType;
    values.PortEnabled = link.InterfaceType == kelReaderInterfaceTypeSerial;
    if (link.Defaults) {
        values.BaudRate = link.Defaults->BaudRate;
        values.DataBits = static_cast<kelReaderDataBits>(link.Defaults->DataBits);
        values.Parity = link.Defaults->Parity;
        values.StopBits = link.Defaults->StopBits;
        values.FlowControl = link.Defaults->FlowControl;
    }
    allow(link.LineSettings, values.BaudRateEnabled, values.BaudRateVisible);
    allow(link.LineSettings, values.DataBitsEnabled, values.DataBitsVisible);
    allow(link.LineSettings, values.ParityEnabled, values.ParityVisible);
    allow(link.LineSettings, values.StopBitsEnabled, values.StopBitsVisible);
    allow(link.LineSettings, values.FlowControlEnabled, values.FlowControlVisible);
    allow(link.PauseAndTimeout, values.SleepTimeEnabled, values.SleepTimeVisible);
    allow(link.PauseAndTimeout, values.TimeOutEnabled, values.TimeOutVisible);
}

void takeOption(const ModelOption& option, Boolean& value, Boolean& enabled, Boolean& visible)
{
    value = option.On;
    allow(option.User, enabled, visible);
}

void takeOptions(const ModelOptions& options, ProfileValues& values)
{
    takeOption(options.ReaderGrade, values.ReaderGrade, values.ReaderGradeEnabled, values.ReaderGradeVisible);
    takeOption(options.Barcode, values.Barcode, values.BarcodeEnabled, values.BarcodeVisible);
    takeOption(options.Duplex, values.Duplex, values.DuplexEnabled, values.DuplexVisible);
    takeOption(options.Feeder, values.Feeder, values.FeederEnabled, values.FeederVisible);
    takeOption(options.Rejecter, values.Rejecter, values.RejecterEnabled, values.RejecterVisible);
    takeOption(options.Printer, values.Printer, values.PrinterEnabled, values.PrinterVisible);
    takeOption(options.Windowing, values.Windowing, values.WindowingEnabled, values.WindowingVisible);
    values.LocateEnabled = options.Locate;
    values.FirmwareEnabled = options.Firmware;
}

void takeThresholds(const ModelThresholds& thresholds, ProfileValues& values)
{
    values.MarkCutOff = thresholds.MarkCutOff;
    values.MarkDiscrimination = thresholds.MarkDiscrimination;
    allow(thresholds.UserMarks, values.MarkDiscriminationEnabled, values.MarkDiscriminationVisible);
    values.RecognitionThreshold = thresholds.RecognitionThreshold;
    allow(thresholds.UserThreshold, values.RecognitionThresholdEnabled, values.RecognitionThresholdVisible);
    values.RecognitionThresholdMinimum = thresholds.RecognitionThresholdMinimum;
    values.RecognitionThresholdMaximum = thresholds.RecognitionThresholdMaximum;
}

} // namespace

ProfileValues profileValues(const CatalogueModel& model)
{
    ProfileValues values;
    values.ReaderType = model.ReaderType;
    takeLink(model.Link, values);
    takeOptions(model.Options, values);
    takeThresholds(model.Thresholds, values);
    values.MaxCols = model.MaxCols;
    return values;
}

} // namespace kel
