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

    /// The library from now on; must outlive its use. Nothing takes it away again.
    void set(OmrApi* api) noexcept { api_ = api; }

private:
    OmrApi* api_ = nullptr;
};

} // namespace kel
