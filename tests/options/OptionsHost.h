// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ReaderHost.h"

#include "options/ShowOptions.h"
#include "options/frmOptions.h"
#include "platform/LineDevice.h"
#include "reader/OptionsDialog.h"
#include "types/Text.h"

#include <deque>
#include <initializer_list>

namespace kel::test {

/// The options form on a machine without hardware, for a host that records.
class OptionsHost : public ReaderHost {
public:
    explicit OptionsHost(std::initializer_list<Int16> ports = {1, 3})
    {
        setOptionsDialog(&showOptionsDialog);
        attachPorts(ports);
    }

    /// Gives ports something that can be opened and says nothing.
    void attachPorts(std::initializer_list<Int16> ports)
    {
        for (const Int16 port : ports)
            machine.attach(port, silent_.emplace_back());
    }

    /// The form, filled with the reader's settings at the first use.
    frmOptions& form()
    {
        if (!form_) {
            form_ = std::make_unique<frmOptions>();
            form_->SetReader(reader());
            form_->Show();
        }
        return *form_;
    }

    /// The same for a reader with a model's defaults.
    frmOptions& formFor(kelReaderType model)
    {
        reader().LoadDefaults(model);
        return form();
    }

    void choose(kelReaderType model)
    {
        form().cboReaderType.CurrentRow(form().cboReaderType.FindRow(CStr(model), 0, 1));
    }

    [[nodiscard]] const std::vector<ShownBox>& boxes() { return machine.screen().boxes(); }

private:
    class Silent final : public LineDevice {
        void lineOpened(Moment, const LineParameters&) override {}
        void lineClosed(Moment) override {}
        void byteFromHost(Moment, Byte) override {}
        std::optional<Moment> nextEvent() const override { return std::nullopt; }
        std::optional<Byte> takeByte(Moment) override { return std::nullopt; }
        bool hungUp() const override { return false; }
    };

    std::deque<Silent> silent_;
    std::unique_ptr<frmOptions> form_;
};

} // namespace kel::test
