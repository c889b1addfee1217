// SPDX-License-Identifier: MIT
#pragma once

#include "host/Failure.h"
#include "reader/clsKELReader.h"
#include "types/Export.h"

#include <functional>
#include <vector>

namespace kel::host {

/// Receives the reports of the calling thread's readers for as long as it lives; of several on a thread the latest does
/// so. While any lives on any thread, the process's error object belongs to this class; reports of a thread without one
/// go to standard error. Afterwards there is no error object. It ends on the thread that made it.
class KEL_PUBLIC Reports {
public:
    /// Takes one report.
    using Take = std::function<void(const Failure& failure)>;

    /// Takes those of the calling thread; `reader` is any reader object.
    explicit Reports(clsKELReader& reader, Take take);
    ~Reports();
    Reports(const Reports&) = delete;
    Reports& operator=(const Reports&) = delete;

private:
    clsKELReader& reader_;
    Take take_;
};

} // namespace kel::host
