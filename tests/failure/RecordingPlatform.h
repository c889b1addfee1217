// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"
#include "simulators/platform/SimulatedRegistry.h"
#include "simulators/platform/SimulatedScreen.h"

#include <functional>
#include <stdexcept>

namespace kel::test {

/// Keeps what is shown, and lets a test act, or fail, while it is shown.
/// Boxes get the answers in `answers`, one after the other, and then Ok or Abort.
class RecordingScreen : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override
    {
        boxes.push_back({text, icon, buttons, title});
        if (onBox)
            onBox();
        if (boxes.size() <= answers.size())
            return answers[boxes.size() - 1];
        return buttons == BoxButtons::Ok ? BoxAnswer::Ok : BoxAnswer::Abort;
    }

    void Beep() override {}
    Int32 MousePointer() const override { return pointer; }

    void MousePointer(Int32 shape) override
    {
        pointer = shape;
        pointers.push_back(shape);
        if (onPointer)
            onPointer(shape);
    }

    std::vector<ShownBox> boxes;
    std::vector<BoxAnswer> answers;
    std::function<void()> onBox;
    std::function<void(Int32)> onPointer;
    std::vector<Int32> pointers; ///< all shapes that were set, in order
    Int32 pointer = kMousePointerDefault;
};

/// A process with a command line and a folder as told, which counts the questions for the folder.
class SetProcess : public Process {
public:
    std::string CommandLine() const override { return commandLine; }
    std::filesystem::path ComponentFolder() const override
    {
        ++folderQuestions;
        return folder;
    }
    std::filesystem::path ComponentFile() const override { return folder / "component"; }

    std::string commandLine = "program";
    std::filesystem::path folder;
    mutable int folderQuestions = 0;
};

/// The calling thread's platform for as long as it lives: screen, registry and process for a test to set and look at.
class RecordingPlatform : public Platform {
public:
    std::unique_ptr<SerialControl> newSerialControl() override { throw std::logic_error("no line here"); }
    std::unique_ptr<ScanTimer> newScanTimer() override { throw std::logic_error("no timer here"); }
    MessagePump& pump() override { throw std::logic_error("no pump here"); }
    Registry& registry() override { return registry_; }
    Screen& screen() override { return screen_; }
    Process& process() override { return process_; }
    OmrApiLoader& omrApiLoader() override { throw std::logic_error("no library here"); }

    RecordingScreen screen_;
    SimulatedRegistry registry_;
    SetProcess process_;

private:
    PlatformScope scope_{*this};
};

} // namespace kel::test
