#pragma once

#include "types/Numbers.h"

#include <memory>

namespace kel {

class OmrApi;

/// Finds the library of the USB readers' maker.
class OmrApiLoader {
public:
    virtual ~OmrApiLoader() = default;

    /// The library, loaded by name at the first call; 53 "File not found: OMRAPI.DLL" when it is missing.
    [[nodiscard]] virtual OmrApi& omrApi() = 0;
};

} // namespace kel
