// SPDX-License-Identifier: MIT
#pragma once

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/Win32OptionsPresenter.h"
#include "platform/windows/WindowsPlatform.h"
#include "reader/clsKELReader.h"
#include "startup/Main.h"
#include "tests/windows/OtherProgram.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <string_view>
#include <thread>

namespace kel {

/// A machine whose ports 1 and 3 can be opened, whatever goes on elsewhere, and say nothing.
class TwoPorts : public Platform {
public:
    /// How many ports are open, on all machines of this kind.
    static inline std::atomic<int> opened = 0;

    [[nodiscard]] std::unique_ptr<SerialControl> newSerialControl() override { return std::make_unique<Control>(); }
    [[nodiscard]] std::unique_ptr<ScanTimer> newScanTimer() override { return machine_.newScanTimer(); }
    [[nodiscard]] MessagePump& pump() override { return machine_.pump(); }
    [[nodiscard]] Registry& registry() override { return machine_.registry(); }
    [[nodiscard]] Screen& screen() override { return machine_.screen(); }
    [[nodiscard]] Process& process() override { return machine_.process(); }
    [[nodiscard]] OmrApiLoader& omrApiLoader() override { return machine_.omrApiLoader(); }

private:
    class Control final : public SerialControl {
    public:
        ~Control() override { opened -= open_ ? 1 : 0; }

    private:
        [[nodiscard]] Int16 CommPort() const override { return port_; }
        void CommPort(Int16 value) override { port_ = value; }
        [[nodiscard]] std::string Settings() const override { return {}; }
        void Settings(const std::string&) override {}
        [[nodiscard]] Int32 Handshaking() const override { return 0; }
        void Handshaking(Int32) override {}
        [[nodiscard]] Boolean PortOpen() const override { return open_; }
        void PortOpen(Boolean value) override
        {
            if (port_ != 1 && port_ != 3)
                throw RuntimeFailure(FailureCode::InvalidPortNumber);
            opened += (value ? 1 : 0) - (open_ ? 1 : 0);
            open_ = value;
        }
        [[nodiscard]] Int32 InputLen() const override { return 0; }
        void InputLen(Int32) override {}
        [[nodiscard]] Int32 InBufferCount() override { return 0; }
        [[nodiscard]] std::string Input() override { return {}; }
        void Output(std::string_view) override {}

        Int16 port_ = 1;
        Boolean open_;
    };

    WindowsPlatform machine_;
};

/// Keeps the place of the window for one test.
class PlaceOfATest final : public WindowPlace {
    [[nodiscard]] std::string recall() override { return place_; }
    void keep(const std::string& place) override { place_ = place; }

    std::string place_;
};

/// The options dialog, and another program that works it.
class OptionsDialogTest : public ::testing::Test {
protected:
    OptionsDialogTest()
    {
        // As a host says in its manifest that it knows of resolutions; it is for the whole process.
        ::SetProcessDPIAware();
        Main();
        setOptionsPresenter(std::make_shared<Win32OptionsPresenter>(place_));
        const frmOptions form;
        for (std::size_t i = 0; i < form.Controls().size(); ++i)
            numbers_.emplace(form.Controls()[i]->Name(), OptionsDialogWindow::kFirstControl + static_cast<int>(i));
        numbers_["cmdOK"] = IDOK;
        numbers_["cmdCancel"] = IDCANCEL;
    }

    ~OptionsDialogTest() override { setOptionsPresenter(nullptr); }

    [[nodiscard]] int number(std::string_view name) const { return numbers_.at(name); }

    /// Shows the options while the actions of the user run.
    template <class Actions>
    Boolean show(Actions actions, HWND owner = nullptr)
    {
        std::thread user([&] {
            const OtherProgram other;
            ASSERT_NE(other.dialog, nullptr);
            actions(other);
            if (::IsWindow(other.dialog))
                ::PostMessageW(other.dialog, WM_CLOSE, 0, 0);
        });
        const Boolean result = reader.ShowOptions(owner);
        user.join();
        return result;
    }

    TwoPorts machine;
    PlatformScope scope{machine};
    clsKELReader reader;

private:
    PlaceOfATest place_;
    std::map<std::string_view, int> numbers_;
};

} // namespace kel
