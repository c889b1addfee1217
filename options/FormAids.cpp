// SPDX-License-Identifier: MIT
// The list of ports while a window shows it.

#include "options/FormAids.h"

#include "options/ListSelection.h"
#include "options/frmOptions.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "platform/RemoteAddress.h"
#include "platform/ThreadPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "types/ModelTable.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// How long a port across the network may take to open: it need not answer at all.
constexpr auto kRemoteLimit = std::chrono::seconds(3);

/// The failure of a port that does not answer in time; the run time has no number for it.
constexpr Int32 kUnanswered = -1;

TextNumber whyNot(const PortLook& look)
{
    switch (static_cast<FailureCode>(look.failure)) {
    case FailureCode::InvalidPortNumber: return text::kPortNotThere;
    case FailureCode::PortAlreadyOpen: return text::kPortInUse;
    // A user who may not open a port can get access.
    case FailureCode::HardwareNotAvailable:
        return look.port.remedy.empty() ? text::kPortNotOpened : text::kPortNotPermitted;
    case FailureCode::DeviceNotOpen: return text::kPortNotSerial;
    default: return look.failure == kUnanswered ? text::kPortUnanswered : text::kPortNotOpened;
    }
}

/// The heading over the models of a maker. One that is added does not compile without it.
const char* headingOf(kelProfileType maker)
{
    switch (maker) {
    case kelProfileTypeAP: return "Apperson";
    case kelProfileTypeCT: return "Chatsworth Data";
    case kelProfileTypePDI: return "Peripheral Dynamics Inc.";
    case kelProfileTypeScantron: return "Scantron";
    case kelProfileTypeSekonic: return "Sekonic";
    case kelProfileTypeNone:
    case kelProfileTypeAll: break;
    }
    return "";
}

std::string fileName(const std::string& device)
{
    return device.substr(device.starts_with('/') ? device.rfind('/') + 1 : 0);
}

} // namespace

FormAids::FormAids(frmOptions& form)
    : form_(form), sharesMachine_(threadsShareThisMachine()), settings_(form), trial_(form)
{
}

void FormAids::showPortsAsTheyCome()
{
    comesBeside_ = sharesMachine_;
    captions_ = {.lookAgain = VBLM_RTString(text::kLookAgainButton),
                 .assignPort = VBLM_RTString(text::kAssignPortButton),
                 .testReader = VBLM_RTString(text::kTestReader),
                 .stopTest = VBLM_RTString(text::kStopTest),
                 .noModel = VBLM_RTString(text::kNoModelAdvice),
                 .corrected = VBLM_RTString(text::kNumberCorrected),
                 .unsought = VBLM_RTString(text::kUnsoughtTitle),
                 .save = VBLM_RTString(text::kSaveAllTheSame),
                 .back = VBLM_RTString(text::kGoBack)};
}

void FormAids::noteLoaded()
{
    settings_.noteLoaded();
    groupModels();
}

void FormAids::groupModels()
{
    PowerCombo& models = form_.cboReaderType;
    for (Int32 row = 0; row < models.RowCount(); ++row) {
        const ModelRow* const model = modelRow(static_cast<Int32>(Val(models.CellText(1, row))));
        models.Group(row, model ? headingOf(model->maker) : "");
    }
}

std::string FormAids::unsoughtChanges()
{
    // A port that has not come yet may be the only one.
    if (form_.cboPort.Text().empty())
        endLook();
    return settings_.unsought();
}

bool FormAids::beginsToLook(Int16 wanted)
{
    if (!comesBeside_)
        return false;
    wantedPort_ = CStr(wanted);
    prompt_ = form_.cboPort.Prompt();
    look();
    return true;
}

void FormAids::look()
{
    looks_.emplace(); // those of before have ended now
    found_.clear();
    devices_.clear();
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port) {
        const std::optional<std::string> device = deviceOfPort(port);
        if (!device)
            continue;
        devices_.emplace(port, *device);
        const auto arrived = [this, port](const PortLook& look) { found_.emplace(port, look); };
        looks_->send(
            [port, device = *device, arrived]() -> Errands::Arrival {
                return [arrived, found = lookAtDevice(device, port)] { arrived(found); };
            },
            [arrived] { arrived({.failure = kUnanswered, .reason = VBLM_RTString(text::kPortUnanswered)}); },
            remoteAddress(*device) ? kRemoteLimit : Errands::Clock::duration::max());
    }
    // The devices' own names take a moment, too.
    looks_->send(
        [this]() -> Errands::Arrival { return [this, devices = serialDevices()] { serialDevices_ = devices; }; },
        [] {});
    showPorts();
}

bool FormAids::turn()
{
    const bool isNew = looks_ && looks_->take();
    // All new results are shown together: only then is it known which was the last.
    if (isNew)
        showPorts();
    return trial_.turn() || isNew;
}

void FormAids::testReader()
{
    if (canTestReader())
        trial_.start(sharesMachine_);
}

void FormAids::endLook()
{
    if (!looksAtPorts())
        return;
    looks_->takeAll();
    showPorts();
}

void FormAids::lookAgain()
{
    if (comesBeside_)
        look();
}

/// Shows what is known by now. The port that the user has chosen, or the reader's own, is selected as soon as it is
/// known; at the end any port.
void FormAids::showPorts()
{
    PowerCombo& list = form_.cboPort;
    if (list.CurrentRow() != -1)
        wantedPort_ = list.Text();
    list.ClearRows();
    std::vector<PowerCombo::Line> lines;
    for (const auto& [port, look] : found_) {
        if (look.opens) {
            frmOptions::AddComboItem(list, CStr(port), True, 0, -1);
            list.Remark(list.RowCount() - 1, nameOf(devices_[port]));
        } else {
            lines.push_back({portLine(port) + " – " + VBLM_RTString(whyNot(look)), look.reason});
        }
    }
    list.Unavailable(std::move(lines));
    selectText(list, wantedPort_, 0);
    const bool isDone = !looksAtPorts();
    if (isDone && list.CurrentRow() == -1) {
        list.CurrentRow(0);
        settings_.noteLoaded(list);
    }
    list.Prompt(isDone ? prompt_ : VBLM_RTString(text::kLookingAtPorts));
    advise();
}

void FormAids::advise()
{
    portAdvice_.clear();
    if (looksAtPorts() || form_.cboPort.RowCount() > 0)
        return;
    if (!form_.cboPort.Unavailable().empty())
        portAdvice_ = VBLM_RTString(text::kNoPortOpens);
    else
        portAdvice_ = VBLM_RTString(serialDevices_.empty() ? text::kNoSerialDevice : text::kNoPortNumber);
}

std::string FormAids::resetCaption(const Control& control) const
{
    return replaceAll(VBLM_RTString(text::kResetToDefault), "%1", settings_.standard(control));
}

/// The device's own description, or else its name.
std::string FormAids::nameOf(const std::string& device) const
{
    const auto found = std::find_if(serialDevices_.begin(), serialDevices_.end(),
                                    [&](const SerialDevice& each) { return sameDevice(each.name, device); });
    if (found != serialDevices_.end() && !found->description.empty())
        return found->description;
    return fileName(device);
}

std::string FormAids::portLine(Int16 port) const
{
    const std::string name = nameOf(devices_.at(port));
    return CStr(port) + (name.empty() ? "" : " – " + name);
}

std::vector<OptionsAids::Choice> FormAids::devicesWithoutPort() const
{
    std::vector<Choice> choices;
    for (const SerialDevice& device : serialDevices_) {
        const bool hasNumber = std::any_of(devices_.begin(), devices_.end(),
                                           [&](const auto& each) { return sameDevice(each.second, device.name); });
        if (hasNumber)
            continue;
        const std::string name = fileName(device.name);
        choices.push_back({device.description.empty() ? name : device.description + " (" + name + ")", device.name});
    }
    return choices;
}

std::vector<OptionsAids::Choice> FormAids::portNumbers() const
{
    std::vector<Choice> choices;
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port) {
        const auto device = devices_.find(port);
        const std::string shown =
            VBLM_RTString(device == devices_.end() ? text::kAssignPort : text::kAssignPortInstead);
        choices.push_back({replaceAll(replaceAll(shown, "%1", CStr(port)), "%2",
                                      device == devices_.end() ? "" : nameOf(device->second)),
                           CStr(port)});
    }
    return choices;
}

void FormAids::assignPort(const std::string& number, const std::string& device)
{
    if (!PortMap(platform().registry()).set(CInt(Val(number)), stableName(device))) {
        platform().screen().MsgBox(replaceAll(VBLM_RTString(text::kPortNotAssigned), "%1", number),
                                   BoxIcon::Exclamation, BoxButtons::Ok, captions_.assignPort);
        return;
    }
    // A user who assigns a port number to a device wants to use it.
    form_.cboPort.CurrentRow(-1);
    wantedPort_ = number;
    look();
}

} // namespace kel
