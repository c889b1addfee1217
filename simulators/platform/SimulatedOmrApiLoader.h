// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApi.h"
#include "types/RuntimeFailure.h"

namespace kel {

/// The library of the USB readers, as far as a test has set one. Until then it is missing.
class SimulatedOmrApiLoader final : public OmrApiLoader {
public:
    [[nodiscard]] OmrApi& omrApi() override
    {
        if (!api_)
            throw RuntimeFailure(FailureCode::FileNotFound, "File not found: OMRAPI.DLL");
        return *api_;
    }

    /// The library from now on; must outlive its use. Nothing removes it again.
    void set(OmrApi* api) noexcept { api_ = api; }

    /// A library was found that is of no use to a host of so many bits.
    void widthNeeded(Int32 bits) noexcept { widthNeeded_ = bits; }
    [[nodiscard]] Int32 widthNeeded() const override { return widthNeeded_; }

private:
    OmrApi* api_ = nullptr;
    Int32 widthNeeded_ = 0;
};

} // namespace kel
