// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/LateBound.h"
#include "com/TypeName.h"
#include "failure/TypeName.h"
#include "platform/Carrier.h"

#include <optional>

namespace kel::com {

/// A serial control of the host's, by the names of its members.
class LateBoundSerialControl final : public SerialControl {
public:
    explicit LateBoundSerialControl(LateBound object) : object_(std::move(object)) {}

    [[nodiscard]] Int16 CommPort() const override;
    void CommPort(Int16 value) override;
    [[nodiscard]] std::string Settings() const override;
    void Settings(const std::string& value) override;
    [[nodiscard]] Int32 Handshaking() const override;
    void Handshaking(Int32 value) override;
    [[nodiscard]] Boolean PortOpen() const override;
    void PortOpen(Boolean value) override;
    [[nodiscard]] Int32 InputLen() const override;
    void InputLen(Int32 value) override;
    [[nodiscard]] Int32 InBufferCount() override;
    [[nodiscard]] std::string Input() override;
    void Output(std::string_view bytes) override;

private:
    LateBound object_;
};

/// A timer of the host's, by the names of its members.
class LateBoundScanTimer final : public ScanTimer {
public:
    explicit LateBoundScanTimer(LateBound object) : object_(std::move(object)) {}

    [[nodiscard]] Int32 Interval() const override;
    void Interval(Int32 milliseconds) override;
    [[nodiscard]] Boolean Enabled() const override;
    void Enabled(Boolean value) override;

private:
    LateBound object_;
};

/// A host's object instead of a reader's carrier: any object that has the members `mscComm` and `tmrScan`. Both are
/// fetched again for every access.
class LateBoundCarrier final : public Carrier, public StandsForAnother {
public:
    explicit LateBoundCarrier(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    [[nodiscard]] IDispatch* object() const noexcept { return object_.get(); }
    [[nodiscard]] std::string TypeName() const override { return typeName(*object_.get()); }
    [[nodiscard]] SerialControl& mscComm() override;
    [[nodiscard]] ScanTimer& tmrScan() override;

private:
    ComPtr<IDispatch> object_;
    std::optional<LateBoundSerialControl> mscComm_;
    std::optional<LateBoundScanTimer> tmrScan_;
};

} // namespace kel::com
